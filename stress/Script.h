// SPDX-License-Identifier: Apache-2.0
/// Random scripts of operations, played to the library and to a plain model of it side by side.
///
/// A script is a sequence of numbers. Each number decodes into one operation, so that generating,
/// replaying and shrinking a script share one path. The library and the model both note what
/// happens, and what can be seen between operations; their notes must be equal. An operation may
/// also be put off until something happens, and then runs inside the callback.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/foundation/ScopedValue.h"

namespace DataBinding::Stress {

using Script = std::vector<std::uint32_t>;

struct Note {
  std::string_view what;
  int subject;
  int object;
  bool operator==(const Note&) const = default;
};

/// The places from which an operation may run, since some callbacks must not use certain
/// operations.
enum class Place { Wiring, Parting, Anywhere };

template <class World>
struct Operation {
  std::string_view name;
  std::string_view parameters;  // a letter and the number of its values each; 0 for any byte
  void (World::*run)(int, int, int);
  int weight = 1;
  Place place = Place::Anywhere;
};

/// The exception that a script has a callback throw.
struct Thrown {};

template <class World>
class Player {
 public:
  void Play(std::uint32_t code) {
    if (awaited != putOff.end()) {
      awaited->second.push_back(code);
      if (awaited->second.size() == awaitedCount) awaited = putOff.end();
      return;
    }
    const Operation<World>& operation = Decode(code);
    if (operation.place > place) return;
    int arguments[3] = {};
    for (std::size_t i = 0; i * 2 < operation.parameters.size(); ++i) {
      arguments[i] = Argument(operation, code, i);
    }
    (static_cast<World&>(*this).*operation.run)(arguments[0], arguments[1], arguments[2]);
  }
  /// Puts the next operations off until something happens to a subject.
  void When(int point, int subject, int more) {
    awaitedCount = static_cast<std::size_t>(more) + 1;
    awaited =
        putOff.emplace(Point(World::points[static_cast<std::size_t>(point)], subject), Script());
  }
  void Throw(int, int, int) {
    if (depth > 0) throw Thrown();
  }
  static std::string Describe(std::uint32_t code) {
    const Operation<World>& operation = Decode(code);
    std::string text(operation.name);
    for (std::size_t i = 0; i * 2 < operation.parameters.size(); ++i) {
      text += i == 0 ? "(" : ", ";
      text += operation.parameters[i * 2] + std::to_string(Argument(operation, code, i));
    }
    return text + (operation.parameters.empty() ? "" : ")");
  }

  std::vector<Note> notes;

 protected:
  void Tell(std::string_view what, int subject, int object = 0) {
    notes.push_back({what, subject, object});
  }
  /// Notes what happens, and runs the operations that were put off until then.
  void Happen(std::string_view what, int subject, int object, Place here) {
    Tell(what, subject, object);
    const auto found = putOff.lower_bound({what, subject});
    if (found == putOff.end() || found->first != Point(what, subject)) return;
    if (found == awaited) return;  // it is still being told what to do
    const auto due = putOff.extract(found);
    const ScopedValue limited(place, std::min(place, here));
    const ScopedValue deeper(depth, depth + 1);
    for (const std::uint32_t code : due.mapped()) Play(code);
  }

  /// A callback that tells of itself with a number of its own.
  auto Callback(std::string_view what, int which) {
    return [this, what, which, serial = ++lastCallback] {
      Happen(what, which, serial, Place::Anywhere);
    };
  }
  static std::size_t At(int index) { return static_cast<std::size_t>(index); }

  Place place = Place::Anywhere;
  int lastCallback = 0;

 private:
  static const Operation<World>& Decode(std::uint32_t code) {
    static const auto operations = World::Operations();
    static const auto choices = [] {
      std::vector<std::size_t> made;
      for (std::size_t i = 0; i < operations.size(); ++i) {
        made.insert(made.end(), static_cast<std::size_t>(operations[i].weight), i);
      }
      return made;
    }();
    return operations[choices[(code & 0xff) % choices.size()]];
  }
  static int Argument(const Operation<World>& operation, std::uint32_t code, std::size_t place) {
    const int byte = static_cast<int>(code >> (8 * (place + 1)) & 0xff);
    const int count = operation.parameters[place * 2 + 1] - '0';
    return count == 0 ? byte
                      : std::min(byte % count, byte / 16 % count);  // low ones meet more often
  }

  using Point = std::pair<std::string_view, int>;
  std::multimap<Point, Script> putOff;
  typename std::multimap<Point, Script>::iterator awaited = putOff.end();
  std::size_t awaitedCount = 0;
  int depth = 0;
};

/// Plays a script to the library and the model, and says whether their notes agree. It compares all
/// that can be seen after every few operations, and after everything has ended. If asked to, it
/// prints the first difference.
template <class Library, class Model>
bool Agree(const Script& script, std::size_t every, bool talks) {
  Library library;
  Model model(library);
  const auto agreed = [&](const char* when, std::size_t count) {
    const bool same = library.notes == model.notes;
    for (const auto* side : {&library.notes, &model.notes}) {
      if (same || !talks) break;
      std::printf("  %s %s %zu:", side == &model.notes ? "model  " : "library", when, count);
      for (const Note& note : *side) {
        std::printf(" %.*s(%d,%d)", static_cast<int>(note.what.size()), note.what.data(),
                    note.subject, note.object);
      }
      std::printf("\n");
    }
    library.notes.clear();
    model.notes.clear();
    return same;
  };
  for (std::size_t i = 0; i < script.size(); ++i) {
    library.Play(script[i]);
    model.Play(script[i]);
    if (!agreed("after operation", i + 1)) return false;
    if ((i + 1) % every != 0) continue;
    library.Observe();
    model.Observe();
    if (!agreed("seen after operation", i + 1)) return false;
  }
  library.End();
  model.End();
  return agreed("in the end, after operation", script.size());
}

/// Plays a script to a world that has its model in itself. Its Settle() is called when an operation
/// is over, Agrees() compares all of it, and WhatDiffers() names the first difference.
template <class World>
bool AgreesWithItself(const Script& script, std::size_t every, bool talks) {
  // Callbacks of the worlds throw on purpose.
  SetListenerFailureHandler([](const ListenerFailure&) {});
  World world;
  for (std::size_t i = 0; i < script.size(); ++i) {
    world.Play(script[i]);
    world.Settle();
    if (world.WhatDiffers() == nullptr && (i % every != 0 || world.Agrees())) continue;
    if (talks) std::printf("  after operation %zu: %s\n", i + 1, world.WhatDiffers());
    return false;
  }
  return world.Agrees();
}

}  // namespace DataBinding::Stress

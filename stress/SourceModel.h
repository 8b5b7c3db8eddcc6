// SPDX-License-Identifier: Apache-2.0
/// A plain model of sources by themselves: they keep their values and call their listeners.
#pragma once

#include <algorithm>
#include <set>

#include "Data.h"

namespace DataBinding::Stress {

class DataModel;

class SourceModel : public Player<DataModel> {
 public:
  void Watch(int which, int chosen, int property) {
    const int source = Choose(chosen);
    if (source == 0) return;
    Registration watch{0, which, ++lastCallback};
    Register(source, property, watch);
    Cancel(std::exchange(watches[which], watch.token));
  }
  void CancelWatch(int which, int, int) { Cancel(watches[which]); }
  void Announce(int chosen, int announcement, int) {
    const int source = Choose(chosen);
    for (const char property : announcements[announcement].properties) Call(source, property - '0');
  }
  void SetProperty(int chosen, int property, int value) {
    constexpr int errors[] = {0, 0, 0, 3, 2};
    const int source = Choose(chosen);
    if (source == 0) return;
    const bool changes =
        property <= 2 && std::exchange(sources[source].values[property], value) != value;
    if (changes) Call(source, property);
    Tell("set", changes ? 1 : 0, errors[property]);
  }

 protected:
  struct Registration {
    int token;  // 0 for none
    int which;
    int callback;
  };
  struct Source {
    int name = 0;
    int values[3] = {};
    std::map<int, std::vector<Registration>> listeners = {};
  };
  int Make(int name) {
    sources[++lastSource] = {name};
    return lastSource;
  }
  [[nodiscard]] int Choose(int chosen) const {
    if (sources.empty()) return 0;
    return std::next(sources.begin(), chosen % static_cast<int>(sources.size()))->first;
  }
  void Destroy(int source) {
    sources.erase(source);
    Tell("ended", source);
  }
  void Register(int source, int property, Registration& made) {
    made.token = ++lastToken;
    sources[source].listeners[property].push_back(made);
  }
  void Cancel(int token) {
    for (auto& [id, source] : sources) {
      for (auto& [property, list] : source.listeners) {
        std::erase_if(list, [token](const auto& each) { return each.token == token; });
      }
    }
  }
  /// Calls all callbacks that were registered when the announcement began, whatever the earlier
  /// ones do, except those of listeners that have ended.
  void Call(int source, int property) {
    if (!sources.contains(source)) return;
    auto called = sources[source].listeners[property];
    const auto& any = sources[source].listeners[anyProperty];
    const std::size_t own = called.size();
    called.insert(called.end(), any.begin(), any.end());
    for (std::size_t i = 0; i < called.size(); ++i) {
      const Registration& each = called[i];
      if (ended.contains(each.callback)) continue;
      if (i >= own) Tell("of", property);
      try {
        Happen("called", each.which, each.callback, Place::Anywhere);
      } catch (const Thrown&) {
      }
    }
  }
  void ObserveSources() {
    for (auto& [id, source] : sources) {
      Tell("values", source.values[0] * 10 + source.values[1], source.values[2]);
      const auto used = [](const auto& each) {
        return each.first != anyProperty && !each.second.empty();
      };
      Tell("listened", id, static_cast<int>(std::ranges::count_if(source.listeners, used)));
      for (int property = 0; property < propertyCount; ++property) {
        const int count = static_cast<int>(source.listeners[property].size());
        Tell("listeners", count == 0 && source.listeners[anyProperty].empty() ? 0 : 1, count);
      }
    }
  }

  std::map<int, Source> sources;
  std::set<int> ended;  // the callbacks of listeners

 private:
  std::map<int, int> watches;  // tokens
  int lastSource = 0;
  int lastToken = 0;
};

}  // namespace DataBinding::Stress

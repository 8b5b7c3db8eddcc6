// SPDX-License-Identifier: Apache-2.0
/// The listeners of one property: one block of memory, in order of registration.
///
/// A broadcast runs the first `count` listeners of the array that it pinned and writes nothing to
/// it. Writers hold the registry's write lock. They append in place, behind what running broadcasts
/// look at; they change or free nothing that a pinned array shows. So a listener that is removed
/// while the array is pinned stays in it, marked with the number of its removal: broadcasts that
/// began before still run it, later ones skip it, and the last of the former sweeps it out. With no
/// pin in the way it is taken out at once and leaves a hole that runs nothing; holes are closed
/// when they outnumber the listeners. Removing never allocates.
///
/// One thing is changed under pins: the function of a listener that is paused, or ended for good,
/// is exchanged for one that does nothing.
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <span>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "ReaderRecord.h"

namespace DataBinding::details {

/// What a broadcast reads: one call.
using Listener = VtrUtils::details::DirectCall;

/// What writers know of the listener at the same position.
struct ListenerMark {
  static constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
  static constexpr std::uint64_t mostPauses = std::numeric_limits<std::uint32_t>::max();
  static constexpr std::uint64_t hole = 0;

  std::uint64_t id;
  /// While the listener is registered, never less the number of its pauses; once its place is
  /// empty, hole; else the number of its removal. Read by broadcasts while a writer sets it.
  std::atomic<std::uint64_t> removal;
};

class ListenerArray {
 public:
  [[nodiscard]] static ListenerArray* Make(const VtrString& property, std::uint32_t capacity);
  /// Releases the states that are still in it and frees the memory.
  static void Destroy(ListenerArray* array);

  ListenerArray(const ListenerArray&) = delete;
  ListenerArray& operator=(const ListenerArray&) = delete;

  [[nodiscard]] const VtrString& Property() const noexcept { return property; }
  [[nodiscard]] const Listener* Listeners() const noexcept { return listeners; }
  /// Each listener has a mark; the marks stand behind the room for the listeners.
  [[nodiscard]] ListenerMark* Marks() const noexcept {
    return reinterpret_cast<ListenerMark*>(listeners + capacity);
  }
  /// What runs the listeners: the loop of the module that all of them come from, else the
  /// library's.
  [[nodiscard]] BindStateBase::CallLoop Loop() const noexcept { return loop; }
  /// How many positions are in use, holes included.
  [[nodiscard]] std::uint32_t Count() const noexcept { return count; }
  /// How many listeners are registered.
  [[nodiscard]] std::uint32_t Live() const noexcept { return live; }
  [[nodiscard]] bool IsFull() const noexcept { return count == capacity; }
  /// The number of the last removal from under a pin.
  [[nodiscard]] std::uint64_t LastRemoval() const noexcept { return lastRemoval; }
  /// True while it holds listeners that were removed from under a pin.
  [[nodiscard]] bool HasRemoved() const noexcept { return removed != 0; }

  /// Adds a listener at the end. The array must not be full.
  void Append(std::uint64_t id, const RepeatingCallback<void()>& callback) noexcept;
  /// Makes room by closing holes; for an array that nobody has pinned.
  void CloseHoles() noexcept;
  /// A larger array with the same listeners. An array that nobody has pinned is left empty, a
  /// pinned one keeps what it shows and the two share the states.
  [[nodiscard]] ListenerArray* Grown(bool pinned);

  /// Takes a listener out and gives its state to the caller, to be released without the lock.
  [[nodiscard]] comlike_ptr<const BindStateBase> TakeOut(std::uint64_t id) noexcept;
  /// Marks a listener of a pinned array as removed.
  void MarkRemoved(std::uint64_t id) noexcept;
  /// Where a listener stands, or stood while this array is pinned; Count() for one that does not.
  [[nodiscard]] std::uint32_t Find(std::uint64_t id) const noexcept;
  /// Has broadcasts that come to a position call nothing there.
  void Silence(std::uint32_t position) noexcept;
  /// Counts a pause of the listener at a position, or the end of one.
  ///@{
  void Pause(std::uint32_t position) noexcept;
  void Resume(std::uint32_t position) noexcept;
  ///@}

  /// Takes listeners out that were marked as removed, as many as there is room for. None is left
  /// when the last place stays empty.
  void Sweep(std::span<comlike_ptr<const BindStateBase>> out) noexcept;

  /// How many running broadcasts will report their end, see ListenerPin. Rises under the
  /// registry's lock only.
  std::atomic<std::uint32_t> reports{0};
  /// How many of the running broadcasts have no place in their threads' records.
  std::atomic<std::uint32_t> withoutPlace{0};
  /// Set, under the write lock, when the registry lets go of an array that is still running: the
  /// last broadcast to report destroys it.
  bool retired = false;
  /// The next one in the registry's list of retired arrays.
  ListenerArray* nextRetired = nullptr;

 private:
  ListenerArray(const VtrString& name, std::uint32_t size) noexcept;
  ~ListenerArray() = default;

  [[nodiscard]] std::uint64_t Removal(std::uint32_t position) const noexcept;
  [[nodiscard]] bool IsRegistered(std::uint32_t position) const noexcept {
    return Removal(position) >= ListenerMark::never - ListenerMark::mostPauses;
  }
  void SetRemoval(std::uint32_t position, std::uint64_t removal) noexcept;
  [[nodiscard]] comlike_ptr<const BindStateBase> Vacate(std::uint32_t position) noexcept;

  VtrString property;
  Listener* listeners;
  BindStateBase::CallLoop loop = nullptr;
  std::uint32_t capacity;
  std::uint32_t count = 0;
  std::uint32_t live = 0;
  std::uint32_t removed = 0;
  std::uint64_t lastRemoval = 0;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A ListenerArray holds the listeners of one property in one block of memory, in the order of
/// their registration.
///
/// A broadcast pins the array, runs the listeners that the array had at that moment, and writes
/// nothing to it. A writer holds the registry's write lock. It appends in place, behind the
/// listeners that running broadcasts look at, and moves or frees nothing that they still see.
///
/// So a listener that is removed while the array is pinned stays in it, marked with the number of
/// its removal: broadcasts that began before the removal still run it, later ones skip it, and it
/// is swept out at the end of the last broadcast that could see it. Without a pin the listener is
/// taken out at once and leaves a hole, at which a broadcast runs nothing. Holes are closed when
/// they outnumber the listeners. Removing never allocates.
///
/// Two things change under a pin: the mark, and the function of a listener that is paused or ended
/// for good, which is exchanged for a function that does nothing. docs/how-it-works.md, "The
/// broadcast protocol", states the invariants.
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <span>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "ReaderRecord.h"

namespace DataBinding::details {

/// A Listener is the function and the state that a broadcast calls.
using Listener = VtrUtils::details::DirectCall;

/// Says which listener stands at a position, and whether it is registered.
struct ListenerMark {
  static constexpr std::uint64_t never = std::numeric_limits<std::uint64_t>::max();
  static constexpr std::uint64_t mostPauses = std::numeric_limits<std::uint32_t>::max();
  static constexpr std::uint64_t hole = 0;

  std::uint64_t id;
  /// While the listener is registered: `never`, minus the number of its pauses. Once its place is
  /// empty: `hole`. Otherwise the number of its removal. A broadcast calls the listener if this is
  /// greater than the number of the last removal before the broadcast began. Broadcasts may read it
  /// while a writer sets it.
  std::atomic<std::uint64_t> removal;
};

class ListenerArray {
 public:
  [[nodiscard]] static ListenerArray* Make(const VtrString& property, std::uint32_t capacity);
  /// Releases the callbacks that are still in the array and frees the memory.
  static void Destroy(ListenerArray* array);

  ListenerArray(const ListenerArray&) = delete;
  ListenerArray& operator=(const ListenerArray&) = delete;

  [[nodiscard]] const VtrString& Property() const noexcept { return property; }
  [[nodiscard]] const Listener* Listeners() const noexcept { return At(0); }
  /// Returns the mark of each listener. The marks stand behind the room for the listeners.
  [[nodiscard]] ListenerMark* Marks() const noexcept {
    return reinterpret_cast<ListenerMark*>(At(capacity));
  }
  /// Calls the listener at a position with the name that is announced, unless the position is a
  /// hole or the listener is silenced. For arrays whose listeners take a name.
  void CallWithName(std::uint32_t position, const VtrString& name) const;
  /// Returns the loop that calls listeners without a name. If all of them come from one module, it
  /// is that module's copy, which reaches them faster; otherwise it is the library's.
  [[nodiscard]] BindStateBase::CallLoop Loop() const noexcept { return loop; }
  /// Returns how many positions are in use, holes included.
  [[nodiscard]] std::uint32_t Count() const noexcept { return count; }
  /// Returns how many listeners are registered.
  [[nodiscard]] std::uint32_t Live() const noexcept { return live; }
  [[nodiscard]] bool IsFull() const noexcept { return count == capacity; }
  /// Returns the number of the last removal that was made under a pin.
  [[nodiscard]] std::uint64_t LastRemoval() const noexcept { return lastRemoval; }
  /// Returns true while the array holds listeners that were removed under a pin.
  [[nodiscard]] bool HasRemoved() const noexcept { return removed != 0; }

  /// Adds a listener at the end. The array must not be full.
  void Append(std::uint64_t id, const RepeatingCallbackBase& callback) noexcept;
  /// Makes room by closing holes. The array must not be pinned.
  void CloseHoles() noexcept;
  /// Makes a larger array with the same listeners. This array is left empty, unless it is pinned:
  /// then it keeps its listeners, and both arrays share the callbacks.
  [[nodiscard]] ListenerArray* Grown(bool pinned);

  /// Takes a listener out of an array that is not pinned. The caller gets the callback's state, and
  /// releases it when it no longer holds the lock.
  [[nodiscard]] comlike_ptr<const BindStateBase> TakeOut(std::uint32_t position) noexcept;
  /// Marks a listener of a pinned array as removed.
  void MarkRemoved(std::uint32_t position) noexcept;
  /// Returns false for a hole, and for a listener that was removed under a pin.
  [[nodiscard]] bool IsRegistered(std::uint32_t position) const noexcept {
    return Removal(position) >= ListenerMark::never - ListenerMark::mostPauses;
  }
  /// Returns the position of a listener, which may be one that was removed under a pin, or Count()
  /// if the array does not have the listener. Takes logarithmic time.
  [[nodiscard]] std::uint32_t Find(std::uint64_t id) const noexcept;
  /// From now on a broadcast that comes to this position calls nothing there.
  void Silence(std::uint32_t position) noexcept;
  /// Begins or ends a pause of the listener at a position. Pauses are counted.
  ///@{
  void Pause(std::uint32_t position) noexcept;
  void Resume(std::uint32_t position) noexcept;
  ///@}

  /// Takes out listeners that are marked as removed, as many as `out` has room for. If the last
  /// place of `out` is still empty, no removed listener is left.
  void Sweep(std::span<comlike_ptr<const BindStateBase>> out) noexcept;

  /// Counts the reports that are due: one from each running broadcast whose pin was handed over
  /// (see ListenerPin), and one from each thread that waits for the end of a call. It changes under
  /// the registry's lock only.
  std::atomic<std::uint32_t> reports{0};
  /// Counts the running broadcasts that found no free pin in their thread's record.
  std::atomic<std::uint32_t> withoutPlace{0};
  /// This is true once no property has the array any more, although broadcasts still run it. The
  /// last broadcast that reports destroys it. Set under the write lock.
  bool retired = false;
  /// Leads through the registry's list of retired arrays.
  ListenerArray* nextRetired = nullptr;

 private:
  ListenerArray(const VtrString& name, std::uint32_t size) noexcept;
  ~ListenerArray() = default;

  /// Returns the listener at a position. The listeners stand behind the object.
  [[nodiscard]] Listener* At(std::uint32_t position) const noexcept {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): they are not part of the object
    return reinterpret_cast<Listener*>(const_cast<ListenerArray*>(this) + 1) + position;
  }
  [[nodiscard]] std::uint64_t Removal(std::uint32_t position) const noexcept;
  void SetRemoval(std::uint32_t position, std::uint64_t removal) noexcept;
  [[nodiscard]] comlike_ptr<const BindStateBase> Vacate(std::uint32_t position) noexcept;

  VtrString property;
  BindStateBase::CallLoop loop = nullptr;
  std::uint32_t capacity;
  std::uint32_t count = 0;
  std::uint32_t live = 0;
  std::uint32_t removed = 0;
  std::uint64_t lastRemoval = 0;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A PropertyAnnouncement announces the changed properties of a source, and whatever is computed
/// from them in any source.
///
/// A property is noted, due, or neither. Its source has *noted* it when it has changed. It is *due*
/// once an announcement has taken it over. It is neither when everything about it has been told. An
/// announcement first makes due what its source has noted. Then it takes the due property of the
/// least turn, until none of its own is left. If that property must wait, because a batch is open
/// on its source or because something that it follows is noted, it is noted again. Otherwise the
/// properties that follow it are made due, and it is told by UpdateListeners of its source.
///
/// 1. Turns are such that a property comes after all that it follows. Properties that were set come
///    first, by the order of their changes; then come computed ones, by the order in which they
///    were made. A property can only follow properties that were made before it.
/// 2. Therefore one announcement tells each property at most once, after all that it follows, and
///    then ends. It takes time in proportion to the properties told, their ties, and the logarithm
///    of how many are due at once.
/// 3. When a property is told, its followers are due. They are told after the property's listeners.
///    Where one of these listeners changes something else that a follower follows, the nested
///    announcement of that change tells the follower. A property that must wait is told as soon as
///    the property that it waits for has been told. Only direct followers of a noted property wait:
///    to look further would cost a walk over all ties.
/// 4. A change within a callback is announced at once, by a nested announcement. That one takes
///    over from the outer one what it makes due, and leaves the rest to it. So callbacks of a
///    thousand properties that each set another one nest one announcement at a time.
/// 5. No code refers to a property while it is told, so it may end, and so may any other: a noted
///    or due property takes itself out. A property that waited only for the one that ended is made
///    due in the innermost announcement, or the next one.
/// 6. Nothing is allocated, and no part of the lists lies on the stack. Where a hardware fault
///    skips the frames of a nested announcement, the outer one tells what that one has left. Where
///    it skips the frames of the outermost one, what was due there is told when it changes again.
#pragma once

#include <cstdint>

#include "DataBinding/property/details/PropertyBase.h"
#include "DueProperties.h"

namespace DataBinding::details {

class PropertyAnnouncement {
 public:
  PropertyAnnouncement() noexcept;
  PropertyAnnouncement(const PropertyAnnouncement&) = delete;
  PropertyAnnouncement& operator=(const PropertyAnnouncement&) = delete;
  /// Notes again what Run has not told, because the thread was cancelled.
  ~PropertyAnnouncement();

  /// Makes due what a source has noted.
  void Take(PropertyChanges& noted) noexcept;
  /// Tells all that is due here. An exception of an overridden UpdateListeners stops nothing; the
  /// first one is thrown at the end.
  void Run();

  /// Takes a property out of the place where it stands, if it stands in one.
  static void Forget(PropertyExtras& property) noexcept;
  /// Notes a property as changed.
  static void Note(PropertyExtras& property) noexcept;
  /// Makes due the noted properties that follow a property which ends, if it is noted itself. Some
  /// of them may have to wait for another one and are then noted again.
  static void ReleaseFollowers(const PropertyExtras& ending) noexcept;

 private:
  [[nodiscard]] PropertyExtras* TakeNext() noexcept;
  void MakeDue(PropertyExtras& property) noexcept;
  void Tell(PropertyExtras& property);
  [[nodiscard]] static bool MustWait(const PropertyExtras& property) noexcept;
  [[nodiscard]] static PropertyChanges* ChangesOf(const PropertyExtras& property) noexcept;

  DueProperties& due;
  std::uint32_t depth;
};

}  // namespace DataBinding::details

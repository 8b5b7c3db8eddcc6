// SPDX-License-Identifier: Apache-2.0
/// Announces the changed properties of a source, and whatever is computed from them in any source.
///
/// A property is in one of three places. It is *noted* by its source when it has changed; *due*
/// once an announcement has taken it over; in neither when everything about it has been told. An
/// announcement makes due what its source has noted, and then, until nothing of its own is due,
/// takes the property of the least turn: if that must wait, because a batch is open on its source
/// or because something that it follows is noted, it is noted again; otherwise its followers are
/// made due and it is told, by its source's UpdateListeners.
///
/// 1. Turns are such that a property comes after all that it follows: those which were set come
///    first, by the order of their changes; then computed ones, by the order in which they were
///    made. A property can only follow what was made before it.
/// 2. So within one announcement each property is told at most once, after all that it follows, and
///    the announcement ends, in time proportional to the properties told, their ties, and the
///    logarithm of how many are due at once.
/// 3. When a property is told, what follows it is due. It is told after the property's listeners,
///    or, where one of those changes something else that it follows, by the nested announcement of
///    that change. What must wait is told once what it waits for has been. Only what follows a
///    noted property directly waits: looking further would cost a walk over all ties.
/// 4. A change within a callback is announced at once, by a nested announcement. That takes over
///    what it makes due from the outer one, and leaves all else to it: so callbacks of a thousand
///    properties that each set another one nest one announcement at a time.
/// 5. Nothing refers to a property while it is told, so it may end, and so may any other: what is
///    noted or due takes itself out. What waited only for the one that ended is made due in the
///    innermost announcement, or the next one.
/// 6. Nothing is allocated, and nothing of an announcement lies on the stack: where a hardware
///    fault skips the frames of a nested one, the outer one tells what that has left. Where it
///    skips those of the outermost one, what was due there is told when it changes again.
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
  /// Tells all that is due here. What an overridden UpdateListeners throws stops nobody; the first
  /// exception is thrown at the end.
  void Run();

  /// Takes a property out of where it stands, if anywhere.
  static void Forget(PropertyBase& property) noexcept;
  /// Notes a property as changed.
  static void Note(PropertyBase& property) noexcept;
  /// Makes due what waits only for a property that ends, and maybe more.
  static void ReleaseFollowers(const PropertyBase& ending) noexcept;

 private:
  [[nodiscard]] PropertyBase* TakeNext() noexcept;
  void MakeDue(PropertyBase& property) noexcept;
  void Tell(PropertyBase& property);
  [[nodiscard]] static bool MustWait(const PropertyBase& property) noexcept;

  DueProperties& due;
  std::uint32_t depth;
};

}  // namespace DataBinding::details

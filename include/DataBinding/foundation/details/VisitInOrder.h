// SPDX-License-Identifier: Apache-2.0
/// Visits the entries of an ordered map, one after the other, although anybody who is called may
/// change the map.
///
/// A visit knows its place by the key of the last entry, and looks the next one up by that key
/// after each call. Therefore the visitor may add entries, remove any of them, visit the map once
/// more, and end it. An entry that is added behind the place is still visited. One that is removed
/// before it was reached is not.
///
/// A visit is written down nowhere, neither in the map nor in a list on the stack. So nothing is
/// left behind when a hardware fault in a listener skips the frames of a visit, and removing an
/// entry costs the same while the map is visited. A step takes logarithmic time and allocates
/// nothing, unless copying a key does. One thread.
///
///   VisitInOrder(hooks, [&](int /*id*/, const Hook& hook) {
///     const EventHookCallback call = hook.call;  // the hook may take itself off
///     call(name, arguments);
///     return !isBroadcasterGone();
///   });
#pragma once

namespace VtrUtils {

/// Calls visit(key, value) for the entries in the order of their keys, for as long as it answers
/// true. It must answer false once the map has ended, which is not looked at any more then. The key
/// outlasts the call; the value may end within it, together with its entry.
template <class Map, class Visitor>
void VisitInOrder(Map& map, Visitor visit) {
  for (auto next = map.begin(); next != map.end();) {
    const typename Map::key_type key = next->first;
    if (!visit(key, next->second)) return;
    next = map.upper_bound(key);
  }
}

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::VisitInOrder;
}  // namespace DataBinding

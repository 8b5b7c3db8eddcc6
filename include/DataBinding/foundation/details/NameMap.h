// SPDX-License-Identifier: Apache-2.0
/// A NameMap holds values by name, in no particular order, and finds one in constant time.
///
/// Names are compared exactly, with regard to case, and hashed by all their characters, so that
/// names which differ in few places do not collide. Any kind of text can be looked up, and no
/// string is made for that. When the map grows, its iterators become invalid, but its keys and
/// values stay where they are.
///
///   NameMap<int> counts;
///   ++counts[name];
///   const auto found = counts.find(VtrStringView(L"Memory"));
#pragma once

#include <cstddef>
#include <functional>
#include <unordered_map>

#include "DataBinding/foundation/String.h"

namespace VtrUtils {

/// Hashes all characters of a name, whatever kind of text holds it.
struct NameHash {
  /// Lets a map be asked without making a string.
  using is_transparent = void;
  /// Deliberately not noexcept: in that case libstdc++ keeps the hash in each node, and a search
  /// need not read the names of the nodes that it passes.
  [[nodiscard]] std::size_t operator()(VtrPlatform::VtrStringView name) const {
    return std::hash<VtrPlatform::VtrStringView>()(name);
  }
};

/// Compares names exactly, whatever kinds of text hold them.
struct NameEqual {
  /// Lets a map be asked without making a string.
  using is_transparent = void;
  /// Returns true for the same characters, with regard to case.
  [[nodiscard]] bool operator()(VtrPlatform::VtrStringView left,
                                VtrPlatform::VtrStringView right) const noexcept {
    return left == right;
  }
};

/// Where an insertion must not fail, the node is made beforehand: see ReserveOneMore.
template <class Value>
using NameMap = std::unordered_map<VtrPlatform::VtrString, Value, NameHash, NameEqual>;

/// Makes room for one node more, so that inserting it cannot fail. `promised` is the number of
/// nodes for which room was made before and that are not inserted yet. Serves any hash map of the
/// standard library.
template <class HashMap>
void ReserveOneMore(HashMap& map, std::size_t promised = 0) {
  const double room = static_cast<double>(map.bucket_count()) * map.max_load_factor();
  const bool isFresh = map.bucket_count() == 1;  // libstdc++ makes buckets at the first insertion
  const std::size_t size = map.size() + promised;
  if (isFresh || static_cast<double>(size + 1) > room) map.reserve(2 * size + 1);
}

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::NameEqual;
using VtrUtils::NameHash;
using VtrUtils::NameMap;
using VtrUtils::ReserveOneMore;
}  // namespace DataBinding

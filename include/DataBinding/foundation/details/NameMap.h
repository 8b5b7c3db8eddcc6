// SPDX-License-Identifier: Apache-2.0
/// Values by name, found in constant time however many there are, in no order.
///
/// Names are told apart exactly, case included, and hashed by all their characters, so that names
/// which differ in few places do not meet. A map is asked by any kind of text; asking makes no
/// string. Iterators end when the map grows; keys and values stay where they are.
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
  /// Deliberately not noexcept: libstdc++ keeps the hashes beside the names then, and need not read
  /// the names themselves of those that a search passes.
  [[nodiscard]] std::size_t operator()(VtrPlatform::VtrStringView name) const {
    return std::hash<VtrPlatform::VtrStringView>()(name);
  }
};

/// Tells names apart exactly, whatever kinds of text hold them.
struct NameEqual {
  /// Lets a map be asked without making a string.
  using is_transparent = void;
  /// True for the same characters, case included.
  [[nodiscard]] bool operator()(VtrPlatform::VtrStringView left,
                                VtrPlatform::VtrStringView right) const noexcept {
    return left == right;
  }
};

/// Nodes are made before they are filed where filing must not fail: see ReserveOneMore.
template <class Value>
using NameMap = std::unordered_map<VtrPlatform::VtrString, Value, NameHash, NameEqual>;

/// Makes room for one more, so that inserting a node cannot fail. `promised` counts those for which
/// room was made that are not inserted yet.
template <class Value>
void ReserveOneMore(NameMap<Value>& map, std::size_t promised = 0) {
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

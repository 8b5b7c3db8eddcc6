// SPDX-License-Identifier: Apache-2.0
/// DueProperties holds the properties that one thread is about to announce, for all announcements
/// that are under way on it. The properties of the innermost announcement come first, and within it
/// those of the lesser turn.
///
/// It is a pairing heap of links that the properties contain. Adding takes constant time, and
/// taking the first one or removing any takes logarithmic time on average over many. Nothing is
/// ever allocated. A property that ends removes itself.
#pragma once

#include <cstdint>

#include "DataBinding/datasource/details/PropertyChanges.h"

namespace DataBinding::details {

class DueProperties {
 public:
  constexpr DueProperties() noexcept = default;
  DueProperties(const DueProperties&) = delete;
  DueProperties& operator=(const DueProperties&) = delete;
  ~DueProperties() = default;

  static DueProperties& OfThisThread() noexcept;

  /// Returns the property to announce next, or null.
  [[nodiscard]] PropertyLink* First() const noexcept { return root; }
  /// Adds a property that stands in no place yet.
  void Add(PropertyLink& property, std::uint32_t depth) noexcept;
  void Remove(PropertyLink& property) noexcept;

  /// Counts the announcements that are under way, one within the other.
  std::uint32_t announcements = 0;

 private:
  PropertyLink* root = nullptr;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// The properties that one thread is about to announce, of all announcements that are under way on
/// it: those of the innermost announcement first, within it those of the lesser turn.
///
/// A pairing heap of the properties' own links: adding takes constant time, taking the first one
/// and removing any logarithmic time on average over many, and nothing is ever allocated. A
/// property that ends removes itself.
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

  /// The one to announce next, or null.
  [[nodiscard]] PropertyLink* First() const noexcept { return root; }
  /// Adds a property that stands nowhere.
  void Add(PropertyLink& property, std::uint32_t depth) noexcept;
  void Remove(PropertyLink& property) noexcept;

  /// How many announcements are under way, one within the other.
  std::uint32_t announcements = 0;

 private:
  PropertyLink* root = nullptr;
};

}  // namespace DataBinding::details

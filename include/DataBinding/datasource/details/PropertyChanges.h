// SPDX-License-Identifier: Apache-2.0
/// The properties of one data source that have changed and wait to be announced, in order of their
/// first change: while a PropertyBatch is open on the source, or while something that they are
/// computed from waits.
///
/// The properties bring their links along, so that noting a change allocates nothing. A property
/// that ends takes itself out.
#pragma once

#include <cstdint>

#include "DataBinding/Export.h"

namespace DataBinding::details {

/// By its link a property is noted as changed and waits to be announced. The link stands in at most
/// one place at a time.
struct PropertyLink {
  enum class Place : std::uint8_t {
    None,
    Noted,  ///< in the PropertyChanges of its source
    Due     ///< among those that this thread is about to announce
  };
  /// Computed properties have a turn from here on, given in the order in which they are made.
  static constexpr auto firstComputedTurn = std::uint64_t{1} << 63;

  [[nodiscard]] bool IsComputed() const noexcept { return turn >= firstComputedTurn; }

  PropertyLink* next = nullptr;
  PropertyLink* previous = nullptr;
  PropertyLink* child = nullptr;
  /// Within one announcement, properties are told in the order of their turns, the least first. A
  /// property that is not computed has the number of its change for its turn.
  std::uint64_t turn = 0;
  /// The announcement that it is due in: 1 for the outermost one, more for nested ones.
  std::uint32_t depth = 0;
  Place place = Place::None;
};

class DATABINDING_API PropertyChanges {
 public:
  PropertyChanges() noexcept = default;
  PropertyChanges(const PropertyChanges&) = delete;
  PropertyChanges& operator=(const PropertyChanges&) = delete;
  ~PropertyChanges() = default;

  void Open() noexcept { ++openBatches; }
  /// True when the last batch was closed.
  [[nodiscard]] bool Close() noexcept { return --openBatches == 0; }
  [[nodiscard]] bool IsOpen() const noexcept { return openBatches != 0; }

  /// Notes a property that stands nowhere.
  void Add(PropertyLink& property) noexcept;
  /// Takes out a property that is noted here.
  void Remove(PropertyLink& property) noexcept;
  /// Takes the first one out; null when there is none.
  [[nodiscard]] PropertyLink* TakeFirst() noexcept;

 private:
  unsigned openBatches = 0;
  std::uint64_t lastChange = 0;
  PropertyLink* first = nullptr;
  PropertyLink* last = nullptr;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// PropertyChanges lists the properties of one data source that have changed and wait to be
/// announced, in order of their first change. They wait while a PropertyBatch is open on the
/// source, or while a property that they are computed from waits.
///
/// A source has this list once a batch was opened on it, or once one of its properties is computed
/// from others or others from it. Each of those properties brings along the links by which it
/// stands in the list. So noting a change allocates nothing, and a property that ends takes itself
/// out.
#pragma once

#include <cstdint>

#include "DataBinding/Export.h"

namespace DataBinding::details {

/// The extras of a property derive from this link, by which it is noted as changed and waits to be
/// announced. The link stands in at most one place at a time.
struct PropertyLink {
  enum class Place : std::uint8_t {
    None,
    Noted,  ///< it stands in the PropertyChanges of its source
    Due     ///< it stands in the DueProperties of the announcing thread
  };
  /// The turns of computed properties begin here. They are given in the order in which the
  /// properties are made.
  static constexpr auto firstComputedTurn = std::uint64_t{1} << 63;

  [[nodiscard]] bool IsComputed() const noexcept { return turn >= firstComputedTurn; }

  PropertyLink* next = nullptr;
  PropertyLink* previous = nullptr;
  PropertyLink* child = nullptr;
  /// Within one announcement, properties are told in the order of their turns, the least first. A
  /// property that is not computed takes the number of its change as its turn.
  std::uint64_t turn = 0;
  /// Tells the announcement in which the property is due: 1 for the outermost one, more for nested
  /// ones.
  std::uint32_t depth = 0;
  Place place = Place::None;
  /// Tells whether the extras have a validator or a hook. It stands here to fill a gap.
  bool hasOptions = false;
};

class DATABINDING_API PropertyChanges {
 public:
  PropertyChanges() noexcept = default;
  PropertyChanges(const PropertyChanges&) = delete;
  PropertyChanges& operator=(const PropertyChanges&) = delete;
  /// Takes out the properties that outlive their source.
  ~PropertyChanges();

  /// Tells whether every property of the source has its links, so that a batch may be opened.
  ///@{
  [[nodiscard]] bool AreAllLinked() const noexcept { return areAllLinked; }
  void SetAllLinked() noexcept { areAllLinked = true; }
  ///@}
  void Open() noexcept { ++openBatches; }
  /// Closes one batch, and returns true if it was the last open one.
  [[nodiscard]] bool Close() noexcept { return --openBatches == 0; }
  [[nodiscard]] bool IsOpen() const noexcept { return openBatches != 0; }

  /// Adds a property that stands in no place yet.
  void Add(PropertyLink& property) noexcept;
  /// Takes out a property that is noted here.
  void Remove(PropertyLink& property) noexcept;
  /// Takes out the first property and returns it, or null when there is none.
  [[nodiscard]] PropertyLink* TakeFirst() noexcept;

 private:
  unsigned openBatches = 0;
  bool areAllLinked = false;
  std::uint64_t lastChange = 0;
  PropertyLink* first = nullptr;
  PropertyLink* last = nullptr;
};

}  // namespace DataBinding::details

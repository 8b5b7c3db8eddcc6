/// The properties of one data source that have changed while a PropertyBatch is open on it, in
/// order of their first change.
///
/// The properties bring their links along, so that noting a change allocates nothing. A property
/// that ends takes itself out.
#pragma once

#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

/// What a property brings along to be noted as changed.
struct PropertyLink {
  explicit PropertyLink(VtrString propertyName) noexcept : name(std::move(propertyName)) {}

  VtrString name;
  PropertyLink* next = nullptr;
  PropertyLink* previous = nullptr;
  bool isChanged = false;
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

  /// Notes a property, once.
  void Add(PropertyLink& property) noexcept;
  /// Takes a property out if it is in.
  void Remove(PropertyLink& property) noexcept;
  /// Takes the first one out; null when there is none.
  [[nodiscard]] PropertyLink* TakeFirst() noexcept;

 private:
  unsigned openBatches = 0;
  PropertyLink* first = nullptr;
  PropertyLink* last = nullptr;
};

}  // namespace DataBinding::details

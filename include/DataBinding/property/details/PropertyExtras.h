// SPDX-License-Identifier: Apache-2.0
/// PropertyExtras hold what few properties have: weak pointers and an accessor, properties that are
/// computed from them, and the marks of batches and announcements. A class that derives from it
/// adds a validator and a hook.
///
/// A property has extras from its making on if it has options, if it is computed, or if a batch was
/// ever opened on its source. Any other property gets them when somebody looks for it by name and
/// keeps what was found, or computes from it. So noting a change in an open batch, and anything
/// between a change and its announcement, allocates nothing.
#pragma once

#include <atomic>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/details/PropertyChanges.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/ComlikePtr.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding::details {

class PropertyBase;

struct DATABINDING_API PropertyExtras : PropertyLink {
  PropertyExtras() noexcept = default;
  PropertyExtras(const PropertyExtras&) = delete;
  PropertyExtras& operator=(const PropertyExtras&) = delete;
  virtual ~PropertyExtras();

  /// Returns true when the property neither follows others, nor is followed, nor waits to be told.
  [[nodiscard]] bool IsAlone() const noexcept {
    return dependents.empty() && dependencies.empty() && place == Place::None;
  }

  PropertyBase* property = nullptr;
  WeakReferenceOwner weak;
  /// Refers to the state that all callbacks of the accessor share, once there is one.
  std::atomic<BindStateBase*> accessor{nullptr};
  /// Holds the properties that are computed from this one, and those that it is computed from.
  ///@{
  std::vector<PropertyExtras*> dependents;
  std::vector<PropertyExtras*> dependencies;
  ///@}
};

/// The extras of a property with options.
struct DATABINDING_API CheckedExtras : PropertyExtras {
  CheckedExtras() noexcept { hasOptions = true; }

  /// Holds the other properties that the validator reads.
  std::vector<WeakPtr<PropertyBase>> readByValidator;
};

}  // namespace DataBinding::details

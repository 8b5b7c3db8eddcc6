// SPDX-License-Identifier: Apache-2.0
// These functions look for a list among the properties of a data source.
#pragma once

#include "DataBinding/lists/details/ListStorage.h"
#include "DataBinding/property/PropertyAccess.h"

namespace DataBinding::details {

inline ReflectionAccess::Found FindList(const IDataSource* source, const VtrString& name) {
  return ReflectionAccess::Find(source, name, runtime_type<AnyList>::Get(),
                                runtime_type<const AnyList>::Get());
}

/// Returns the list that a property is which FindList has found.
inline AnyList& ListOf(PropertyBase& property) {
  return static_cast<ListProperty&>(property).Rows();
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
// The results of list operations that were refused, with texts that name the list.
#pragma once

#include <cstddef>

#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::details {

/// Says that a list does not have so many rows from a place on.
[[nodiscard]] SetResult NoSuchPlace(const ListNode& list, std::size_t at, std::size_t count);
/// Says why a field does not take a value.
[[nodiscard]] SetResult RefusedCell(const ListNode& list, const RowField& field,
                                    PropertyError error, const VtrString& reason);

}  // namespace DataBinding::details

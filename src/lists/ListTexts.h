// SPDX-License-Identifier: Apache-2.0
// The results of list operations that were refused, with texts that name the list.
#pragma once

#include <cstddef>
#include <exception>

#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::details {

/// Is reported to the failure handler. Its text takes no memory.
class ListFault : public std::exception {
 public:
  explicit ListFault(const char* itsText) noexcept : text(itsText) {}
  [[nodiscard]] const char* what() const noexcept override { return text; }

 private:
  const char* text;
};

/// Returns a list's name for a message.
[[nodiscard]] VtrString ShownName(const ListNode& list);
/// Says that a list does not have so many rows from a place on.
[[nodiscard]] SetResult NoSuchPlace(const ListNode& list, std::size_t at, std::size_t count);
/// Says why a field does not take a value.
[[nodiscard]] SetResult RefusedCell(const ListNode& list, const RowField& field,
                                    PropertyError error, const VtrString& reason);

/// Says that the rows of a list cannot be moved.
[[nodiscard]] SetResult CannotMove(const ListNode& list);
/// Says that a list has no row of a key.
[[nodiscard]] SetResult NoSuchKey(const ListNode& list, const RowTable& table, const void* key);
/// Says that a row is not in the list any more when all that waits is done.
[[nodiscard]] SetResult RowIsGone(const ListNode& list);
/// Says that there is no data source to insert, or no list any more.
[[nodiscard]] SetResult NoSuchSource(const ListNode& list);
/// Says that the function of an update changes its list otherwise.
[[nodiscard]] SetResult IsBeingUpdated(const ListNode& list);

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
#include "ListTexts.h"

namespace DataBinding::details {

VtrString ShownName(const ListNode& list) {
  const VtrString name = list.ListName();
  return name.IsEmpty() ? VtrString(L"without name") : name;
}

SetResult NoSuchPlace(const ListNode& list, std::size_t at, std::size_t count) {
  SetResult result{false, PropertyError::OutOfRange, {}};
  result.text.Format(L"List \"%s\" has %d rows, and not %d from place %d on.", ShownName(list),
                     list.Size(), count, at);
  return result;
}

SetResult RefusedCell(const ListNode& list, const RowField& field, PropertyError error,
                      const VtrString& reason) {
  SetResult result{false, error, {}, reason};
  result.text.Format(L"Field \"%s\" of list \"%s\" refuses the value: %s", field.name,
                     ShownName(list), reason);
  return result;
}

SetResult CannotMove(const ListNode& list) {
  SetResult result{false, PropertyError::ReadOnly, {}, L"the rows cannot be moved here"};
  result.text.Format(L"The rows of list \"%s\" cannot be moved here.", ShownName(list));
  return result;
}

SetResult NoSuchKey(const ListNode& list, const RowTable& table, const void* key) {
  SetResult result{false, PropertyError::Absent, {}};
  result.text.Format(L"List \"%s\" has no row with the key %s.", ShownName(list),
                     table.keyText(key));
  return result;
}

SetResult RowIsGone(const ListNode& list) {
  SetResult result{false, PropertyError::Absent, {}};
  result.text.Format(L"The row is no longer in list \"%s\".", ShownName(list));
  return result;
}

SetResult NoSuchSource(const ListNode& list) {
  SetResult result{false, PropertyError::NoSource, {}};
  result.text.Format(L"There is no data source to insert, or list \"%s\" has ended.",
                     ShownName(list));
  return result;
}

SetResult IsBeingUpdated(const ListNode& list) {
  SetResult result{false, PropertyError::Refused, {}, L"an update of the list is being made"};
  result.text.Format(L"The function of an update must not change list \"%s\" otherwise.",
                     ShownName(list));
  return result;
}

}  // namespace DataBinding::details

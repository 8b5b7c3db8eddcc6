// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/AnyList.h"

#include <utility>

#include "ListTexts.h"
namespace DataBinding {

std::size_t ListChange::PlaceOf(std::size_t i) const noexcept {
  switch (Kind()) {
    case ListChangeKind::Changed:
      return node->IndexOfRow(Ids()[i]);
    case ListChangeKind::Moved:
      return (isBefore ? At() : To()) + i;
    default:
      return At() + i;
  }
}

std::optional<RowId> AnyList::IdAt(std::size_t index) const noexcept {
  if (index >= Size()) return std::nullopt;
  return At(index);
}

std::optional<std::size_t> AnyList::IndexOf(RowId id) const noexcept {
  const std::size_t found = IndexOfRow(id);
  if (found == details::RowOrder::nowhere) return std::nullopt;
  return found;
}

const runtime_type_base& AnyList::RowType() const noexcept {
  const auto* const table = Table();
  return table == nullptr ? runtime_type<void>::Get() : *table->type;
}

std::size_t AnyList::FieldCount() const noexcept {
  const auto* const table = Table();
  return table == nullptr ? 0 : table->fields.size();
}

VtrString AnyList::FieldName(std::size_t number) const {
  return number < FieldCount() ? Table()->fields[number].name : VtrString();
}

std::optional<std::size_t> AnyList::FieldNumber(const VtrString& name) const noexcept {
  for (std::size_t number = 0; number < FieldCount(); ++number) {
    if (Table()->fields[number].name == name) return number;
  }
  return std::nullopt;
}

ValueKind AnyList::FieldKind(std::size_t number) const noexcept {
  return number < FieldCount() ? Table()->fields[number].kind : ValueKind::Nothing;
}

bool AnyList::CanSetField(std::size_t number) const {
  return FieldKind(number) != ValueKind::Nothing && !Table()->fields[number].isReadOnly &&
         !IsReadOnly();
}

SetResult AnyList::SetCell(std::size_t index, const VtrString& field, const Value& value) {
  const auto number = FieldNumber(field);
  if (number) return SetCell(index, *number, value);
  return {false, PropertyError::Absent,
          VtrString().Format(L"The rows of list \"%s\" have no field \"%s\".",
                             details::ShownName(*this), field)};
}

SetResult AnyList::SetCell(std::size_t index, std::size_t field, const Value& value) {
  if (index >= Size()) return details::NoSuchPlace(*this, index, 1);
  if (field >= FieldCount()) {
    return {false, PropertyError::Absent,
            VtrString().Format(L"The rows of list \"%s\" have %d fields, and no number %d.",
                               details::ShownName(*this), FieldCount(), field)};
  }
  const details::RowField& described = Table()->fields[field];
  if (described.isReadOnly) {
    return {false, PropertyError::ReadOnly,
            VtrString().Format(L"Field \"%s\" of list \"%s\" can be read, but only the owner of "
                               L"the list sets it.",
                               described.name, details::ShownName(*this))};
  }
  return UpdateRow(At(index), [&](void* row) {
    SetResult result = described.set(row, value);
    if (result.IsAccepted()) return result;
    return details::RefusedCell(*this, described, result.error, result.reason);
  });
}

SetResult AnyList::SetCellText(std::size_t index, std::size_t field, const VtrString& text) {
  const ValueKind kind = FieldKind(field);
  const bool canParse = kind != ValueKind::Text && index < Size() && CanSetField(field);
  if (!canParse) return SetCell(index, field, text);
  const details::RowField& described = Table()->fields[field];
  const auto value = details::ParseValue(kind, text, *described.type);
  if (value) return SetCell(index, field, *value);
  return details::RefusedCell(*this, described, value.error, value.text);
}

Subscription AnyList::Observe(ListObserver<ListChange> observer) {
  return ObserveChanges([observer = std::move(observer)](const ListChange& change) {
    (change.IsBefore() ? observer.before : observer.after)(change);
  });
}

}  // namespace DataBinding

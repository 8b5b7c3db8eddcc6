// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/CurrentRow.h"

#include <algorithm>
#include <utility>

#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/property/PropertyBatch.h"

namespace DataBinding::details {

RowSource::RowSource(const VtrString& name, AnySelection& selection)
    : NamedDataSource(name), chosen(selection.AsWeakPtr()) {}

RowSource::~RowSource() = default;

/// The accessor answers null while there is no row, and therefore is filed by hand.
void RowSource::File(std::shared_ptr<PropertyBase> property, const runtime_type_base& type) {
  const auto present = [this](PropertyBase& field) {
    return ShownRow() == nullptr ? nullptr : &field;
  };
  const PropertyAccessor accessor = BindWeak(property->AsWeakPtr(), present);
  _AddDelegate(property->Name(), accessor.GetMemento(), type);
  fields.push_back(std::move(property));
}

void RowSource::PostConstruct() {
  NamedDataSource::PostConstruct();
  if (!chosen) return;
  const WeakPtr<RowSource> self(GetLiveness(), this);
  ofSelection = chosen->Observe({.changed = BindWeak(self, &RowSource::FollowSelection)});
  if (AnyList* const list = chosen->List()) {
    ofList = list->ObserveChanges(BindWeak(self, &RowSource::FollowList));
  }
  shown = chosen->CurrentId();
  numbered = shown;
}

bool RowSource::FindInterfaceByIID(const GUID& id, void** out) {
  if (out == nullptr || id != VtrUtils::InterfaceId<ShownRecord>::value) {
    return NamedDataSource::FindInterfaceByIID(id, out);
  }
  *out = static_cast<ShownRecord*>(this);
  return true;
}

std::optional<RowId> RowSource::ShownId() const noexcept {
  const AnySelection* const selection = chosen.Get();
  if (selection == nullptr || selection->List() == nullptr) return std::nullopt;
  return holds == 0 ? selection->CurrentId() : held;
}

std::uint64_t RowSource::Serial() const noexcept {
  const auto now = ShownId();
  if (std::exchange(numbered, now) != now) ++serial;
  return serial;
}

const void* RowSource::ShownRow() const noexcept {
  const auto id = ShownId();
  if (!id || (holds != 0 && !chosen->List()->Contains(*id))) return nullptr;
  return chosen->List()->RowOf(*id);
}

SetResult RowSource::Update(const RowEdit& edit) {
  if (const auto id = ShownId()) return chosen->List()->UpdateRow(*id, edit);
  return {false, PropertyError::Absent, WhyAbsent()};
}

void RowSource::Hold() noexcept {
  if (holds == 0) held = ShownId();
  ++holds;
}

void RowSource::Release() {
  if (--holds == 0) FollowSelection();
}

bool RowSource::IsListReadOnly() const {
  const AnySelection* const selection = chosen.Get();
  const AnyList* const list = selection == nullptr ? nullptr : selection->List();
  return list != nullptr && list->IsReadOnly();
}

void RowSource::FollowSelection() {
  if (holds != 0) return;
  const auto now = chosen ? chosen->CurrentId() : std::nullopt;
  if (std::exchange(shown, now) == now) return;
  static_cast<void>(Serial());
  AnnounceFields(~std::uint64_t{0});
}

/// A row that is held may go. Its id can be given to another one later, and must not lead to that.
void RowSource::FollowList(const ListChange& change) {
  if (held && !change.IsBefore() && change.Node().IndexOfRow(*held) == RowOrder::nowhere) {
    held.reset();
  }
  if (change.IsBefore() || change.Kind() != ListChangeKind::Changed || !shown) return;
  if (std::ranges::count(change.Ids(), *shown) != 0) AnnounceFields(change.Step().fields);
}

/// Announces the fields of these bits in one batch.
void RowSource::AnnounceFields(std::uint64_t bits) {
  PropertyBatch batch(*this);
  for (std::size_t number = 0; number < fields.size(); ++number) {
    if ((bits & RowTable::BitOf(number)) != 0) fields[number]->NotifyChanged();
  }
  batch.Commit();
}

CurrentRowBase::CurrentRowBase(IDataSourceProvider* itsScope, DataSourcePtr<RowSource> made)
    : scope(itsScope), source(made->GetLiveness(), made.get()) {
  if (scope == nullptr) return;
  isScopeThere = scope->GetLiveness();
  scope->WhenConnected(
      [to = scope, given = std::make_shared<DataSourcePtr<RowSource>>(std::move(made))] {
        if (*given != nullptr) GiveDataSource(*to, std::move(*given));
      });
}

CurrentRowBase::~CurrentRowBase() {
  if (!isScopeThere.IsValid()) return;
  FirstFailure dropped;  // of whoever is told that the source goes
  static_cast<void>(dropped.Try([this] {
    scope->WhenConnected([from = scope, ended = source] {
      if (ended) static_cast<void>(TakeDataSource(*from, ended.Get()));
    });
  }));
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A ListStorage is a list that holds its rows, without the operations that change it, which
/// ListData offers to everybody and ReadOnlyList to its source. A ListProperty is what makes it a
/// member of a source.
///
/// The slots of the list hold the rows, or pointers to them where they are data sources.
///
/// All lists are filed as AnyList, read-only ones as `const AnyList`, so that they can be found
/// without knowing their row type.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/ReadableList.h"
#include "DataBinding/lists/details/ListEngine.h"
#include "DataBinding/lists/details/OwnedSources.h"
#include "DataBinding/property/details/PropertyBase.h"

namespace DataBinding::details {

template <AnyRow Row>
class ListStorage : public ReadableList<Row> {
 public:
  ~ListStorage() override { TellEnd(); }

  /// Returns the row of a key, or null. Of several rows the first one counts.
  /// In a list of data sources this looks at one row after the other.
  [[nodiscard]] ShownRow<Row>* Find(const KeyOf<Row>& key) const noexcept requires hasKey<Row> {
    const RowId found = FindKey(&key);
    return found == ListNode::noRow ? nullptr : &this->RowAt(found);
  }

  [[nodiscard]] std::size_t Size() const noexcept final { return engine.Order().Size(); }
  [[nodiscard]] RowId At(std::size_t index) const noexcept final {
    return engine.Order().At(index);
  }
  [[nodiscard]] std::size_t IndexOfRow(RowId id) const noexcept final {
    return engine.Order().IndexOf(id);
  }
  [[nodiscard]] const void* RowOf(RowId id) const noexcept final {
    const void* const slot = engine.Slots().Row(id);
    if constexpr (SourceRow<Row>) return OwnedSources::SourceIn(slot);
    return slot;
  }
  void CopyRows(std::span<const RowId> ids, const void** to) const noexcept final {
    for (const RowId id : ids) *to++ = RowOf(id);
  }
  [[nodiscard]] TypedRow RowAtPlace(std::size_t index) const noexcept final {
    const void* const slot = engine.RowAtPlace(index);
    if constexpr (SourceRow<Row>) {
      return {slot == nullptr ? nullptr : OwnedSources::SourceIn(slot), Table()};
    } else {
      return {slot, Table()};
    }
  }
  [[nodiscard]] const RowTable* Table() const noexcept final {
    if constexpr (SourceRow<Row>) return ReadableList<Row>::Table();
    return &engine.Slots().Table();
  }
  [[nodiscard]] RowId IdsBelow() const noexcept final { return engine.Slots().IdsBelow(); }
  void CopyIds(std::size_t at, std::span<RowId> to) const noexcept final {
    engine.Order().CopyIds(at, to);
  }
  [[nodiscard]] RowId FindKey(const void* key) const noexcept final {
    if constexpr (SourceRow<Row>) return ListNode::FindKey(key);
    return engine.Find(key);
  }
  [[nodiscard]] const std::shared_ptr<ListTurns>& Turns() const noexcept final {
    return engine.Turns();
  }

 protected:
  ListStorage() : engine(*this, StoredTable()) {}

  void TellEnd() noexcept {
    ListNode::TellEnd([](ListNode& self) { static_cast<ListStorage&>(self).engine.End(); });
  }
  [[nodiscard]] static RowArray ArrayOf(std::vector<Row>& rows) noexcept {
    return {reinterpret_cast<std::byte*>(rows.data()), sizeof(Row), rows.size()};
  }
  /// Announces the name of the list, if it has one, when an outermost operation has changed it.
  virtual void Announce() {}

  ListEngine engine;

 private:
  [[nodiscard]] static const RowTable& StoredTable() {
    if constexpr (SourceRow<Row>) return OwnedSources::StoredTable();
    return TableOf<Row>();
  }
  [[nodiscard]] ListPlan Pending() const noexcept final { return engine.Pending(); }
  void AtRest() final {
    const auto alive = this->Liveness();
    const bool hasChanged = engine.Rest();
    if (hasChanged && alive.IsValid()) Announce();
  }
};

class DATABINDING_API ListProperty : public PropertyBase {
 public:
  [[nodiscard]] virtual AnyList& Rows() noexcept = 0;

  [[nodiscard]] const runtime_type_base& Type() const final;
  [[nodiscard]] PropertyValue<Value> ReadValue() const final;
  [[nodiscard]] VtrString ReadText() const final;
  SetResult TakeValue(const Value& value, Purpose purpose) final;
  SetResult TakeText(const VtrString& text, Purpose purpose) final;
  [[nodiscard]] ValueKind Kind() const noexcept final { return ValueKind::Nothing; }
  [[nodiscard]] const runtime_type_base& ValueType() const final;
  /// A list is not copied with the properties of its source.
  [[nodiscard]] std::unique_ptr<PropertyCopy> CopyFrom(const PropertyBase& other) final;

 protected:
  ListProperty(DataSourceImpl& itsSource, PropertyName propertyName, bool isReadOnlyList);
  ~ListProperty() override {
    if (IsChained()) EndAccess();
  }

 private:
  bool isReadOnly;
};

}  // namespace DataBinding::details

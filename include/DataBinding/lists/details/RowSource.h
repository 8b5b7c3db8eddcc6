// SPDX-License-Identifier: Apache-2.0
/// A RowSource is the data source of a CurrentRow: its properties are the fields of the row that a
/// selection shows. RowFieldProperty is such a property.
///
/// A property answers as absent while nothing is chosen; the source and its names stay. When
/// another row is chosen, the serial number grows and all properties are announced; when fields of
/// the shown row change, those are. What is set goes through the list's update of the row, and so
/// through the validators of its fields. A row that is a data source is lent: its own properties
/// are read and set. While the source holds a row (ShownRecord.h), it shows that one, whatever is
/// chosen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/lists/Selection.h"
#include "DataBinding/property/details/PropertyBase.h"
#include "DataBinding/property/details/ShownRecord.h"

namespace DataBinding::details {

class DATABINDING_API RowSource : public NamedDataSource, public ShownRecord {
 public:
  RowSource(const VtrString& name, AnySelection& selection);
  ~RowSource() override;

  /// Begins to follow the selection, when all properties are there.
  void PostConstruct() override;
  /// The shown row, or null.
  [[nodiscard]] const void* ShownRow() const noexcept;
  /// Changes the shown row by the list's update.
  [[nodiscard]] SetResult Update(const RowEdit& edit);
  /// Returns true while only the list's own source changes it.
  [[nodiscard]] bool IsListReadOnly() const;

  /// Grows also where it is asked before the selection has told of another row.
  [[nodiscard]] std::uint64_t Serial() const noexcept override;
  [[nodiscard]] const wchar_t* WhyAbsent() const noexcept override { return L"no row is chosen"; }
  void Hold() noexcept override;
  void Release() override;

 protected:
  bool FindInterfaceByIID(const GUID& id, void** out) override;
  /// Files a property under the type that its field has, in the order of the fields.
  void File(std::shared_ptr<PropertyBase> property, const runtime_type_base& type);

 private:
  [[nodiscard]] std::optional<RowId> ShownId() const noexcept;
  void FollowSelection();
  void FollowList(const ListChange& change);
  void AnnounceFields(std::uint64_t bits);

  WeakPtr<AnySelection> chosen;
  std::optional<RowId> shown;
  std::optional<RowId> held;
  std::size_t holds = 0;
  /// The number, and the row that it was last given to.
  ///@{
  mutable std::uint64_t serial = 0;
  mutable std::optional<RowId> numbered;
  ///@}
  std::vector<std::shared_ptr<PropertyBase>> fields;
  Subscription ofSelection;
  Subscription ofList;
};

/// A field of the shown row. T is the type of the field.
template <class T>
class RowFieldProperty final : public IProperty<T> {
 public:
  RowFieldProperty(RowSource& source, const RowField& described)
      : IProperty<T>(source, PropertyName(described.name)), owner(source), field(described) {}
  ~RowFieldProperty() override { this->EndAccess(); }

  [[nodiscard]] const runtime_type_base& Type() const override {
    return TypeOf(field.isReadOnly || owner.IsListReadOnly());
  }
  [[nodiscard]] static const runtime_type_base& TypeOf(bool isReadOnly) {
    if (isReadOnly) return runtime_type<const T>::Get();
    return runtime_type<T>::Get();
  }
  /// There is a row: the accessor of the property makes sure of it.
  [[nodiscard]] T GetValue() const override {
    const void* const row = owner.ShownRow();
    return field.property != nullptr ? Lent(row).GetValue()
                                     : *static_cast<const T*>(field.member(row));
  }
  SetResult SetValue(T value) override { return Edit(value, RowEdit::Aim::Change); }
  [[nodiscard]] SetResult CheckValue(const T& value) const override {
    return Edit(value, RowEdit::Aim::Check);
  }

 private:
  [[nodiscard]] IProperty<T>& Lent(const void* row) const {
    return static_cast<IProperty<T>&>(field.property(row));
  }
  void Restore(T former) override { Edit(former, RowEdit::Aim::PutBack); }
  SetResult Edit(const T& value, RowEdit::Aim aim) const {
    if (field.isReadOnly) return this->ReadOnlyResult();
    if (field.property != nullptr) {
      return owner.Update(
          RowEdit([&](const void* row) { return SetLent(Lent(row), value, aim); }, aim));
    }
    const auto edit = [&](void* row) {
      // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): a field of a row that may be changed
      *const_cast<T*>(static_cast<const T*>(field.member(row))) = value;
      return SetResult();
    };
    return owner.Update(RowEdit(edit, aim));
  }

  [[nodiscard]] static SetResult SetLent(IProperty<T>& lent, const T& value, RowEdit::Aim aim) {
    if (aim == RowEdit::Aim::Check) return lent.CheckValue(value);
    if (aim == RowEdit::Aim::Change) return lent.SetValue(value);
    lent.Restore(value);
    return {};
  }

  RowSource& owner;
  const RowField& field;
};

template <class Row>
class TypedRowSource final : public RowSource {
 public:
  TypedRowSource(const VtrString& name, Selection<Row>& selection) : RowSource(name, selection) {
    VisitFields<Row>([this](const auto& field, std::size_t number) {
      using T = typename std::remove_cvref_t<decltype(field)>::Type;
      const RowField& described = TableOf<Row>().fields[number];
      File(std::make_shared<RowFieldProperty<T>>(*this, described),
           RowFieldProperty<T>::TypeOf(described.isReadOnly));
    });
  }
};

}  // namespace DataBinding::details

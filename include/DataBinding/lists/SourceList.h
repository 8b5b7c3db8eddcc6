// SPDX-License-Identifier: Apache-2.0
/// A SourceList is a list whose rows are data sources, which it owns. It is a member of a data
/// source and bears a name, as a List does.
///
///   struct Contact : NamedDataSource {
///     Contact() : NamedDataSource(L"Contact") {}
///     Property<VtrString> name{this, L"Name"};
///   };
///   constexpr auto FieldsOf(const Contact*) { return Fields(Field(L"Name", &Contact::name)); }
///
///   SourceList<Contact> contacts{this, L"Contacts"};
///   contacts.Emplace().name.Set(L"Ann");        // tells Inserted, and then Changed
///   SortedList sorted(contacts, By(&Contact::name));
///
/// Whatever a source announces is told as a Changed of its row, so views, binds and selections
/// follow the properties: once for each announcement. The end of a PropertyBatch announces one
/// property after the other, so it tells a Changed for each. A property that is no field is told
/// without a field that differs. The source has changed already in both calls, and there is no
/// former row. What is announced while the family tells a change is told together, as one change,
/// after it. Without memory for telling it, the failure handler is told, and the change comes with
/// the next one. Fields are set by the properties' own Set and validators, also by SetCell and in a
/// CurrentRow, at once whatever is being told.
///
/// A source ends when the operation that removes it, and all that has waited for it, are over;
/// nobody else ends it, and it is in no scope. A callback of its own property may remove it. The
/// list ends its sources after it has told its end, the last one first. Operations wait and answer
/// as those of a ListData. All of this belongs to the tree's thread, and so do the announcements.
///
/// A source that has no scope yet is told the one of the list's owner when it is inserted, so its
/// data context is that of the owner. While the owner is being made it has no scope.
#pragma once

#include <cstddef>
#include <optional>
#include <utility>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/details/ListStorage.h"
#include "DataBinding/lists/details/OwnedSources.h"

namespace DataBinding {

template <SourceRow Row>
class SourceList final : public details::ListStorage<Row>, public details::ListProperty {
 public:
  /// Makes the list a member of its source. It has no rows.
  SourceList(DataSourceImpl* itsSource, PropertyName name)
      : ListProperty(*itsSource, name, false), sources(*this, this->engine) {}
  ~SourceList() override {
    this->EndAccess();
    this->TellEnd();
    sources.EndAll();
  }

  /// Inserts a source before the row at an index, or behind the last one. Null is refused. A source
  /// that cannot be inserted ends.
  SetResult Insert(std::size_t at, DataSourcePtr<Row> source) {
    const Row* const row = source.get();
    if (row != nullptr && row->GetDataSourceProvider() == nullptr) {
      details::DataSourceAccess::SetProvider(*source, this->Source().GetDataSourceProvider());
    }
    return sources.Insert(at, std::move(source), row);
  }
  /// Inserts a source behind all rows.
  SetResult Add(DataSourcePtr<Row> source) { return Insert(this->Size(), std::move(source)); }
  /// Makes a source of the arguments in the scope of the list's owner, and adds it. The reference
  /// is good as long as the list holds the source.
  template <class... Args>
  Row& Emplace(Args&&... args) {
    auto made =
        MakeDataSource<Row>(this->Source().GetDataSourceProvider(), std::forward<Args>(args)...);
    Row& row = *made;
    Add(std::move(made));
    return row;
  }
  /// Removes the row at an index and returns its source, which has no scope then. Answers null, and
  /// changes nothing, beyond the end and while the list, or a view of it, tells a change.
  [[nodiscard]] DataSourcePtr<Row> Take(std::size_t at) {
    auto* const taken = sources.Take(at).release();
    if (taken != nullptr)
      details::DataSourceAccess::SetProvider(static_cast<Row&>(*taken), nullptr);
    return DataSourcePtr<Row>(static_cast<Row*>(taken));
  }
  /// Removes rows that stand side by side.
  SetResult Remove(std::size_t at, std::size_t count = 1) { return this->engine.Remove(at, count); }
  /// Moves rows that stand side by side. The first one stands at `to` afterwards.
  SetResult Move(std::size_t from, std::size_t count, std::size_t to) {
    return this->engine.Move(from, count, to);
  }
  /// These do the same for code that does not know the row type.
  ///@{
  SetResult MoveRows(std::size_t from, std::size_t count, std::size_t to) final {
    return Move(from, count, to);
  }
  [[nodiscard]] bool CanMoveRows() const final { return true; }
  ///@}

  using AnyList::IndexOf;
  /// The place of a source; nothing for one that is not in the list. Looks at one row after the
  /// other.
  [[nodiscard]] std::optional<std::size_t> IndexOf(const Row& source) const noexcept {
    for (std::size_t i = 0; i < this->Size(); ++i) {
      if (&(*this)[i] == &source) return i;
    }
    return std::nullopt;
  }

  /// Calls the function with the source itself.
  SetResult UpdateRow(RowId id, const details::RowEdit& edit) override {
    return sources.Update(id, edit);
  }
  /// Returns this list to code that has found it by its name.
  [[nodiscard]] AnyList& Rows() noexcept override { return *this; }
  /// Returns the name under which failures are reported: that of the list.
  [[nodiscard]] VtrString ListName() const override { return this->Name(); }

 private:
  /// Ends the sources that have gone, and announces the name.
  void Announce() override {
    const auto alive = this->Liveness();
    sources.EndGone();
    if (alive.IsValid()) this->NotifyChanged();
  }

  details::OwnedSources sources;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A ListData holds rows and tells each change of them. It works without a data source; List and
/// ReadOnlyList are the same as members of one.
///
///   ListData<Process> processes;
///   processes.Assign(rows);                                   // tells only what differs
///   processes.Insert(0, Process{7, L"init", 0.1});
///   processes.Update(7, [](Process& process) { process.cpu = 0.2; });
///   processes.Edit([](std::vector<Process>& rows) { std::erase_if(rows, IsGone); });
///
/// An operation that is called while the list, or a view of it, tells a change waits until that
/// change was told to all: its result says `waits`. The functions given to it run at once, on the
/// rows as they will be by then. Indexes mean the rows that stand there when the operation is
/// called. A row that is gone by its turn is left out.
///
/// An operation that cannot be done changes nothing, and its result says why: a place that the list
/// does not have, a key that no row has or that another row has already, a value that a validator
/// refuses. Where memory runs out, std::bad_alloc is thrown and the list, and all views of it, are
/// as before.
///
/// Rows of one key both stay. The first one is found by the key, the failure handler is told once.
/// A list takes O(log n) for each row that is inserted, removed or moved, and O(n) for Assign and
/// Edit; the first operation that waits copies the order once. It ends with a Reset to no rows,
/// while the rows can still be read, and may do so in any call that it makes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ranges>
#include <span>
#include <utility>
#include <vector>

#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/ReadableList.h"
#include "DataBinding/lists/details/ListEngine.h"
#include "DataBinding/lists/details/ListStorage.h"

namespace DataBinding {

/// A ListData is a list without a name and without a data source.
template <ListRow Row>
class ListData : public details::ListStorage<Row> {
 public:
  ListData() = default;
  ~ListData() override { this->TellEnd(); }

  /// Replaces all rows. Rows of equal keys are the same row, and nothing is told of a row that is
  /// equal. Rows without a key are the same where they are equal at either end of the list, and
  /// between by their place.
  SetResult Assign(std::vector<Row> rows) { return this->engine.Assign(this->ArrayOf(rows)); }
  /// Inserts rows before the one at an index, or behind the last one.
  ///@{
  SetResult Insert(std::size_t at, Row row) {
    return this->engine.Insert(at, {reinterpret_cast<std::byte*>(&row), sizeof(Row), 1});
  }
  template <std::ranges::input_range Range>
  requires std::convertible_to<std::ranges::range_reference_t<Range>, Row> SetResult
  Insert(std::size_t at, Range&& range) {
    std::vector<Row> rows;
    if constexpr (std::ranges::sized_range<Range>) rows.reserve(std::ranges::size(range));
    for (auto&& row : range) rows.emplace_back(std::forward<decltype(row)>(row));
    return this->engine.Insert(at, this->ArrayOf(rows));
  }
  ///@}
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
  /// Calls a function with a copy of the row at an index, and changes the row where the copy has
  /// become different. Validators of changed fields may refuse that, and a key that another row has
  /// is refused. The function must not change the list or end it.
  template <std::invocable<Row&> Change>
  SetResult UpdateAt(std::size_t index, Change&& change) {
    return this->engine.UpdateAt(index, details::RowEdit(EditBy(change)));
  }
  /// Does the same with the row of a key, or with all rows of some keys in one change. Where one of
  /// them is refused, none is changed.
  ///@{
  template <std::invocable<Row&> Change>
  requires details::hasKey<Row> SetResult Update(const details::KeyOf<Row>& key, Change&& change) {
    const std::array<const void*, 1> keys{&key};
    return this->engine.UpdateKeys(keys, details::RowEdit(EditBy(change)));
  }
  template <std::invocable<Row&> Change>
  requires details::hasKey<Row> SetResult Update(std::span<const details::KeyOf<Row>> keys,
                                                 Change&& change) {
    std::vector<const void*> addresses;
    addresses.reserve(keys.size());
    for (const auto& key : keys) addresses.push_back(&key);
    return this->engine.UpdateKeys(addresses, details::RowEdit(EditBy(change)));
  }
  ///@}
  /// Removes the row of a key. Of several rows the first one goes.
  SetResult RemoveKey(const details::KeyOf<Row>& key) requires details::hasKey<Row> {
    return this->engine.RemoveKey(&key);
  }
  /// Calls a function with a copy of all rows, and then assigns what it has made of them.
  template <std::invocable<std::vector<Row>&> Change>
  SetResult Edit(Change&& change) {
    std::vector<Row> rows;
    this->engine.VisitComing([&](void* row) {
      rows.push_back(*static_cast<const Row*>(row));
      return SetResult();
    });
    std::forward<Change>(change)(rows);
    return Assign(std::move(rows));
  }

  /// Asks the validators of all fields about a row, and answers the first refusal. Insert, Assign
  /// and Edit are for the owner of the list and do not ask, so rows that come from a file or from a
  /// user are checked by this before.
  [[nodiscard]] SetResult CheckRow(const Row& row) const {
    return this->engine.CheckRow(&row, ~std::uint64_t{0});
  }

  /// Does what UpdateAt does, for the row of an id.
  SetResult UpdateRow(RowId id, const details::RowEdit& edit) final {
    return this->engine.Update({&id, 1}, edit);
  }
  /// Returns the name under which failures are reported: none.
  [[nodiscard]] VtrString ListName() const override { return {}; }

 private:
  template <class Change>
  [[nodiscard]] static auto EditBy(Change& change) {
    return [&change](void* row) {
      change(*static_cast<Row*>(row));
      return SetResult();
    };
  }
};

/// A List is a member of a data source. It bears a name, as a property does, and the name is
/// announced once when an operation is over, with all that has waited for it. So a DataListener, a
/// computed property and a batch treat it as a property. Anybody may change it.
///
///   List<Process> processes{this, L"Processes"};
///   ComputedProperty<int> count{this, L"Count", [this] { return int(processes.Size()); },
///   processes};
template <ListRow Row>
class List final : public ListData<Row>, public details::ListProperty {
 public:
  /// Makes the list a member of its source. It has no rows.
  List(DataSourceImpl* itsSource, PropertyName name) : ListProperty(*itsSource, name, false) {}
  ~List() override {
    this->EndAccess();
    this->TellEnd();
  }

  /// Returns this list to code that has found it by its name.
  [[nodiscard]] AnyList& Rows() noexcept override { return *this; }
  /// Returns the name under which failures are reported: that of the list.
  [[nodiscard]] VtrString ListName() const override { return this->Name(); }

 private:
  void Announce() override { this->NotifyChanged(); }
};

/// A ReadOnlyList is a List that only its source changes: `Assign(processes, rows)`. Its cells
/// cannot be set either.
template <ListRow Row>
class ReadOnlyList final : public details::ListStorage<Row>, public details::ListProperty {
 public:
  /// Makes the list a member of its source. It has no rows.
  ReadOnlyList(DataSourceImpl* itsSource, PropertyName name)
      : ListProperty(*itsSource, name, true) {}
  ~ReadOnlyList() override {
    this->EndAccess();
    this->TellEnd();
  }

  /// Returns this list to code that has found it by its name.
  [[nodiscard]] AnyList& Rows() noexcept override { return *this; }
  /// Returns the name under which failures are reported: that of the list.
  [[nodiscard]] VtrString ListName() const override { return this->Name(); }
  /// Returns true: only the source changes the list.
  [[nodiscard]] bool IsReadOnly() const override { return true; }
  /// Refuses the change, since only the source makes one.
  SetResult UpdateRow(RowId /*id*/, const details::RowEdit& /*edit*/) override {
    return this->ReadOnlyResult();
  }

 private:
  friend details::DataSourceAccess;

  SetResult StoreFor(const DataSourceImpl& setter, std::vector<Row> rows) {
    if (&setter != &this->Source()) return this->ReadOnlyResult();
    return this->engine.Assign(this->ArrayOf(rows));
  }
  void Announce() override { this->NotifyChanged(); }
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A list, observers that keep copies of it by what they are told, and a plain model of what the
/// list will be when everything that waits is done.
///
/// Each observer compares its copy with the list before and after every change. At rest, the list
/// must equal the model. Operations are also played inside callbacks, where their indexes mean the
/// rows that the list has at that moment, and where the list and observers may end.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/lists/CurrentRow.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/Selection.h"
#include "RowCopy.h"
#include "Script.h"

namespace DataBinding::Stress {

/// The serial tells a new row from all others. Later it is content like any other.
struct Item {
  int key;
  int value;
  int serial;
  bool operator==(const Item&) const = default;
};

inline VtrString RefuseNine(const int& value) { return value == 9 ? L"is nine" : L""; }

constexpr auto FieldsOf(const Item*) {
  return Fields(Key(L"Key", &Item::key), Field(L"Value", &Item::value, {.validate = RefuseNine}),
                Field(L"Serial", &Item::serial, {.readOnly = true}));
}

class ListWorld : public Player<ListWorld> {
 public:
  static constexpr std::string_view points[] = {"before", "after"};
  static std::vector<Operation<ListWorld>> Operations();

  ListWorld() { Begin(); }
  void Insert(int at, int count, int key);
  void Remove(int at, int count, int);
  void RemoveKey(int key, int, int);
  void Move(int from, int count, int to);
  void Update(int key, int value, int);
  void UpdateSome(int key, int count, int value);
  void Rekey(int key, int to, int);
  void Assign(int seed, int way, int);
  void Edit(int seed, int way, int);
  void SetCell(int at, int field, int value);
  void WrongUse(int which, int, int);
  void Watch(int which, int, int);
  void Unwatch(int which, int, int);
  void EndList(int, int, int);
  void Choose(int at, int way, int);
  void EditCurrent(int value, int, int);

  /// Says whether everything agreed until now. The list must be at rest.
  [[nodiscard]] bool Agrees();
  /// Notes which rows of the list are which of the model, at rest.
  void Settle();
  [[nodiscard]] const char* WhatDiffers() const noexcept { return failure; }

 private:
  /// A row of the model. Its identity is the serial that it came with.
  struct Row {
    int identity;
    Item item;
  };

  void Expect(bool holds, const char* what) {
    if (!holds && failure == nullptr) failure = what;
  }
  void Answer(const SetResult& result, PropertyError error, const char* what);
  void Hear(int which, const RowChange<Item>& change);
  [[nodiscard]] Item NewItem(int key, int value) { return {key, value, ++lastSerial}; }
  [[nodiscard]] std::vector<int> Told() const;
  [[nodiscard]] std::size_t Find(int key) const;
  [[nodiscard]] std::size_t PlaceOf(int identity) const;
  [[nodiscard]] std::size_t PlaceBefore(const std::vector<int>& told, std::size_t at) const;
  [[nodiscard]] std::vector<Item> Change(std::vector<Item> items, int seed, int way);
  void Become(std::vector<Item>& items);
  [[nodiscard]] std::vector<Item> Items() const;
  void MeetRows();
  void Begin();
  void LetGo(RowId id);
  void CheckChosen();

  DataSourceProvider scope{nullptr, nullptr, nullptr};
  std::unique_ptr<ListData<Item>> list;
  std::unique_ptr<Selection<Item>> chosen;
  std::unique_ptr<CurrentRow<Item>> current;
  Framework::DataBind<int> shown{&scope, L"Item", L"Value"};
  std::vector<RowId> picked;
  Subscription gone;
  std::array<RowCopy<Item>, 4> observers;
  std::vector<Row> coming;
  std::map<RowId, int> identities;
  int lastSerial = 0;
  int telling = 0;
  const char* failure = nullptr;
};

}  // namespace DataBinding::Stress

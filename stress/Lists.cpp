// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <numeric>
#include <random>

#include "ListWorld.h"
#include "Subjects.h"

namespace DataBinding::Stress {

namespace {

constexpr std::size_t mostRows = 150;

}  // namespace

constinit const Subject listSubject{"lists", &AgreesWithItself<ListWorld>, &ListWorld::Describe};

std::vector<Operation<ListWorld>> ListWorld::Operations() {
  return {
      {"Insert", "a0n9k0", &ListWorld::Insert, 24},
      {"Remove", "a0n9", &ListWorld::Remove, 12},
      {"RemoveKey", "k0", &ListWorld::RemoveKey, 8},
      {"Move", "f0n9t0", &ListWorld::Move, 16},
      {"Update", "k0v9", &ListWorld::Update, 24},
      {"UpdateSome", "k0n9v9", &ListWorld::UpdateSome, 12},
      {"Rekey", "k0t0", &ListWorld::Rekey, 8},
      {"Assign", "s0w8", &ListWorld::Assign, 24},
      {"Edit", "s0w8", &ListWorld::Edit, 12},
      {"SetCell", "a0f4v0", &ListWorld::SetCell, 8},
      {"WrongUse", "w6", &ListWorld::WrongUse, 4},
      {"Watch", "w4", &ListWorld::Watch, 12},
      {"Unwatch", "w4", &ListWorld::Unwatch, 4},
      {"EndList", "", &ListWorld::EndList, 1},
      {"Choose", "a0w4", &ListWorld::Choose, 16},
      {"EditCurrent", "v9", &ListWorld::EditCurrent, 8},
      {"Throw", "", &ListWorld::Throw, 2},
      {"When", "p2o4m3", &ListWorld::When, 40},
  };
}

std::vector<Item> ListWorld::Items() const {
  std::vector<Item> items;
  for (const Row& row : coming) items.push_back(row.item);
  return items;
}

bool ListWorld::Agrees() {
  Expect(std::ranges::equal(*list, Items()), "the list is not as the model");
  for (const auto& observer : observers) {
    Expect(!observer.seen || observer.copy == RowCopy<Item>::Read(*list),
           "an observer's copy is not as the list");
  }
  for (std::size_t i = 0; i < list->Size() && i < coming.size(); ++i) {
    Expect(list->IndexOfRow(list->At(i)) == i, "a row is not found by its id");
    Expect(list->Find(coming[i].item.key) == &(*list)[Find(coming[i].item.key)], "wrong by key");
  }
  CheckChosen();
  return failure == nullptr;
}

void ListWorld::Settle() {
  notes.clear();
  identities.clear();
  Expect(list->Size() == coming.size(), "the list has not as many rows as the model");
  for (std::size_t i = 0; i < list->Size() && i < coming.size(); ++i) {
    identities[list->At(i)] = coming[i].identity;
  }
}

/// Notes who the rows are that the list has. A new one is known by its serial.
void ListWorld::MeetRows() {
  for (std::size_t i = 0; i < list->Size(); ++i) {
    identities.try_emplace(list->At(i), (*list)[i].serial);
  }
}

void ListWorld::Hear(int which, const RowChange<Item>& change) {
  if (!change.IsBefore()) MeetRows();
  Expect(observers[At(which)].Follow(*list, change),
         change.IsBefore() ? "the list was not as the observer was told"
                           : "the list is not as the observer is told");
  ++telling;
  try {
    Happen(points[change.IsBefore() ? 0 : 1], which, 0, Place::Anywhere);
  } catch (const Thrown&) {
    --telling;
    throw;
  }
  --telling;
}

void ListWorld::Answer(const SetResult& result, PropertyError error, const char* what) {
  Expect(result.error == error && result.text.IsEmpty() == (error == PropertyError::None), what);
  Expect(!result.waits || telling > 0, "an operation waits at rest");
}

std::vector<int> ListWorld::Told() const {
  std::vector<int> told;
  for (std::size_t i = 0; i < list->Size(); ++i) {
    const auto known = identities.find(list->At(i));
    told.push_back(known == identities.end() ? (*list)[i].serial : known->second);
  }
  return told;
}

std::size_t ListWorld::Find(int key) const {
  const auto hasKey = [key](const Row& row) { return row.item.key == key; };
  return static_cast<std::size_t>(std::ranges::find_if(coming, hasKey) - coming.begin());
}

std::size_t ListWorld::PlaceOf(int identity) const {
  const auto found = std::ranges::find(coming, identity, &Row::identity);
  return static_cast<std::size_t>(found - coming.begin());
}

std::size_t ListWorld::PlaceBefore(const std::vector<int>& told, std::size_t at) const {
  while (at < told.size() && PlaceOf(told[at]) == coming.size()) ++at;
  return at == told.size() ? coming.size() : PlaceOf(told[at]);
}

void ListWorld::Insert(int at, int count, int key) {
  const std::vector<int> told = Told();
  if (coming.size() > mostRows) return;
  const std::size_t spot = At(at) % (told.size() + 1);
  std::vector<Item> items;
  items.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) items.push_back(NewItem((key + 3 * i) % 200, i));
  auto before = coming.begin() + static_cast<std::ptrdiff_t>(PlaceBefore(told, spot));
  for (const Item& item : items) before = coming.insert(before, {item.serial, item}) + 1;
  Answer(list->Insert(spot, items), PropertyError::None, "Insert");
}

void ListWorld::Remove(int at, int count, int) {
  const std::vector<int> told = Told();
  const std::size_t spot = At(at) % (told.size() + 1);
  const bool fits = At(count) <= told.size() - spot;
  for (std::size_t i = 0; fits && i < At(count); ++i) {
    std::erase_if(coming, [&](const Row& row) { return row.identity == told[spot + i]; });
  }
  Answer(list->Remove(spot, At(count)), fits ? PropertyError::None : PropertyError::OutOfRange,
         "Remove");
}

void ListWorld::RemoveKey(int key, int, int) {
  const std::size_t spot = Find(key % 200);
  const bool isThere = spot < coming.size();
  if (isThere) coming.erase(coming.begin() + static_cast<std::ptrdiff_t>(spot));
  Answer(list->RemoveKey(key % 200), isThere ? PropertyError::None : PropertyError::Absent,
         "RemoveKey");
}

void ListWorld::Move(int from, int count, int to) {
  const std::vector<int> told = Told();
  if (told.size() < At(count)) return;
  const std::size_t first = At(from) % (told.size() - At(count) + 1);
  const std::size_t target = At(to) % (told.size() - At(count) + 1);
  if (first != target) {
    std::vector<Row> moving;
    for (std::size_t i = first; i < first + At(count); ++i) {
      const std::size_t spot = PlaceOf(told[i]);
      if (spot < coming.size()) moving.push_back(coming[spot]);
    }
    const std::size_t next = target < first ? target : target + At(count);
    const std::size_t spot = PlaceBefore(told, next);
    std::vector<Row> made;
    for (std::size_t i = 0; i <= coming.size(); ++i) {
      if (i == spot) made.insert(made.end(), moving.begin(), moving.end());
      if (i == coming.size()) break;
      const bool moves = std::ranges::count(moving, coming[i].identity, &Row::identity) != 0;
      if (!moves) made.push_back(coming[i]);
    }
    coming = made;
  }
  Answer(list->Move(first, At(count), target), PropertyError::None, "Move");
}

void ListWorld::Update(int key, int value, int) { UpdateSome(key, 1, value); }

void ListWorld::UpdateSome(int key, int count, int value) {
  std::vector<int> keys;
  keys.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) keys.push_back((key + 3 * i) % 200);
  const auto isThere = [&](int wanted) { return Find(wanted) < coming.size(); };
  const bool areThere = std::ranges::all_of(keys, isThere);
  const auto differs = [&](int wanted) { return coming[Find(wanted)].item.value != value; };
  const bool isRefused = areThere && value == 9 && std::ranges::any_of(keys, differs);
  for (const int wanted : keys) {
    if (areThere && !isRefused) coming[Find(wanted)].item.value = value;
  }
  const auto change = [value](Item& item) { item.value = value; };
  const SetResult result =
      count == 1 ? list->Update(keys.front(), change) : list->Update(keys, change);
  Answer(result,
         isRefused  ? PropertyError::Refused
         : areThere ? PropertyError::None
                    : PropertyError::Absent,
         "Update");
}

void ListWorld::Rekey(int key, int to, int) {
  const std::size_t spot = Find(key % 200);
  const bool isThere = spot < coming.size();
  const bool isTaken = key % 200 != to % 200 && Find(to % 200) < coming.size();
  if (isThere && !isTaken) coming[spot].item.key = to % 200;
  const auto change = [to](Item& item) { item.key = to % 200; };
  Answer(list->Update(key % 200, change),
         !isThere  ? PropertyError::Absent
         : isTaken ? PropertyError::Refused
                   : PropertyError::None,
         "Rekey");
}

/// Makes other rows of some. Each way is what applications do: little, much, or all at once.
std::vector<Item> ListWorld::Change(std::vector<Item> items, int seed, int way) {
  std::mt19937 random(static_cast<std::uint32_t>(seed));
  const auto some = [&](std::uint32_t of) { return random() % of == 0; };
  if (way == 1) std::ranges::reverse(items);
  if (way == 2) std::shuffle(items.begin(), items.end(), random);
  if (way == 3) std::ranges::sort(items, {}, &Item::key);
  if (way == 4) items.clear();
  if (way >= 5) std::erase_if(items, [&](const Item&) { return some(way == 5 ? 2 : 20); });
  for (Item& item : items) {
    if (some(way == 6 ? 2 : 10)) item.value = seed % 10;
    if (some(30)) std::swap(item, items.front());
  }
  const std::size_t added = way == 0 ? 0 : random() % (way == 5 ? 120 : 8);
  for (std::size_t i = 0; i < added && items.size() < mostRows; ++i) {
    const auto at = static_cast<std::ptrdiff_t>(random() % (items.size() + 1));
    items.insert(items.begin() + at, NewItem(static_cast<int>(random() % 200), 0));
  }
  return items;
}

/// Lets the model be these rows. The j-th row of a key is the j-th one that it has; all others are
/// new and get a serial.
void ListWorld::Become(std::vector<Item>& items) {
  std::vector<Row> former = std::exchange(coming, {});
  for (Item& item : items) {
    const auto found =
        std::ranges::find(former, item.key, [](const Row& row) { return row.item.key; });
    const bool isNew = found == former.end();
    if (isNew) item.serial = ++lastSerial;
    coming.push_back({isNew ? item.serial : found->identity, item});
    if (!isNew) former.erase(found);
  }
}

void ListWorld::Assign(int seed, int way, int) {
  std::vector<Item> items = Change(Items(), seed, way);
  Become(items);
  Answer(list->Assign(items), PropertyError::None, "Assign");
}

void ListWorld::Edit(int seed, int way, int) {
  const std::vector<Item> foreseen = Items();
  const SetResult result = list->Edit([&](std::vector<Item>& items) {
    Expect(items == foreseen, "Edit does not see the rows as they will be");
    items = Change(std::move(items), seed, way);
    Become(items);
  });
  Answer(result, PropertyError::None, "Edit");
}

void ListWorld::SetCell(int at, int field, int value) {
  const std::vector<int> told = Told();
  if (told.empty() || field == 0) return;
  const std::size_t spot = At(at) % told.size();
  const std::size_t row = PlaceOf(told[spot]);
  PropertyError error = PropertyError::None;
  if (field == 2) error = PropertyError::ReadOnly;
  if (field == 3 || (field == 1 && row == coming.size())) error = PropertyError::Absent;
  if (field == 1 && row < coming.size() && value % 10 == 9 && coming[row].item.value != 9) {
    error = PropertyError::Refused;
  }
  if (field == 1 && error == PropertyError::None) coming[row].item.value = value % 10;
  Answer(list->SetCell(spot, At(field), value % 10), error, "SetCell");
}

void ListWorld::WrongUse(int which, int, int) {
  const std::size_t size = list->Size();
  const auto ignore = [](Item& item) { item.value = 1; };
  const std::array tried{list->Insert(size + 1, Item{}), list->Remove(size + 1, 0),
                         list->Remove(0, size + 1),      list->Move(0, size + 1, 0),
                         list->UpdateAt(size, ignore),   list->SetCell(size, 0, 1)};
  Answer(tried[At(which)], PropertyError::OutOfRange, "a spot that is not there");
}

void ListWorld::Watch(int which, int, int) {
  RowCopy<Item>& observer = observers[At(which)];
  observer.copy = RowCopy<Item>::Read(*list);
  const auto hear = [this, which](const RowChange<Item>& change) { Hear(which, change); };
  observer.seen = list->Observe({.before = hear, .after = hear});
}

void ListWorld::Unwatch(int which, int, int) { observers[At(which)].seen = {}; }

/// Ends the list, perhaps within its own callback, and goes on with another one.
void ListWorld::EndList(int, int, int) {
  if (telling > 1) return;
  for (auto& observer : observers) observer.seen = {};
  coming.clear();
  identities.clear();
  Begin();
}

}  // namespace DataBinding::Stress

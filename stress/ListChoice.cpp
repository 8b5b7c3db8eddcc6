// SPDX-License-Identifier: Apache-2.0
// This file holds what the scripts of lists do with a selection and the current row.
#include <algorithm>

#include "ListWorld.h"

namespace DataBinding::Stress {

/// Makes a list without rows, of which nothing is chosen.
void ListWorld::Begin() {
  auto ending = std::move(list);
  list = std::make_unique<ListData<Item>>();
  current.reset();
  chosen = std::make_unique<Selection<Item>>(*list);
  current = std::make_unique<CurrentRow<Item>>(&scope, L"Item", *chosen);
  picked.clear();
  gone = chosen->Observe({.gone = [this](RowId id) { LetGo(id); }});
}

void ListWorld::LetGo(RowId id) {
  Expect(list->RowAt(id).serial > 0 && std::erase(picked, id) == 1, "a row is gone that was not");
}

void ListWorld::CheckChosen() {
  Expect(std::ranges::equal(chosen->Ids(), picked), "other rows are chosen");
  Expect(std::ranges::all_of(picked, [&](RowId id) { return list->Contains(id); }), "a lost row");
  const auto value = shown.Get();
  Expect(value.value.has_value() == !picked.empty(), "a current row without a choice");
  Expect(picked.empty() || *value == list->RowAt(picked.back()).value, "a wrong current row");
}

void ListWorld::Choose(int at, int way, int) {
  const auto id = list->IdAt(At(at) % (list->Size() + 1));
  if (way == 0) picked.clear();
  if (id && way != 3) std::erase(picked, *id);
  if (id && way < 3) picked.push_back(*id);
  if (way == 3 && id) {
    Expect(chosen->Remove(*id) == (std::erase(picked, *id) != 0), "Remove of a choice");
  } else if (way == 0) {
    id ? static_cast<void>(chosen->Choose(*id)) : chosen->Clear();
  } else if (id) {
    Expect(chosen->Add(*id), "Add to a choice");
  }
}

/// Edits the current row by name, as a form does.
void ListWorld::EditCurrent(int value, int, int) {
  if (picked.empty()) {
    Expect(shown.Set(value).error == PropertyError::Absent, "an edit without a row");
    return;
  }
  const auto told = identities.find(picked.back());
  if (told == identities.end()) return;
  const std::size_t row = PlaceOf(told->second);
  if (row == coming.size()) return;
  const bool isRefused = value == 9 && coming[row].item.value != 9;
  if (!isRefused) coming[row].item.value = value;
  Answer(shown.Set(value), isRefused ? PropertyError::Refused : PropertyError::None, "EditCurrent");
}

}  // namespace DataBinding::Stress

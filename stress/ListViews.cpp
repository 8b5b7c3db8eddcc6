// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <map>
#include <random>

#include "Subjects.h"
#include "ViewWorld.h"

namespace DataBinding::Stress {

namespace {

constexpr std::size_t mostPieces = 400;
constexpr int keys = 300;
constexpr int badValue = 7;  // comparisons and predicates throw for it

/// For each view, the one that it stands on; the list is the last.
constexpr std::size_t bases[] = {6, 6, 0, 1, 2, 0};
constexpr bool isSorted[] = {true, false, false, true, true, true};

}  // namespace

constinit const Subject viewSubject{"views", &AgreesWithItself<ViewWorld>, &ViewWorld::Describe};

PieceCopy::Numbered PieceCopy::Read(const ReadableList<Piece>& list) {
  Numbered rows;
  for (std::size_t i = 0; i < list.Size(); ++i) rows.emplace_back(list.At(i), list[i]);
  return rows;
}

bool PieceCopy::Follow(const ReadableList<Piece>& list, const RowChange<Piece>& change) {
  // A list that ends within a change tells it also to observers that have not heard the rest of it.
  const bool isEnd = change.Kind() == ListChangeKind::Reset && change.Count() == 0;
  if (change.IsBefore()) return isEnd || copy == Read(list);
  return Replay(list, change) && copy == Read(list);
}

bool PieceCopy::Replay(const ReadableList<Piece>& list, const RowChange<Piece>& change) {
  const auto first = copy.begin() + static_cast<std::ptrdiff_t>(change.At());
  const auto count = static_cast<std::ptrdiff_t>(change.Count());
  const auto to = copy.begin() + static_cast<std::ptrdiff_t>(change.To());
  switch (change.Kind()) {
    case ListChangeKind::Inserted: {
      Numbered rows;
      for (std::size_t i = 0; i < change.Count(); ++i)
        rows.emplace_back(change.Ids()[i], change[i]);
      copy.insert(first, rows.begin(), rows.end());
      return true;
    }
    case ListChangeKind::Removed:
      copy.erase(first, first + count);
      return true;
    case ListChangeKind::Moved:
      to < first ? std::rotate(to, first, first + count)
                 : std::rotate(first, first + count, to + count);
      return true;
    case ListChangeKind::Changed: {
      bool fits = true;
      for (std::size_t i = 0; i < change.Count(); ++i) {
        Piece& piece = copy[change.PlaceOf(i)].second;
        fits = fits && piece == change.Was(i);
        piece = change[i];
      }
      return fits;
    }
    default: {
      const std::map<RowId, Piece> known(copy.begin(), copy.end());
      copy.clear();
      for (const RowId id : change.Ids()) {
        const auto found = known.find(id);
        copy.emplace_back(id, found == known.end() ? list.RowAt(id) : found->second);
      }
      return change.Kind() == ListChangeKind::Reset || known.size() == copy.size();
    }
  }
}

std::vector<Operation<ViewWorld>> ViewWorld::Operations() {
  return {
      {"Insert", "a0n9k0", &ViewWorld::Insert, 24},
      {"Remove", "a0n9", &ViewWorld::Remove, 20},
      {"Move", "f0n9t0", &ViewWorld::Move, 16},
      {"Update", "a0v9", &ViewWorld::Update, 32},
      {"UpdateMany", "s0o9", &ViewWorld::UpdateMany, 16},
      {"Assign", "s0w6", &ViewWorld::Assign, 16},
      {"Setting", "w6s6", &ViewWorld::Setting, 16},
      {"Refilter", "w6", &ViewWorld::Refilter, 8},
      {"Renew", "w6", &ViewWorld::Renew, 8},
      {"Watch", "w7", &ViewWorld::Watch, 16},
      {"EndList", "", &ViewWorld::EndList, 1},
      {"ThrowSoon", "w6n9", &ViewWorld::ThrowSoon, 4},
      {"Throw", "", &ViewWorld::Throw, 2},
      {"When", "p2o7m3", &ViewWorld::When, 40},
  };
}

ViewWorld::ViewWorld() {
  for (std::size_t which = 0; which < viewCount; ++which) Make(which);
}

ViewWorld::~ViewWorld() {
  for (PieceCopy& copy : copies) copy.seen = {};
}

ReadableList<Piece>* ViewWorld::Of(std::size_t which) const {
  if (which == viewCount) return list.get();
  if (isSorted[which]) return views[which].sorted.get();
  return views[which].filtered.get();
}

ReadableList<Piece>& ViewWorld::Base(std::size_t which) const { return *Of(bases[which]); }

void ViewWorld::MayThrow(std::size_t which) {
  View& view = views[which];
  if (view.untilThrow == 0 || --view.untilThrow > 0) return;
  view.isSpoilt = true;
  throw Thrown();
}

/// The orders differ in how many rows they find equal.
auto ViewWorld::Less(std::size_t which, bool mayThrow) {
  return [this, which, mayThrow, setting = views[which].setting](const Piece& one,
                                                                 const Piece& other) {
    if (mayThrow) MayThrow(which);
    if (setting == 5 && (one.value == badValue || other.value == badValue)) throw Thrown();
    const auto order = By(&Piece::value, setting % 2 == 0 ? Order::Ascending : Order::Descending);
    return setting < 2 ? order.Then(&Piece::key)(one, other) : order(one, other);
  };
}

auto ViewWorld::Shows(std::size_t which, bool mayThrow) {
  return [this, which, mayThrow, setting = views[which].setting](const Piece& piece) {
    if (mayThrow) MayThrow(which);
    if (setting == 5 && piece.value == badValue) throw Thrown();
    return setting == 0 || (setting < 3 ? piece.value > 2 * setting : piece.key % setting == 0);
  };
}

void ViewWorld::Make(std::size_t which) {
  View& view = views[which];
  view.isSpoilt = false;
  if (isSorted[which]) {
    view.sorted = std::make_unique<Sorted>(Base(which), Less(which, true));
  } else {
    view.filtered = std::make_unique<Filtered>(Base(which), Shows(which, true));
  }
}

void ViewWorld::End(std::size_t which) {
  ++endings;
  const auto sorted = std::move(views[which].sorted);
  const auto filtered = std::move(views[which].filtered);
  copies[which].seen = {};
}

void ViewWorld::Insert(int at, int count, int key) {
  if (list->Size() > mostPieces) return;
  std::vector<Piece> pieces;
  const int more = at % 16 == 0 ? 20 * count : count;
  pieces.reserve(static_cast<std::size_t>(more));
  for (int i = 0; i < more; ++i) pieces.push_back({(key + 7 * i) % keys, (key + i) % 10});
  list->Insert(At(at) % (list->Size() + 1), pieces);
}

void ViewWorld::Remove(int at, int count, int) {
  const std::size_t first = At(at) % (list->Size() + 1);
  const std::size_t most = At(at) % 8 == 0 ? At(count) * 10 : At(count);
  list->Remove(first, std::min(most, list->Size() - first));
}

void ViewWorld::Move(int from, int count, int to) {
  const std::size_t rows = std::min(At(count), list->Size());
  const std::size_t places = list->Size() - rows + 1;
  list->Move(At(from) % places, rows, At(to) % places);
}

void ViewWorld::Update(int at, int value, int) {
  if (list->IsEmpty()) return;
  list->UpdateAt(At(at) % list->Size(), [value](Piece& piece) { piece.value = value; });
}

void ViewWorld::UpdateMany(int seed, int of, int) {
  std::vector<int> some;
  std::mt19937 random(static_cast<std::uint32_t>(seed));
  for (const Piece& piece : *list) {
    if (static_cast<int>(random() % 8) <= of) some.push_back(piece.key);
  }
  list->Update(some, [&](Piece& piece) { piece.value = static_cast<int>(random() % 10); });
}

/// Makes other rows of some; a shuffle is told as a Reset or as Reordered.
void ViewWorld::Assign(int seed, int way, int) {
  std::mt19937 random(static_cast<std::uint32_t>(seed));
  list->Edit([&](std::vector<Piece>& pieces) {
    if (way == 0) std::ranges::reverse(pieces);
    if (way == 1) std::shuffle(pieces.begin(), pieces.end(), random);
    if (way == 2) std::erase_if(pieces, [&](const Piece&) { return random() % 2 == 0; });
    for (Piece& piece : pieces) {
      if (random() % (way == 3 ? 2 : 20) == 0) piece.value = static_cast<int>(random() % 10);
    }
    for (int i = way == 4 ? 150 : 5; i > 0 && pieces.size() < mostPieces; --i) {
      const auto at = static_cast<std::ptrdiff_t>(random() % (pieces.size() + 1));
      pieces.insert(pieces.begin() + at, {static_cast<int>(random() % keys), i % 10});
    }
  });
}

void ViewWorld::Setting(int which, int setting, int) {
  View& view = views[At(which)];
  view.setting = setting;
  view.isSpoilt = false;
  if (view.sorted != nullptr) view.sorted->SortBy(Less(At(which), true));
  if (view.filtered != nullptr) view.filtered->SetFilter(Shows(At(which), true));
}

void ViewWorld::Refilter(int which, int, int) {
  if (views[At(which)].filtered != nullptr) views[At(which)].filtered->Refilter();
}

/// Ends a view, perhaps in its own callback, with all that stand on it, and makes them again.
void ViewWorld::Renew(int which, int, int) {
  if (isEnding) return;
  const ScopedValue ending(isEnding, true);
  std::array<bool, viewCount> isGone{};
  for (std::size_t i = 0; i < viewCount; ++i) {
    isGone[i] = i == At(which) || (bases[i] < viewCount && isGone[bases[i]]);
    if (isGone[i]) End(i);
  }
  for (std::size_t i = 0; i < viewCount; ++i) {
    if (isGone[i]) Make(i);
  }
}

void ViewWorld::Watch(int which, int, int) {
  const auto hear = [this, which](const RowChange<Piece>& change) { Hear(At(which), change); };
  PieceCopy& copy = copies[At(which)];
  if (Of(At(which)) == nullptr) return;  // it ends
  copy.copy = PieceCopy::Read(*Of(At(which)));
  const int before = endings;
  Subscription seen = Of(At(which))->Observe({.before = hear, .after = hear});
  if (endings == before) copy.seen = std::move(seen);  // it may have been told at once, and ended
}

/// Ends the list, perhaps in a callback. Its views live on, empty.
void ViewWorld::EndList(int, int, int) {
  if (isEnding) return;
  const ScopedValue ending(isEnding, true);
  ++endings;
  std::exchange(list, std::make_unique<ListData<Piece>>()).reset();
  for (std::size_t i = 0; list->IsEmpty() && i < viewCount; ++i) {
    Expect(Of(i)->IsEmpty(), "a view without a list");
  }
  for (std::size_t i = viewCount; i-- > 0;) End(i);
  copies[viewCount].seen = {};
  for (std::size_t i = 0; i < viewCount; ++i) Make(i);
}

void ViewWorld::ThrowSoon(int which, int count, int) { views[At(which)].untilThrow = 20 * count; }

void ViewWorld::Hear(std::size_t which, const RowChange<Piece>& change) {
  const ReadableList<Piece>& heard = static_cast<const ReadableList<Piece>&>(change.Node());
  Expect(copies[which].Follow(heard, change),
         change.IsBefore() ? "an observer's copy does not fit before a change"
                           : "an observer's copy does not fit after a change");
  for (std::size_t i = 0; &heard == list.get() && i < viewCount; ++i) {
    if (Of(i) == nullptr) continue;  // it ends
    for (std::size_t row = 0; row < Of(i)->Size(); ++row) {
      Expect(heard.Contains(Of(i)->At(row)), "a view has a row that its list has not");
    }
  }
  Happen(points[change.IsBefore() ? 0 : 1], static_cast<int>(which), 0, Place::Anywhere);
}

/// Rows that are set aside stand at the end, in whatever order they came there.
void ViewWorld::CompareWithNew(std::size_t which) {
  auto now = PieceCopy::Read(*Of(which));
  PieceCopy::Numbered anew;
  std::size_t aside = 0;
  if (isSorted[which]) {
    anew = PieceCopy::Read(Sorted(Base(which), Less(which, false)));
    const auto isBad = [](const auto& row) { return row.second.value == badValue; };
    if (views[which].setting == 5) aside = At(static_cast<int>(std::ranges::count_if(anew, isBad)));
  } else {
    anew = PieceCopy::Read(Filtered(Base(which), Shows(which, false)));
  }
  const bool isSame = now.size() == anew.size();
  Expect(isSame || (views[which].isSpoilt && !isSorted[which]), "a view has not all its rows");
  if (views[which].isSpoilt) return;
  for (auto* rows : {&now, &anew}) {
    const auto byId = [](const auto& row) { return row.first; };
    std::ranges::sort(rows->end() - static_cast<std::ptrdiff_t>(aside), rows->end(), {}, byId);
  }
  Expect(now == anew, "a view is not as one made anew");
}

bool ViewWorld::Agrees() {
  for (std::size_t i = 0; i < viewCount; ++i) CompareWithNew(i);
  for (std::size_t i = 0; i <= viewCount; ++i) {
    if (copies[i].seen) {
      Expect(copies[i].copy == PieceCopy::Read(*Of(i)), "a copy is not as what it copies");
    }
  }
  return failure == nullptr;
}

}  // namespace DataBinding::Stress

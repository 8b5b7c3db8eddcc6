// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <random>

#include "Subjects.h"
#include "ViewWorld.h"

namespace DataBinding::Stress {

namespace {

constexpr std::size_t mostPieces = 400;
constexpr int keyCount = 300;
constexpr int badValue = 7;  // comparisons and predicates throw for it

/// For each view, the one that it stands on, and whether it follows the list or the bind, which
/// count as the last ones.
constexpr std::size_t theList = 6;
constexpr std::size_t theBind = 7;
constexpr std::size_t bases[] = {theList, theBind, 0, 1, 2, 0};
constexpr std::size_t roots[] = {theList, theBind, theList, theBind, theList, theList};
constexpr bool isSorted[] = {true, false, false, true, true, true};

}  // namespace

constinit const Subject viewSubject{"views", &AgreesWithItself<ViewWorld>, &ViewWorld::Describe};

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
      {"Watch", "w8", &ViewWorld::Watch, 16},
      {"EndList", "w2", &ViewWorld::EndList, 2},
      {"Swap", "w2", &ViewWorld::Swap, 8},
      {"Flood", "a0", &ViewWorld::Flood, 1},
      {"Limit", "v4", &ViewWorld::Limit, 8},
      {"ThrowSoon", "w6n9", &ViewWorld::ThrowSoon, 4},
      {"Throw", "", &ViewWorld::Throw, 2},
      {"When", "p2o7m3", &ViewWorld::When, 40},
  };
}

ViewWorld::ViewWorld() {
  for (std::size_t which = 0; which < viewCount; ++which) Make(which);
}

ViewWorld::~ViewWorld() {
  for (auto& copy : copies) copy.seen = {};
}

List<Piece>* ViewWorld::Goal(int at) const {
  return (guest != nullptr && at % 3 == 0 ? *guest : home).pieces.get();
}

ReadableList<Piece>* ViewWorld::Of(std::size_t which) const {
  if (which == theList) return home.pieces.get();
  // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): observing it changes nothing here
  if (which == theBind) return &const_cast<ViewWorld*>(this)->bind;
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
    return piece.value >= *home.limit &&
           (setting == 0 || (setting < 3 ? piece.value > 2 * setting : piece.key % setting == 0));
  };
}

void ViewWorld::Make(std::size_t which) {
  View& view = views[which];
  view.isSpoilt = false;
  if (isSorted[which]) {
    view.sorted = std::make_unique<Sorted>(Base(which), Less(which, true));
  } else {
    view.filtered = std::make_unique<Filtered>(Base(which), Shows(which, true), home.limit);
  }
}

void ViewWorld::End(std::size_t which) {
  ++endings;
  const auto sorted = std::move(views[which].sorted);
  const auto filtered = std::move(views[which].filtered);
  copies[which].seen = {};
}

void ViewWorld::Insert(int at, int count, int key) {
  List<Piece>* const list = Goal(at);
  if (list == nullptr || list->Size() > mostPieces) return;
  std::vector<Piece> pieces;
  const int more = at % 16 == 0 ? 20 * count : count;
  pieces.reserve(static_cast<std::size_t>(more));
  for (int i = 0; i < more; ++i) pieces.push_back({(key + 7 * i) % keyCount, (key + i) % 10});
  list->Insert(At(at) % (list->Size() + 1), pieces);
}

void ViewWorld::Remove(int at, int count, int) {
  List<Piece>* const list = Goal(at);
  if (list == nullptr) return;
  const std::size_t first = At(at) % (list->Size() + 1);
  const std::size_t most = At(at) % 8 == 0 ? At(count) * 10 : At(count);
  list->Remove(first, std::min(most, list->Size() - first));
}

void ViewWorld::Move(int from, int count, int to) {
  List<Piece>* const list = Goal(from);
  if (list == nullptr) return;
  const std::size_t rows = std::min(At(count), list->Size());
  const std::size_t places = list->Size() - rows + 1;
  list->Move(At(from) % places, rows, At(to) % places);
}

void ViewWorld::Update(int at, int value, int) {
  List<Piece>* const list = Goal(at);
  if (list == nullptr || list->IsEmpty()) return;
  list->UpdateAt(At(at) % list->Size(), [value](Piece& piece) { piece.value = value; });
}

void ViewWorld::UpdateMany(int seed, int of, int) {
  List<Piece>* const list = Goal(seed);
  if (list == nullptr) return;
  std::vector<int> some;
  std::mt19937 random(static_cast<std::uint32_t>(seed));
  for (const Piece& piece : *list) {
    if (static_cast<int>(random() % 8) <= of) some.push_back(piece.key);
  }
  list->Update(some, [&](Piece& piece) { piece.value = static_cast<int>(random() % 10); });
}

/// Makes other rows of some; a shuffle is told as a Reset or as Reordered.
void ViewWorld::Assign(int seed, int way, int) {
  List<Piece>* const list = Goal(seed);
  if (list == nullptr) return;
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
      pieces.insert(pieces.begin() + at, {static_cast<int>(random() % keyCount), i % 10});
    }
  });
}

void ViewWorld::Setting(int which, int setting, int) {
  View& view = views[At(which)];
  view.setting = setting;
  view.isSpoilt = false;
  if (view.sorted != nullptr) view.sorted->SortBy(Less(At(which), true));
  if (view.filtered != nullptr) view.filtered->SetFilter(Shows(At(which), true), home.limit);
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
  RowCopy<Piece>& copy = copies[At(which)];
  if (Of(At(which)) == nullptr) return;  // it ends
  copy.copy = RowCopy<Piece>::Read(*Of(At(which)));
  const int before = endings;
  Subscription seen = Of(At(which))->Observe({.before = hear, .after = hear});
  if (endings == before) copy.seen = std::move(seen);  // it may have been told at once, and ended
}

/// Ends the list, perhaps in a callback, and its views, which live on empty until then. Or ends the
/// list that the bind shows in its place.
void ViewWorld::EndList(int which, int, int) {
  PieceHome* const ended = which == 0 ? &home : guest;
  if (isEnding || ended == nullptr || ended->pieces == nullptr) return;
  const ScopedValue ending(isEnding, true);
  ++endings;
  ended->pieces.reset();
  for (std::size_t i = 0; which == 0 && i < viewCount; ++i) {
    Expect(roots[i] == theBind || Of(i)->IsEmpty(), "a view without a list");
  }
  for (std::size_t i = viewCount; which == 0 && i-- > 0;) End(i);
  if (which == 0) copies[theList].seen = {};
  if (which == 0 || ended == guest) ended->Renew();
  for (std::size_t i = 0; which == 0 && i < viewCount; ++i) Make(i);
}

/// Adds a nearer source, whose list the bind then shows, or lets it end or go.
void ViewWorld::Swap(int way, int, int) {
  if (isEnding || inner.IsConnecting() || outer.IsConnecting()) return;
  if (PieceHome* const going = std::exchange(guest, nullptr)) {
    way == 0 ? static_cast<void>(inner.DeleteLocalDataSourceInstance(L"Home"))
             : static_cast<void>(TakeDataSource(inner, going));
  } else {
    auto made = MakeDataSource<PieceHome>(&inner);
    std::vector<Piece> pieces(home.pieces->begin(), home.pieces->end());
    std::erase_if(pieces, [](const Piece& piece) { return piece.key % 3 == 0; });
    for (Piece& piece : pieces) piece.key += piece.value == way ? 1 : 0;
    if (way == 0) std::ranges::reverse(pieces);
    made->pieces->Assign(pieces);
    guest = made.get();
    GiveDataSource(inner, std::move(made));
  }
}

/// Inserts very many rows, perhaps in a callback; Settle takes most of them away. They stand side
/// by side in most views, since an observer that compares its copy takes long.
void ViewWorld::Flood(int at, int, int) {
  List<Piece>* const list = Goal(at);
  if (list == nullptr || list->Size() > mostPieces || at % 4 != 0) return;
  std::vector<Piece> pieces;
  pieces.reserve(5000);
  for (int i = 0; i < 5000; ++i) pieces.push_back({at + i, at % 10});
  list->Insert(At(at) % (list->Size() + 1), pieces);
}

void ViewWorld::Limit(int value, int, int) { home.limit.Set(value); }

void ViewWorld::Settle() {
  for (const int which : {0, 1}) {
    List<Piece>* const list = Goal(which);
    if (list == nullptr || list->Size() < 4 * mostPieces) continue;
    list->Remove(mostPieces / 2, list->Size() - mostPieces);
  }
}

void ViewWorld::ThrowSoon(int which, int count, int) { views[At(which)].untilThrow = 20 * count; }

void ViewWorld::Hear(std::size_t which, const RowChange<Piece>& change) {
  const ReadableList<Piece>& heard = static_cast<const ReadableList<Piece>&>(change.Node());
  Expect(copies[which].Follow(heard, change),
         change.IsBefore() ? "an observer's copy does not fit before a change"
                           : "an observer's copy does not fit after a change");
  for (std::size_t i = 0; i < viewCount; ++i) {
    if (&heard != Of(roots[i]) || Of(i) == nullptr) continue;  // it follows another one, or ends
    for (std::size_t row = 0; row < Of(i)->Size(); row += 1 + Of(i)->Size() / 500) {
      Expect(heard.Contains(Of(i)->At(row)), "a view has a row that its list has not");
    }
  }
  Happen(points[change.IsBefore() ? 0 : 1], static_cast<int>(which), 0, Place::Anywhere);
}

/// Rows that are set aside stand at the end, in whatever order they came there.
void ViewWorld::CompareWithNew(std::size_t which) {
  auto now = RowCopy<Piece>::Read(*Of(which));
  RowCopy<Piece>::Numbered anew;
  std::size_t aside = 0;
  if (isSorted[which]) {
    anew = RowCopy<Piece>::Read(Sorted(Base(which), Less(which, false)));
    const auto isBad = [](const auto& row) { return row.second.value == badValue; };
    if (views[which].setting == 5) aside = At(static_cast<int>(std::ranges::count_if(anew, isBad)));
  } else {
    anew = RowCopy<Piece>::Read(Filtered(Base(which), Shows(which, false)));
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
  const PieceHome& shown = guest != nullptr ? *guest : home;
  Expect(std::ranges::equal(bind, *shown.pieces), "a bind does not show the nearest list");
  for (std::size_t i = 0; i < copies.size(); ++i) {
    if (copies[i].seen) {
      Expect(copies[i].copy == RowCopy<Piece>::Read(*Of(i)), "a copy is not as what it copies");
    }
  }
  return failure == nullptr;
}

}  // namespace DataBinding::Stress

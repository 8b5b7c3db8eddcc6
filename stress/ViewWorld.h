// SPDX-License-Identifier: Apache-2.0
/// A list, a bind that shows it or the one of a nearer source, views of both that stand on each
/// other, and observers of all of them, each with a copy that it keeps by what it is told.
///
/// An observer compares its copy with what it observes before and after every change. At rest each
/// view must equal one that is made anew. Operations are also played inside callbacks, where views
/// may end, begin and get other settings, and lists may end, get thousands of rows, or be replaced
/// in the bind. Comparisons and predicates throw for certain rows always, and sometimes for any.
#pragma once

#include <array>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/datasource/NamedDataSource.h"
#include "DataBinding/framework/ListBind.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/SortedList.h"
#include "DataBinding/property/Property.h"
#include "RowCopy.h"
#include "Script.h"

namespace DataBinding::Stress {

struct Piece {
  int key;
  int value;
  bool operator==(const Piece&) const = default;
};

constexpr auto FieldsOf(const Piece*) {
  return Fields(Key(L"Key", &Piece::key), Field(L"Value", &Piece::value));
}

/// A source whose list may end before it.
struct PieceHome : NamedDataSource {
  PieceHome() : NamedDataSource(L"Home") { Renew(); }
  void Renew() { pieces = std::make_unique<List<Piece>>(this, PropertyName(L"Pieces")); }

  std::unique_ptr<List<Piece>> pieces;
  Property<int> limit{this, L"Limit"};
};

class ViewWorld : public Player<ViewWorld> {
 public:
  static constexpr std::string_view points[] = {"before", "after"};
  static std::vector<Operation<ViewWorld>> Operations();

  ViewWorld();
  ~ViewWorld();
  ViewWorld(const ViewWorld&) = delete;
  ViewWorld& operator=(const ViewWorld&) = delete;

  void Insert(int at, int count, int key);
  void Remove(int at, int count, int);
  void Move(int from, int count, int to);
  void Update(int at, int value, int);
  void UpdateMany(int seed, int of, int);
  void Assign(int seed, int way, int);
  void Setting(int which, int setting, int);
  void Refilter(int which, int, int);
  void Renew(int which, int, int);
  void Watch(int which, int, int);
  void EndList(int which, int, int);
  void Swap(int way, int, int);
  void Flood(int at, int, int);
  void Limit(int value, int, int);
  void ThrowSoon(int which, int count, int);

  /// Says whether everything agreed until now. The list must be at rest.
  [[nodiscard]] bool Agrees();
  /// Takes rows away when there are too many.
  void Settle();
  [[nodiscard]] const char* WhatDiffers() const noexcept { return failure; }

 private:
  static constexpr std::size_t viewCount = 6;
  using Sorted = SortedList<Piece>;
  using Filtered = FilteredList<Piece>;
  /// A view is one or the other.
  struct View {
    std::unique_ptr<Sorted> sorted;
    std::unique_ptr<Filtered> filtered;
    int setting = 0;
    int untilThrow = 0;
    bool isSpoilt = false;  // by a function that threw where it usually does not
  };

  void Expect(bool holds, const char* what) {
    if (!holds && failure == nullptr) failure = what;
  }
  /// The list of the one source or of the other, if it is there.
  [[nodiscard]] List<Piece>* Goal(int at) const;
  [[nodiscard]] ReadableList<Piece>* Of(std::size_t which) const;
  [[nodiscard]] ReadableList<Piece>& Base(std::size_t which) const;
  void Make(std::size_t which);
  void End(std::size_t which);
  [[nodiscard]] auto Less(std::size_t which, bool mayThrow);
  [[nodiscard]] auto Shows(std::size_t which, bool mayThrow);
  void MayThrow(std::size_t which);
  void Hear(std::size_t which, const RowChange<Piece>& change);
  void CompareWithNew(std::size_t which);

  DataSourceProvider outer{nullptr, L"outer", nullptr};
  DataSourceProvider inner{&outer, L"inner", nullptr};
  PieceHome& home = Emplace<PieceHome>(outer);
  PieceHome* guest = nullptr;  // of the inner scope
  Framework::ListBind<Piece> bind{&inner, L"Home", L"Pieces"};
  std::array<View, viewCount> views;
  std::array<RowCopy<Piece>, viewCount + 2> copies;  // the last ones are of the list and the bind
  bool isEnding = false;
  int endings = 0;
  const char* failure = nullptr;
};

}  // namespace DataBinding::Stress

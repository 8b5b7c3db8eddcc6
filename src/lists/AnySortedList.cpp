// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/lists/AnySortedList.h"

#include <cmath>
#include <type_traits>
#include <utility>
#include <variant>

namespace DataBinding {

namespace {

/// Says which contents stand together: numbers first, then texts, then nothing.
struct RankOf {
  template <class Content>
  int operator()(const Content& content) const noexcept {
    if constexpr (std::floating_point<Content>) return std::isnan(content) ? 2 : 0;
    if constexpr (std::is_arithmetic_v<Content>) return 0;
    return std::is_same_v<Content, VtrString> ? 1 : 3;
  }
};

/// Compares contents of one rank, which is not 2.
template <class One, class Other>
int CompareContents(const One& one, const Other& other, Order order) {
  if constexpr (std::is_same_v<One, Other>) {
    return details::CompareValues(one, other, order);
  } else if constexpr (std::is_same_v<One, std::uint64_t> && std::is_same_v<Other, std::int64_t>) {
    return order == Order::Ascending ? 1 : -1;  // unsigned ones are above all that are signed
  } else if constexpr (std::is_same_v<One, std::int64_t> && std::is_same_v<Other, std::uint64_t>) {
    return order == Order::Ascending ? -1 : 1;
  } else if constexpr (std::is_arithmetic_v<One> && std::is_arithmetic_v<Other>) {
    return details::CompareValues(static_cast<double>(one), static_cast<double>(other), order);
  } else {
    return 0;
  }
}

int CompareCells(const Value& one, const Value& other, Order order) {
  const int rank = one.Visit(RankOf());
  const int otherRank = other.Visit(RankOf());
  if (rank != otherRank || rank == 2) return rank - otherRank;
  return one.Visit([&](const auto& content) {
    return other.Visit(
        [&](const auto& otherContent) { return CompareContents(content, otherContent, order); });
  });
}

/// Returns a number for a cell: of two cells, that of the lesser number stands first. Cells of one
/// number are compared.
std::uint64_t NumberOfCell(const Value& cell, Order order) {
  return cell.Visit([order]<class Content>(const Content& content) -> std::uint64_t {
    constexpr auto last = ~std::uint64_t{0};
    if constexpr (std::is_same_v<Content, std::uint64_t>) {
      return order == Order::Ascending ? last : 0;  // it is above all that are signed
    } else if constexpr (std::is_arithmetic_v<Content>) {
      return details::NumberOf(content, order);
    } else {
      return last;
    }
  });
}

/// Reads one field of rows of any type.
class CellReader {
 public:
  CellReader(const AnyList& itsList, std::size_t itsField) : list(itsList), field(itsField) {}

  Value operator()(const void* row) const {
    const details::RowTable* const table = list.Table();
    if (table == nullptr || field >= table->fields.size()) return {};
    return table->fields[field].get(row);
  }

 private:
  const AnyList& list;
  std::size_t field;
};

}  // namespace

AnySortedList::AnySortedList(AnyList& list) : ViewOf(list, details::RowSorting()) {}

AnySortedList::~AnySortedList() { view.End(); }

bool AnySortedList::SortBy(std::size_t field, Order order) {
  if (field >= FieldCount()) return false;
  const CellReader cell(*this, field);
  details::RowSorting sorting;
  sorting.fields = details::RowTable::BitOf(field);
  sorting.compare = [cell, order](const void* one, const void* other) {
    return CompareCells(cell(one), cell(other), order) < 0;
  };
  if (FieldKind(field) != ValueKind::Text) {
    sorting.number = [cell, order](const void* row) { return NumberOfCell(cell(row), order); };
  }
  view.SortBy(std::move(sorting));
  return true;
}

bool AnySortedList::SortBy(const VtrString& field, Order order) {
  const auto number = FieldNumber(field);
  return number && SortBy(*number, order);
}

void AnySortedList::KeepOrderOfList() { view.SortBy({}); }

SetResult AnySortedList::MoveRows(std::size_t from, std::size_t count, std::size_t to) {
  return view.IsSorted() ? ViewOf::MoveRows(from, count, to) : view.MoveRows(from, count, to);
}

bool AnySortedList::CanMoveRows() const { return !view.IsSorted() && view.CanMoveRows(); }

}  // namespace DataBinding

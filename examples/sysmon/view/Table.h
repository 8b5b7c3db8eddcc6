// SPDX-License-Identifier: Apache-2.0
/// Shows a list, sorted by one of its columns, below a line of titles. One row is chosen. The table
/// redraws only those cells whose text has changed.
#pragma once

#include <algorithm>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

#include <DataBinding/lists/Selection.h>
#include <DataBinding/lists/SortedList.h>

#include "Surface.h"

namespace Sysmon {

using DataBinding::By;
using DataBinding::Order;

template <class Row>
struct Column {
  const wchar_t* title;
  int width;
  Align align;
  Value (*value)(const Row& row);
};

/// The value of a column that shows a field.
template <auto Member>
inline constexpr auto valueOf = [](const auto& row) -> Value { return row.*Member; };

template <class Row>
class Table {
 public:
  using Columns = std::span<const Column<Row>>;

  /// With showsChoice the chosen row is marked.
  Table(DataBinding::ReadableList<Row>& list, Columns shownColumns, bool showsChoice)
      : columns(shownColumns),
        rows(list, By(columns.front().value)),
        followed(list),
        marksChoice(showsChoice) {}

  void Draw(Surface& surface, const Area& area);
  /// Draws everything the next time.
  void Invalidate() {
    shown.clear();
    titlesShown = false;
  }

  /// Sorts by the column of that title, and goes to the top. Rows that are equal in it are ordered
  /// by the first column.
  void SortBy(std::wstring_view title, Order newOrder) {
    const auto found = std::ranges::find(columns, title, &Column<Row>::title);
    if (found == columns.end()) return;
    sortColumn = static_cast<std::size_t>(found - columns.begin());
    order = newOrder;
    Sort();
  }
  void Reverse() {
    order = order == Order::Ascending ? Order::Descending : Order::Ascending;
    Sort();
  }
  /// Moves the choice. From then on it follows its row, until it is moved back to the top.
  void Move(int rowCount);
  /// Moves the choice by as many rows as were drawn last.
  void MovePages(int pageCount) { Move(pageCount * pageHeight); }
  void MoveToEnd(bool isLast) { Move(isLast ? RowCount() : -RowCount()); }
  /// The chosen row; nothing in an empty table.
  [[nodiscard]] std::optional<DataBinding::RowId> Chosen() {
    FindChoice();
    return rows.IdAt(static_cast<std::size_t>(chosen));
  }
  [[nodiscard]] int RowCount() const { return static_cast<int>(rows.Size()); }

 private:
  /// Holds the texts that a line of the surface shows at present; a line below the last row has
  /// none.
  struct Line {
    std::vector<VtrString> texts;
    bool isChosen = false;
  };

  void Sort() {
    rows.SortBy(By(columns[sortColumn].value, order).Then(columns.front().value));
    titlesShown = false;
    MoveToEnd(false);
  }
  void FindChoice();
  /// Scrolls only as far as is needed to see the choice, and not past the last row.
  void Scroll() {
    top = std::clamp(top, chosen - std::max(0, pageHeight - 1), chosen);
    top = std::clamp(top, 0, std::max(0, RowCount() - pageHeight));
  }
  template <class Visitor>
  void VisitColumns(const Place& line, Visitor&& visit) const;
  void DrawTitles(Surface& surface, const Place& place) const;
  [[nodiscard]] Line MakeLine(std::size_t index) const;
  void DrawLine(Surface& surface, const Place& place, const Line& line, const Line* former) const;

  Columns columns;
  DataBinding::SortedList<Row> rows;
  DataBinding::Selection<Row> followed;
  bool marksChoice;
  std::size_t sortColumn = 0;
  Order order = Order::Ascending;
  int chosen = 0;
  int top = 0;
  int pageHeight = 0;
  /// One for each drawn line; empty when everything is to be drawn.
  std::vector<Line> shown;
  bool titlesShown = false;
};

template <class Row>
void Table<Row>::Move(int rowCount) {
  FindChoice();
  chosen = std::clamp(chosen + rowCount, 0, std::max(0, RowCount() - 1));
  if (chosen == 0) return followed.Clear();
  followed.Choose(rows.At(static_cast<std::size_t>(chosen)));
}

/// Finds the row that the choice follows. If the row has gone, the choice stays at its place.
template <class Row>
void Table<Row>::FindChoice() {
  const auto row = followed.CurrentId();
  if (row) chosen = static_cast<int>(rows.IndexOf(*row).value_or(0));
  chosen = std::clamp(chosen, 0, std::max(0, RowCount() - 1));
}

template <class Row>
void Table<Row>::Draw(Surface& surface, const Area& area) {
  if (!titlesShown) DrawTitles(surface, area.At(0, 0, area.width));
  titlesShown = true;
  FindChoice();
  pageHeight = std::max(0, area.height - 1);
  Scroll();

  const auto first = static_cast<std::size_t>(top);
  const auto used = std::min(rows.Size() - first, static_cast<std::size_t>(pageHeight));
  std::vector<Line> lines(std::max(shown.size(), used));
  for (std::size_t i = 0; i < lines.size(); ++i) {
    if (i < used) lines[i] = MakeLine(first + i);
    DrawLine(surface, area.At(static_cast<int>(i) + 1, 0, area.width), lines[i],
             i < shown.size() ? &shown[i] : nullptr);
  }
  lines.resize(used);
  shown = std::move(lines);
}

template <class Row>
auto Table<Row>::MakeLine(std::size_t index) const -> Line {
  Line line;
  line.isChosen = marksChoice && static_cast<int>(index) == chosen;
  line.texts.reserve(columns.size());
  for (const auto& column : columns) line.texts.push_back(Show(column.value(rows[index])));
  return line;
}

/// Calls visit(index, place) for the columns that a line has room for. A text may be cut off, a
/// figure is left out.
template <class Row>
template <class Visitor>
void Table<Row>::VisitColumns(const Place& line, Visitor&& visit) const {
  int offset = 0;
  for (std::size_t i = 0; i < columns.size() && offset < line.width; ++i) {
    const int width = std::min(columns[i].width, line.width - offset);
    if (columns[i].align == Align::Right && width < columns[i].width) return;
    visit(i, Place{line.line, line.column + offset, width});
    offset += width + 1;
  }
}

template <class Row>
void Table<Row>::DrawTitles(Surface& surface, const Place& place) const {
  surface.Write(place, L"", Style::Title);
  VisitColumns(place, [&](std::size_t index, const Place& cell) {
    const Style style = index == sortColumn ? Style::Chosen : Style::Title;
    surface.Write(cell, columns[index].title, style, columns[index].align);
  });
}

template <class Row>
void Table<Row>::DrawLine(Surface& surface, const Place& place, const Line& line,
                          const Line* former) const {
  const Style style = line.isChosen ? Style::Chosen : Style::Plain;
  const bool isWhole = former == nullptr || former->isChosen != line.isChosen || line.texts.empty();
  if (isWhole) surface.Write(place, L"", style);
  if (line.texts.empty()) return;
  VisitColumns(place, [&](std::size_t index, const Place& cell) {
    if (!isWhole && line.texts[index] == former->texts[index]) return;
    surface.Write(cell, line.texts[index], style, columns[index].align);
  });
}

}  // namespace Sysmon

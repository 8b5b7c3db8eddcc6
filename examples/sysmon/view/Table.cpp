// SPDX-License-Identifier: Apache-2.0
#include "Table.h"

#include <algorithm>

namespace Sysmon {

Table::Table(IDataSourceProvider& root, const RowKind& rowKind, bool showsChoice)
    : kind(rowKind), rows(root, rowKind), marksChoice(showsChoice) {}

void Table::Invalidate() {
  shown.clear();
  titlesShown = false;
}

void Table::SortBy(std::wstring_view property, bool isDescending) {
  const auto found = std::ranges::find(kind.columns, property, &Column::property);
  if (found == kind.columns.end()) return;
  sortColumn = static_cast<std::size_t>(found - kind.columns.begin());
  descending = isDescending;
  rows.SortBy(sortColumn, descending);
  titlesShown = false;
  MoveToEnd(false);
}

void Table::Reverse() {
  descending = !descending;
  rows.SortBy(sortColumn, descending);
  MoveToEnd(false);
}

void Table::Move(int rowCount) {
  const auto& sorted = rows.Sorted();
  FindChoice(sorted);
  if (sorted.empty()) return;
  chosen = std::clamp(chosen + rowCount, 0, static_cast<int>(sorted.size()) - 1);
  followed = chosen == 0 ? nullptr : sorted[static_cast<std::size_t>(chosen)];
}

void Table::MoveToEnd(bool isLast) { Move(isLast ? RowCount() : -RowCount()); }

IDataSourceProvider* Table::Chosen() {
  const auto& sorted = rows.Sorted();
  FindChoice(sorted);
  return sorted.empty() ? nullptr : sorted[static_cast<std::size_t>(chosen)]->Scope();
}

/// Finds the row that the choice follows. If the row has ended, the choice stays at its place.
void Table::FindChoice(const std::vector<ScopeRows::Row>& sorted) {
  const auto found = std::ranges::find(sorted, followed);
  if (found != sorted.end()) chosen = static_cast<int>(found - sorted.begin());
  chosen = std::clamp(chosen, 0, std::max(0, static_cast<int>(sorted.size()) - 1));
}

/// Scrolls only as far as is needed to see the choice, and not past the last row.
void Table::Scroll(int count) {
  top = std::clamp(top, chosen - std::max(0, pageHeight - 1), chosen);
  top = std::clamp(top, 0, std::max(0, count - pageHeight));
}

void Table::Draw(Surface& surface, const Area& area) {
  if (!titlesShown) DrawTitles(surface, area.At(0, 0, area.width));
  titlesShown = true;
  const auto& sorted = rows.Sorted();
  FindChoice(sorted);
  pageHeight = std::max(0, area.height - 1);
  Scroll(static_cast<int>(sorted.size()));

  const auto first = static_cast<std::size_t>(top);
  const auto used = std::min(sorted.size() - first, static_cast<std::size_t>(pageHeight));
  const std::size_t drawn = shown.size();
  shown.resize(std::max(drawn, used));
  for (std::size_t line = 0; line < shown.size(); ++line) {
    Shown wanted;
    if (line < used) wanted.row = sorted[first + line];
    wanted.isChosen = marksChoice && static_cast<int>(first + line) == chosen;
    const bool isWhole = line >= drawn || wanted != shown[line];
    DrawRow(surface, area.At(static_cast<int>(line) + 1, 0, area.width), wanted, isWhole);
    shown[line] = wanted;
  }
  shown.resize(used);
  for (const auto& row : sorted) row->Settle();
}

/// Calls visit(index, place) for the columns that a line has room for. A text may be cut off, a
/// figure is left out.
template <class Visitor>
void Table::VisitColumns(const Place& line, Visitor&& visit) const {
  int offset = 0;
  for (std::size_t i = 0; i < kind.columns.size() && offset < line.width; ++i) {
    const Column& column = kind.columns[i];
    const int width = std::min(column.width, line.width - offset);
    if (column.align == Align::Right && width < column.width) return;
    visit(i, Place{line.line, line.column + offset, width});
    offset += width + 1;
  }
}

void Table::DrawTitles(Surface& surface, const Place& line) const {
  surface.Write(line, L"", Style::Title);
  VisitColumns(line, [&](std::size_t index, const Place& place) {
    const Style style = index == sortColumn ? Style::Chosen : Style::Title;
    surface.Write(place, kind.columns[index].title, style, kind.columns[index].align);
  });
}

void Table::DrawRow(Surface& surface, const Place& line, const Shown& wanted, bool isWhole) const {
  const Style style = wanted.isChosen ? Style::Chosen : Style::Plain;
  if (isWhole) surface.Write(line, L"", style);
  if (wanted.row == nullptr) return;
  VisitColumns(line, [&](std::size_t index, const Place& place) {
    if (!isWhole && !wanted.row->IsChanged(index)) return;
    surface.Write(place, wanted.row->TextAt(index), style, kind.columns[index].align);
  });
}

}  // namespace Sysmon

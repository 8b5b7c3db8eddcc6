// SPDX-License-Identifier: Apache-2.0
/// Shows rows of scopes below a line of titles. One row is chosen. The table redraws only those
/// cells whose value or row has changed.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "ScopeRows.h"
#include "Surface.h"

namespace Sysmon {

class Table {
 public:
  /// With showsChoice the chosen row is marked.
  Table(IDataSourceProvider& root, const RowKind& rowKind, bool showsChoice);

  void Draw(Surface& surface, const Area& area);
  /// Draws everything the next time.
  void Invalidate();

  /// Sorts by the column of that property, and goes to the top.
  void SortBy(std::wstring_view property, bool isDescending);
  void Reverse();
  /// Moves the choice. From then on it follows its row, until it is moved back to the top.
  void Move(int rowCount);
  /// Moves the choice by as many rows as were drawn last.
  void MovePages(int pageCount) { Move(pageCount * pageHeight); }
  void MoveToEnd(bool isLast);
  /// The scope of the chosen row, or null.
  [[nodiscard]] IDataSourceProvider* Chosen();
  [[nodiscard]] int RowCount() { return static_cast<int>(rows.Sorted().size()); }

 private:
  /// The row and the texts that a line of the surface shows at present.
  struct Shown {
    ScopeRows::Row row;
    bool isChosen = false;

    friend bool operator==(const Shown&, const Shown&) = default;
  };

  void FindChoice(const std::vector<ScopeRows::Row>& sorted);
  void Scroll(int count);
  template <class Visitor>
  void VisitColumns(const Place& line, Visitor&& visit) const;
  void DrawTitles(Surface& surface, const Place& line) const;
  void DrawRow(Surface& surface, const Place& line, const Shown& wanted, bool isWhole) const;

  const RowKind& kind;
  ScopeRows rows;
  bool marksChoice;
  std::size_t sortColumn = 0;
  bool descending = false;
  int chosen = 0;
  ScopeRows::Row followed;
  int top = 0;
  int pageHeight = 0;
  /// One for each drawn line; empty when everything is to be drawn.
  std::vector<Shown> shown;
  bool titlesShown = false;
};

}  // namespace Sysmon

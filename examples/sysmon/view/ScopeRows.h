// SPDX-License-Identifier: Apache-2.0
/// A sorted row of values for each child scope of a category, as the scopes come and go.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include <DataBinding/datasource/DataListener.h>

#include "Text.h"
#include "Watch.h"

namespace Sysmon {

struct Column {
  const wchar_t* title;
  const wchar_t* property;
  int width;
  Align align;
};

/// Names what the rows show: a source of each scope, and the event that announces scopes.
struct RowKind {
  const wchar_t* category;
  const wchar_t* source;
  const wchar_t* announcer;
  const wchar_t* event;
  std::span<const Column> columns;
};

class ScopeRows final : public DataBinding::DataListener {
 public:
  using Row = std::shared_ptr<Watch>;

  ScopeRows(IDataSourceProvider& rootScope, const RowKind& rowKind);

  /// The rows in order. Rows that are equal otherwise are ordered by the first column.
  [[nodiscard]] const std::vector<Row>& Sorted();
  void SortBy(std::size_t column, bool isDescending);

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}
  void Gather();
  [[nodiscard]] bool Precedes(const Watch& left, const Watch& right) const;

  IDataSourceProvider& root;
  const RowKind& kind;
  std::vector<Row> rows;
  std::size_t sortColumn = 0;
  bool descending = false;
  bool isStale = true;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// A scope that shows one process of a list at a time. Its source "Process" has the fields of that
/// row, and the scope builds other sources of the category "process" when it is asked for them.
#pragma once

#include <DataBinding/datasource/DataSourceProvider.h>
#include <DataBinding/lists/CurrentRow.h>

#include "../common/Scopes.h"
#include "../common/Things.h"

namespace Sysmon {

class ProcessScope {
 public:
  ProcessScope(IDataSourceProvider& root, DataBinding::ReadableList<Process>& processes)
      : scope(&root, L"process", nullptr), chosen(processes), row(&scope, L"Process", chosen) {}

  [[nodiscard]] IDataSourceProvider& Get() { return scope; }
  /// The row that is chosen last is the one that the scope shows.
  [[nodiscard]] DataBinding::Selection<Process>& Chosen() { return chosen; }
  void Show(DataBinding::RowId process) { chosen.Choose(process); }
  /// False once the process has ended.
  [[nodiscard]] bool HasProcess() const { return chosen.CurrentId().has_value(); }

 private:
  DataBinding::DataSourceProvider scope;
  DataBinding::Selection<Process> chosen;
  DataBinding::CurrentRow<Process> row;
};

}  // namespace Sysmon

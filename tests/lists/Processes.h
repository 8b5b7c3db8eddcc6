// SPDX-License-Identifier: Apache-2.0
/// Rows for the tests of lists, and an observer that writes down what it hears.
#pragma once

#include <string>
#include <vector>

#include "DataBinding/lists/List.h"

namespace DataBinding::Testing {

struct Process {
  int id;
  VtrString name;
  double cpu;
};

inline VtrString NotNegative(const double& value) { return value < 0 ? L"is negative" : L""; }

constexpr auto FieldsOf(const Process*) {
  return Fields(Key(L"Id", &Process::id), Field(L"Name", &Process::name, {.readOnly = true}),
                Field(L"Cpu", &Process::cpu, {.validate = NotNegative}));
}

/// Makes processes of these ids.
inline std::vector<Process> Processes(const std::vector<int>& ids) {
  std::vector<Process> rows;
  for (const int id : ids) rows.push_back({id, L"p", 0});
  return rows;
}

inline std::string IdsOf(const ReadableList<Process>& list) {
  std::string text;
  for (const Process& process : list) text += std::to_string(process.id) + " ";
  return text;
}

/// Returns a change in a few characters: "+3x2" for two rows that are inserted at 3.
inline std::string Describe(const RowChange<Process>& change) {
  constexpr const char* kinds[] = {"+", "-", ">", "=", "~", "!"};
  std::string text = kinds[static_cast<int>(change.Kind())];
  const bool isScattered = change.Kind() == ListChangeKind::Changed;
  text += std::to_string(isScattered ? change.PlaceOf(0) : change.At());
  if (change.Count() != 1) text += "x" + std::to_string(change.Count());
  if (change.Kind() == ListChangeKind::Moved) text += "to" + std::to_string(change.To());
  return text;
}

/// Writes down the changes of a list after they have happened.
inline Subscription WriteDown(ReadableList<Process>& list, std::string& log) {
  return list.Observe(
      {.after = [&log](const RowChange<Process>& change) { log += Describe(change) + " "; }});
}

}  // namespace DataBinding::Testing

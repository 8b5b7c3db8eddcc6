// SPDX-License-Identifier: Apache-2.0
#include "JsonReport.h"

#include <algorithm>
#include <chrono>
#include <utility>
#include <variant>

#include <DataBinding/datasource/IDataSource.h>
#include <DataBinding/framework/AnyListBind.h>
#include <DataBinding/framework/ListBind.h>
#include <DataBinding/property/PropertyAccess.h>
#include <DataBinding/reflection/Value.h>
#include <DataBinding/reflection/ValueForm.h>
#include <nlohmann/json.hpp>

#include "ProcessScope.h"

namespace Sysmon {

namespace {

using DataBinding::Framework::AnyListBind;
using DataBinding::Framework::ListBind;
using nlohmann::json;

struct Writer {
  json operator()(std::monostate /*nothing*/) const { return nullptr; }
  json operator()(const VtrString& text) const { return text.ToUtf8(); }
  template <class T>
  json operator()(T number) const {
    return number;
  }
};

json Write(const DataBinding::Value& value) { return value.Visit(Writer()); }

json ReportProperties(IDataSource& source) {
  json members = json::object();
  for (const auto& item : source) {
    const auto value = DataBinding::ReadProperty(&source, item.first);
    if (value) members[item.first.ToUtf8()] = Write(*value);
  }
  return members;
}

json ReportRows(const DataBinding::AnyList& list) {
  json rows = json::array();
  for (std::size_t i = 0; i < list.Size(); ++i) {
    json& row = rows.emplace_back(json::object());
    for (std::size_t field = 0; field < list.FieldCount(); ++field) {
      row[list.FieldName(field).ToUtf8()] = Write(list.Cell(i, field));
    }
  }
  return rows;
}

/// Adds the lists of a source that have rows.
void AddLists(IDataSourceProvider& root, IDataSource& source, json& report) {
  for (const auto& item : source) {
    const AnyListBind list(&root, source.GetDataSourceName(), item.first);
    if (!list.IsEmpty()) report[item.first.ToUtf8()] = ReportRows(list);
  }
}

/// Adds what is read only of processes that somebody looks at, by looking at one after the other.
void AddCommands(IDataSourceProvider& root, json& report) {
  ListBind<Process> processes(&root, L"Machine", L"Processes");
  ProcessScope scope(root, processes);
  for (std::size_t i = 0; i < processes.Size(); ++i) {
    scope.Show(processes.At(i));
    IDataSource* const command = scope.Get().GetDataSource(L"Command");
    if (command != nullptr) report["Processes"][i].update(ReportProperties(*command));
  }
}

/// The key by which rows are sorted: their number, or else their name.
json SortKey(const json& row) { return row.contains("Id") ? row["Id"] : row.value("Name", json()); }

json ReportFigure(const EventFigure& figure) {
  return std::visit([](const auto& value) { return Write(DataBinding::ToValue(value)); },
                    figure.value);
}

json ReportArgument(const EventArgument& argument) {
  if (argument.size() == 1 && argument.front().name.IsEmpty()) {
    return ReportFigure(argument.front());
  }
  json members = json::object();
  for (const EventFigure& figure : argument) members[figure.name.ToUtf8()] = ReportFigure(figure);
  return members;
}

/// Seconds since 1970, to the millisecond.
json ReportTime(std::chrono::system_clock::time_point time) {
  using Milliseconds = std::chrono::milliseconds;
  const auto whole = std::chrono::floor<Milliseconds>(time.time_since_epoch());
  return static_cast<double>(whole.count()) / 1000;
}

}  // namespace

json ReportMachine(IDataSourceProvider& root) {
  json report = json::object();
  root.VisitDataSources([&](IDataSource& source) {
    json properties = ReportProperties(source);
    if (!properties.empty()) {
      report[VtrString(source.GetDataSourceName()).ToUtf8()] = std::move(properties);
    }
    AddLists(root, source, report);
  });
  AddCommands(root, report);
  for (json& member : report) {
    if (member.is_array()) std::ranges::sort(member.get_ref<json::array_t&>(), {}, &SortKey);
  }
  return report;
}

json ReportEvents(const EventLog& log) {
  json events = json::array();
  for (const EventLog::Entry& entry : log.Entries()) {
    json arguments = json::array();
    for (const EventArgument& argument : entry.arguments) {
      arguments.push_back(ReportArgument(argument));
    }
    events.push_back({{"Name", entry.name.ToUtf8()},
                      {"Time", ReportTime(entry.time)},
                      {"Arguments", std::move(arguments)}});
  }
  return events;
}

}  // namespace Sysmon

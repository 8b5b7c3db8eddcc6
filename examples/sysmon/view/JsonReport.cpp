// SPDX-License-Identifier: Apache-2.0
#include "JsonReport.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <DataBinding/datasource/IDataSource.h>
#include <DataBinding/property/PropertyAccess.h>
#include <DataBinding/reflection/Value.h>
#include <DataBinding/reflection/ValueForm.h>
#include <nlohmann/json.hpp>

namespace Sysmon {

namespace {

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

json ReportSource(IDataSource& source) {
  json members = json::object();
  for (const auto& item : source) {
    const auto value = DataBinding::ReadProperty(&source, item.first);
    if (value) members[item.first.ToUtf8()] = Write(*value);
  }
  return members;
}

/// The name of an array: "process" gives "Processes".
std::string ArrayName(const VtrString& category) {
  std::string name = category.ToUtf8();
  if (name.empty()) return "Scopes";
  name.front() = static_cast<char>(std::toupper(static_cast<unsigned char>(name.front())));
  return name + (name.back() == 's' ? "es" : "s");
}

json ReportScope(IDataSourceProvider& scope);

/// The key by which things of one kind are sorted: their number, or else their name.
json SortKey(const json& thing) {
  return thing.contains("Id") ? thing["Id"] : thing.value("Name", json());
}

/// Adds the child scopes. They are sorted first, since a provider keeps them in no order.
void AddChildren(IDataSourceProvider& scope, json& members) {
  std::map<std::string, std::vector<json>> lists;
  scope.VisitChildren([&](IDataSourceProvider& child) {
    const auto& categories = child.GetCategories();
    lists[ArrayName(categories.empty() ? VtrString() : categories.front())].push_back(
        ReportScope(child));
  });
  for (auto& [name, things] : lists) {
    std::sort(things.begin(), things.end(),
              [](const json& left, const json& right) { return SortKey(left) < SortKey(right); });
    members[name] = std::move(things);
  }
}

json ReportScope(IDataSourceProvider& scope) {
  json members = json::object();
  for (const VtrString& name : SourceNames(scope)) {
    IDataSource* const source = scope.GetDataSource(name);
    if (source != nullptr) members.update(ReportSource(*source));
  }
  AddChildren(scope, members);
  return members;
}

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

json ReportTree(IDataSourceProvider& root) {
  json members = json::object();
  for (const VtrString& name : root.GetRegisteredDataSources()) {
    IDataSource* const source = root.GetDataSource(name);
    if (source != nullptr) members[name.ToUtf8()] = ReportSource(*source);
  }
  AddChildren(root, members);
  return members;
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

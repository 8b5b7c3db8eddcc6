// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/Diagnose.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "DataBindListener.h"
#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/EventBind.h"
#include "EventBindListener.h"
#include "Explanation.h"

namespace DataBinding {

namespace details {

/// Looks into the listeners of one scope.
class ListenerDiagnosis {
 public:
  ListenerDiagnosis(IDataSourceProvider& diagnosedScope, std::vector<BindDiagnosis>& rows)
      : scope(diagnosedScope), out(rows), scopeName(ScopeName(diagnosedScope)) {}

  void Add(const IDataListener& listener) {
    if (const auto* ofBind = dynamic_cast<const DataBindListener*>(&listener))
      return AddBind(*ofBind);
    if (const auto* ofEvent = dynamic_cast<const EventBindListener*>(&listener)) {
      const Framework::EventBind& bind = ofEvent->Bind();
      return Add(bind.DataSource(), bind.EventName(), bind.Status());
    }
    if (const auto* entries = dynamic_cast<const DataListener*>(&listener)) AddEntries(*entries);
  }

 private:
  void AddBind(const DataBindListener& ofBind) {
    const BindConnection& bind = ofBind.Connection();
    // A bind listens in the outer scopes too.
    if (bind.Provider() != &scope) return;
    Add(bind.SourceName(), bind.PropertyName(), bind.Status());
  }
  void AddEntries(const DataListener& listener) {
    if (listener.GetDataSourceProvider() != &scope) return;
    for (const auto& entry : listener.listenerEntries) {
      Add(entry.dataSourceName, entry.propertyName, Explain(entry));
    }
  }
  void Add(const VtrString& source, const VtrString& property, Framework::BindStatus&& status) {
    out.push_back({&scope, scopeName, source, property, std::move(status)});
  }
  [[nodiscard]] Framework::BindStatus Explain(const DataListenerEntry& entry) const {
    const Wish wish{entry.dataSourceName, entry.propertyName};
    if (entry.subscription) return ExplainHeard(wish, scope);
    IDataSource* source = nullptr;
    for (auto* at = &scope; at != nullptr && source == nullptr; at = at->GetParent()) {
      source = at->GetLocalDataSourceInstance(wish.source);
    }
    if (source == nullptr) return ExplainMissing(wish, scope);
    return {Framework::BindStatus::State::NoSource,
            VtrString().Format(
                L"Data source \"%s\" is there, but came unheard: in an outer scope, "
                L"after the listener had been given its provider, or the entry was added "
                L"later.",
                wish.source)};
  }

  IDataSourceProvider& scope;
  std::vector<BindDiagnosis>& out;
  VtrString scopeName;
};

}  // namespace details

namespace {

void AddTree(IDataSourceProvider& provider, std::vector<BindDiagnosis>& out) {
  const auto* scope = dynamic_cast<const DataSourceProvider*>(&provider);
  if (scope == nullptr) return;
  std::vector<BindDiagnosis> rows;
  details::ListenerDiagnosis here(provider, rows);
  scope->VisitDataListeners([&](IDataListener& listener) { here.Add(listener); });
  std::ranges::sort(rows, {}, [](const BindDiagnosis& row) {
    return std::tie(row.source, row.property, row.status.text);
  });
  std::ranges::move(rows, std::back_inserter(out));
  scope->VisitChildren([&](IDataSourceProvider& child) { AddTree(child, out); });
}

}  // namespace

std::vector<BindDiagnosis> Diagnose(IDataSourceProvider& provider) {
  std::vector<BindDiagnosis> rows;
  AddTree(provider, rows);
  return rows;
}

}  // namespace DataBinding

#include "DataBinding/Diagnose.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "BindLink.h"
#include "DataBinding/DataBind.h"
#include "DataBinding/DataListener.h"
#include "DataBinding/DataSourceProvider.h"
#include "Explanation.h"

namespace DataBinding {

namespace details {

/// Looks into the listeners of one scope.
class ListenerDiagnosis {
 public:
  ListenerDiagnosis(IDataSourceProvider& diagnosedScope, std::vector<BindDiagnosis>& rows)
      : scope(diagnosedScope), out(rows) {
    for (const auto& category : scope.GetCategories()) {
      scopeName += scopeName.IsEmpty() ? category : L"," + category;
    }
  }

  void Add(const IDataListener& listener) {
    if (const auto* link = dynamic_cast<const BindLink*>(&listener)) return AddBind(*link);
    if (const auto* entries = dynamic_cast<const DataListener*>(&listener)) AddEntries(*entries);
  }

 private:
  void AddBind(const BindLink& link) {
    const BindConnection& bind = link.Connection();
    // A bind listens in the outer scopes too.
    if (bind.Provider() != &scope) return;
    out.push_back({&scope, scopeName, bind.SourceName(), bind.PropertyName(), bind.Status()});
  }
  void AddEntries(const DataListener& listener) {
    if (listener.GetDataSourceProvider() != &scope) return;
    for (const auto& entry : listener.listenerEntries) {
      out.push_back({&scope, scopeName, entry.dataSourceName, entry.propertyName, Explain(entry)});
    }
  }
  [[nodiscard]] Framework::BindStatus Explain(const DataListenerEntry& entry) const {
    const Wish wish{entry.dataSourceName, entry.propertyName};
    IDataSource* source = nullptr;
    for (auto* at = &scope; at != nullptr && source == nullptr; at = at->GetParent()) {
      source = at->GetLocalDataSourceInstance(wish.source);
    }
    if (source == nullptr) return ExplainMissing(wish, scope);
    if (entry.subscription) return ExplainFound(wish, scope, *source);
    return {Framework::BindState::NoSource,
            VtrString().Format(L"Data source \"%s\" is there, but came unheard: in an outer scope, "
                               L"after the listener had been given its provider.",
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

// SPDX-License-Identifier: Apache-2.0
// This file holds Diagnose: it walks the scopes of a tree, has the listeners of each scope report
// what they want there, and explains each of these wishes. It also looks for lists whose callbacks
// did not come to rest.

#include "DataBinding/framework/Diagnose.h"

#include <algorithm>
#include <iterator>
#include <tuple>
#include <utility>

#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/datasource/details/ListenerReport.h"
#include "Explanation.h"
#include "FoundList.h"

namespace DataBinding {

namespace {

/// A ScopeReport makes rows of what the listeners of one scope report.
class ScopeReport final : public details::ListenerReport {
 public:
  ScopeReport(IDataSourceProvider& diagnosedScope, std::vector<BindDiagnosis>& rows)
      : scope(diagnosedScope), out(rows), scopeName(details::ScopeName(diagnosedScope)) {}

  [[nodiscard]] const IDataSourceProvider& Scope() const noexcept override { return scope; }
  void AddEntry(const VtrString& source, const VtrString& property, bool isHeard) override {
    AddBind(source, property, Explain({source, property}, isHeard));
  }
  void AddBind(const VtrString& source, const VtrString& property,
               const Framework::BindStatus& status) override {
    out.push_back({&scope, scopeName, source, property, status});
  }
  /// Adds the lists of a source whose callbacks did not come to rest.
  void AddRestlessLists(IDataSource& source) {
    const wchar_t* const sourceName = source.GetDataSourceName();
    if (sourceName == nullptr || details::ReflectionAccess::IsEnding(source)) return;
    for (const VtrString& name : source.GetNamesInOrder()) {
      auto* const property = details::FindList(&source, name).property;
      if (property == nullptr || !details::ListOf(*property).Turns()->WasRestless()) continue;
      AddBind(sourceName, name, details::ExplainRestless(sourceName, name));
    }
  }

 private:
  [[nodiscard]] Framework::BindStatus Explain(const details::Wish& wish, bool isHeard) const {
    if (isHeard) return ExplainHeard(wish, scope);
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

void AddTree(IDataSourceProvider& provider, std::vector<BindDiagnosis>& out) {
  std::vector<BindDiagnosis> rows;
  ScopeReport here(provider, rows);
  provider.VisitDataListeners([&](IDataListener& listener) { listener.ReportTo(here); });
  provider.VisitDataSources([&](IDataSource& source) { here.AddRestlessLists(source); });
  std::ranges::sort(rows, {}, [](const BindDiagnosis& row) {
    return std::tie(row.source, row.property, row.status.text);
  });
  std::ranges::move(rows, std::back_inserter(out));
  provider.VisitChildren([&](IDataSourceProvider& child) { AddTree(child, out); });
}

}  // namespace

std::vector<BindDiagnosis> Diagnose(IDataSourceProvider& provider) {
  std::vector<BindDiagnosis> rows;
  AddTree(provider, rows);
  return rows;
}

}  // namespace DataBinding

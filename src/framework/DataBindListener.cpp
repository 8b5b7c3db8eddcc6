// SPDX-License-Identifier: Apache-2.0
// This file holds a data bind's listener in one scope: it notes which source there has the bind's
// name, and has the connection look anew when that changes.

#include "DataBindListener.h"

#include <set>

#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/datasource/details/ListenerReport.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/framework/DataBind.h"
#include "Explanation.h"

namespace DataBinding::details {

DataBindListener::DataBindListener(BindConnection& listeningConnection,
                                   IDataSourceProvider& listenedScope)
    : connection(listeningConnection),
      scope(&listenedScope),
      scopeLiveness(listenedScope.GetLiveness()) {}

DataBindListener::~DataBindListener() {
  isListening = false;
  if (scopeLiveness.IsValid()) scope->RemoveDataListener(this);
}

void DataBindListener::Await(IDataSourceProvider& connecting) {
  connecting.WhenConnected(BindWeak(AsWeakPtr(), &DataBindListener::Resume));
}

void DataBindListener::Resume() { connection.Resume(); }

void DataBindListener::Listen(bool isSourceWanted) {
  std::set<VtrString> names;
  if (isSourceWanted) names.insert(connection.SourceName());
  scope->AddDataListener(this, names, true);
  // The scope passes on names that cannot be had in it to the outer scopes. There the connection
  // has listeners of their own, so this one leaves them.
  if (IDataSourceProvider* outer = scope->GetParent()) outer->RemoveDataListener(this);
  if (isSourceWanted) Know(scope->GetLocalDataSourceInstance(connection.SourceName()));
  isListening = true;
}

bool DataBindListener::HasCategory(const VtrString& category) const {
  return scopeLiveness.IsValid() && details::HasCategory(*scope, category);
}

void DataBindListener::ConnectToDatasource(IDataSource* added) {
  if (!isListening) return;
  // The first source of a name keeps it, and a later one is not found by it. A source that is being
  // added is not found by its name yet.
  const VtrString& name = connection.SourceName();
  if (source != nullptr && scope->GetLocalDataSourceInstance(name) == source) return;
  Know(added);
  connection.Update();
}

void DataBindListener::DisconnectFromDatasource(IDataSource* going) {
  if (isListening && going == source) Lose();
}

void DataBindListener::NotifyDatasourceProviderDestroyed(IDataSourceProvider* /*provider*/) {
  if (isListening) connection.CutAt(*this);
}

void DataBindListener::ReportTo(ListenerReport& report) const {
  if (connection.Provider() != &report.Scope()) return;
  report.AddBind(connection.SourceName(), connection.PropertyName(), connection.Status());
}

void DataBindListener::Know(IDataSource* newSource) {
  sourceEnding =
      newSource == nullptr
          ? Subscription()
          : newSource->AddOnDestroyHandler(BindWeak(AsWeakPtr(), &DataBindListener::Lose));
  source = newSource;
}

void DataBindListener::Lose() {
  Know(nullptr);
  connection.Update();
}

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// An EventBindListener is an event bind's listener in its scope or an outer one. It waits for no
/// source. It hears of the end of the scope, and lets Diagnose find the bind.
///
/// Its bind owns it. It is used on one thread.
#pragma once

#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/datasource/details/ListenerReport.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/framework/EventBind.h"

namespace DataBinding::details {

class EventBindListener final : public IDataListener, public SupportsWeakPtr<EventBindListener> {
 public:
  EventBindListener(Framework::EventBind& listeningBind, IDataSourceProvider& listenedScope)
      : bind(listeningBind), scope(&listenedScope), scopeLiveness(listenedScope.GetLiveness()) {
    Listen();
  }
  EventBindListener(const EventBindListener&) = delete;
  EventBindListener& operator=(const EventBindListener&) = delete;
  ~EventBindListener() override {
    if (scopeLiveness.IsValid()) scope->RemoveDataListener(this);
  }

  /// Returns the scope, or null once it is gone.
  [[nodiscard]] IDataSourceProvider* Scope() const noexcept {
    return scopeLiveness.IsValid() ? scope : nullptr;
  }

  void ConnectToDatasource(IDataSource* /*source*/) override {}
  void DisconnectFromDatasource(IDataSource* /*source*/) override {}
  /// The bind tells of the end when it is over: then the scopes within have no parent any more.
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* provider) override {
    scopeLiveness = WeakReference();
    provider->WhenConnected(BindWeak(AsWeakPtr(), &EventBindListener::TellChange));
  }
  void ReportTo(ListenerReport& report) const override {
    if (bind.Scope() != &report.Scope()) return;
    report.AddBind(bind.DataSource(), bind.EventName(), bind.Status());
  }

 private:
  void Listen() {
    if (!scopeLiveness.IsValid()) return;
    if (!scope->IsConnecting()) return scope->AddDataListener(this, {}, false);
    scope->WhenConnected(BindWeak(AsWeakPtr(), &EventBindListener::Listen));
  }
  void TellChange() { bind.TellChange(); }
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}

  Framework::EventBind& bind;
  IDataSourceProvider* scope;
  WeakReference scopeLiveness;
};

}  // namespace DataBinding::details

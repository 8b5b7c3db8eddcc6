// SPDX-License-Identifier: Apache-2.0
/// A DataBindListener is a data bind's listener in one scope. It knows which source has the bind's
/// name there.
///
/// The connection owns one listener for each scope from its own outward. A listener hears of its
/// own scope only. It may end in its last step, when the connection tells subscribers. It also
/// forgets a source that ends without its provider's knowledge. It is used on one thread.
#pragma once

#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding::details {

class BindConnection;

class DataBindListener final : public IDataListener, public SupportsWeakPtr<DataBindListener> {
 public:
  DataBindListener(BindConnection& listeningConnection, IDataSourceProvider& listenedScope);
  DataBindListener(const DataBindListener&) = delete;
  DataBindListener& operator=(const DataBindListener&) = delete;
  ~DataBindListener() override;

  /// Begins to listen, together with the listeners of the outer scopes, when the provider has
  /// called its listeners.
  void Await(IDataSourceProvider& connecting);
  /// Begins to listen: for the connection's source, or only for the end of the scope.
  void Listen(bool isSourceWanted);
  /// Returns the source that has the name in the scope, or null.
  [[nodiscard]] IDataSource* Source() const noexcept { return source; }
  /// Returns the scope, or null once it is gone.
  [[nodiscard]] IDataSourceProvider* Scope() const noexcept {
    return scopeLiveness.IsValid() ? scope : nullptr;
  }
  [[nodiscard]] bool HasCategory(const VtrString& category) const;

  void ConnectToDatasource(IDataSource* added) override;
  void DisconnectFromDatasource(IDataSource* going) override;
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* provider) override;
  /// Reports the bind to the scope that the bind was given.
  void ReportTo(ListenerReport& report) const override;

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}
  void Resume();
  void Know(IDataSource* newSource);
  void Lose();

  BindConnection& connection;
  IDataSourceProvider* scope;
  WeakReference scopeLiveness;
  bool isListening = false;
  IDataSource* source = nullptr;
  Subscription sourceEnding;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// A ScopeEnd refers to a provider, and calls a function when the provider shuts down or ends.
///
/// It waits for no source. The function may end the ScopeEnd.
#pragma once

#include <functional>

#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding::Qt6 {

class ScopeEnd final : public IDataListener, public SupportsWeakPtr<ScopeEnd> {
 public:
  ScopeEnd(IDataSourceProvider& watched, std::function<void()> whenEnded);
  ScopeEnd(const ScopeEnd&) = delete;
  ScopeEnd& operator=(const ScopeEnd&) = delete;
  ~ScopeEnd() override;

  /// Returns the provider, or null once it has ended.
  [[nodiscard]] IDataSourceProvider* Provider() const { return provider.Get(); }

  void ConnectToDatasource(IDataSource* /*source*/) override {}
  void DisconnectFromDatasource(IDataSource* /*source*/) override {}
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* gone) override;

 private:
  void Listen();
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}

  WeakPtr<IDataSourceProvider> provider;
  std::function<void()> ended;
};

}  // namespace DataBinding::Qt6

// SPDX-License-Identifier: Apache-2.0
/// What a provider sees of a listener: it is connected to sources, disconnected from them, and told
/// when its provider goes.
///
/// A provider does not own its listeners; it knows when one has ended and then leaves it alone.
/// DataListener is the reusable implementation. One thread, that of the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API IDataListener {
 public:
  /// A source of one of the wanted names is there.
  virtual void ConnectToDatasource(IDataSource* source) = 0;
  /// That source is going.
  virtual void DisconnectFromDatasource(IDataSource* source) = 0;
  /// The provider is shutting down. Its parent is still set.
  virtual void NotifyDatasourceProviderDestroyed(IDataSourceProvider* provider) = 0;

 protected:
  virtual ~IDataListener();

  IDataListener() noexcept;
  /// A copy is another listener, which no provider knows.
  ///@{
  IDataListener(const IDataListener&) noexcept;
  IDataListener& operator=(const IDataListener&) noexcept;
  ///@}

  /// Runs before the listener is given a new provider; the old one is still in place.
  virtual void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) = 0;

 private:
  friend class DataListener;
  friend class DataSourceProvider;

  /// Lets providers know whether the listener is still there.
  details::WeakReferenceOwner liveness;
};

}  // namespace DataBinding

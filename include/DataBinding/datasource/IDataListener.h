// SPDX-License-Identifier: Apache-2.0
/// IDataListener is what a provider sees of a listener: the provider connects it to sources,
/// disconnects it from them, and tells it when the provider itself goes.
///
/// A provider does not own its listeners. It knows when a listener has ended, and then leaves it
/// alone. DataListener is the implementation for general use. A listener belongs to one thread,
/// that of the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

namespace details {
class ListenerReport;
}  // namespace details

class DATABINDING_API IDataListener {
 public:
  /// Called when a source of one of the wanted names is there.
  virtual void ConnectToDatasource(IDataSource* source) = 0;
  /// Called when such a source is going.
  virtual void DisconnectFromDatasource(IDataSource* source) = 0;
  /// Called when the provider shuts down. Its parent is still set.
  virtual void NotifyDatasourceProviderDestroyed(IDataSourceProvider* provider) = 0;
  /// Returns a reference that tells whether the listener is still there, for code that keeps a
  /// pointer to it.
  [[nodiscard]] details::WeakReference GetLiveness() const { return liveness.GetRef(); }

 protected:
  virtual ~IDataListener();

  IDataListener() noexcept;
  /// A copy is another listener, and no provider knows it.
  ///@{
  IDataListener(const IDataListener&) noexcept;
  IDataListener& operator=(const IDataListener&) noexcept;
  ///@}

  /// Runs before the listener is given a new provider, while the old one is still in place.
  virtual void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) = 0;

 public:
  /// Tells what the listener wants in the scope of the report, for Diagnose. The base tells
  /// nothing.
  virtual void ReportTo(details::ListenerReport& report) const;

 private:
  details::WeakReferenceOwner liveness;
};

}  // namespace DataBinding

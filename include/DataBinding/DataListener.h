/// A listener that runs callbacks when named properties of named data sources change, without
/// holding the sources.
///
/// Add all entries first, then give it a provider: that connects it to each wanted source which it
/// or an enclosing scope holds, later to those that are added to it (see
/// IDataSourceProvider::AddDataListener), and disconnects it when a source goes. One thread, that
/// of the provider tree; callbacks run on the thread that announces the change.
///
///   CpuView::CpuView() { AddDataListener(L"Cpu", L"Load", [this] { Redraw(); }); }
///   ...
///   view.SetDataSourceProvider(&provider);
#pragma once

#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/IDataListener.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

namespace details {
class ListenerDiagnosis;
}  // namespace details

/// One wanted property, and the registration while its source is connected.
struct DataListenerEntry {
  /// Matched without regard to case.
  VtrString dataSourceName;
  /// Matched exactly; may be a name that is announced without being a property.
  VtrString propertyName;
  /// Runs on the thread that announces the change.
  RepeatingCallback<void()> callback;
  /// Stands while the source is connected.
  Subscription subscription;
};

/// Source names are matched to entries without regard to case; property names are passed on as they
/// are.
///
/// Deliberate, and to be known: setting another provider does not take the listener off the former
/// one. An entry that is added later is heard only after the provider's RemoveDataListener followed
/// by SetDataSourceProvider, since a provider keeps the names that it was first given. A move takes
/// the entries along with their live subscriptions, while the provider goes on knowing the object
/// that was moved from: move a listener only before it has a provider.
class DATABINDING_API DataListener : public IDataListener {
 public:
  DataListener() noexcept;
  /// Takes the entries with their live subscriptions; for listeners without a provider.
  DataListener(DataListener&& other) noexcept;
  /// The same; entries that were here before are ended.
  DataListener& operator=(DataListener&& other) noexcept;
  /// Takes the listener off its provider.
  ~DataListener() override;

  /// Attaches the listener, after OnDataSourceProviderChanging. Null only forgets the provider.
  void SetDataSourceProvider(IDataSourceProvider* newProvider);

 protected:
  /// Adds an entry. It takes effect with the next SetDataSourceProvider. Equal entries each run.
  void AddDataListener(const VtrString& dataSourceName, const VtrString& propertyName,
                       const RepeatingCallback<void()>& callback);
  /// The provider, or null where there is none or it is gone.
  [[nodiscard]] IDataSourceProvider* GetDataSourceProvider() const noexcept {
    return providerLiveness.IsValid() ? dataSourceProvider : nullptr;
  }

  void ConnectToDatasource(IDataSource* source) override;
  void DisconnectFromDatasource(IDataSource* source) override;
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* gone) override;
  void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) override = 0;

 private:
  friend class details::ListenerDiagnosis;

  std::vector<DataListenerEntry> listenerEntries;
  void SetProvider(IDataSourceProvider* newProvider);

  IDataSourceProvider* dataSourceProvider = nullptr;
  details::WeakReference providerLiveness;
};

}  // namespace DataBinding

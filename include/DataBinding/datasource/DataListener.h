// SPDX-License-Identifier: Apache-2.0
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

#include <memory>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

namespace details {
class ListenerDiagnosis;
}  // namespace details

/// One wanted property, and the registration while its source is connected.
struct DataListenerEntry {
  /// The provider finds a source by exactly this name, case included. Once it has connected the
  /// listener to one, all entries are matched to the source's name without regard to case.
  VtrString dataSourceName;
  /// Matched exactly; may be a name that is announced without being a property.
  VtrString propertyName;
  /// Runs on the thread that announces the change.
  RepeatingCallback<void()> callback;
  /// Stands while the source is connected.
  Subscription subscription;
};

/// A listener must name its sources exactly, case included, to be connected to them. Among the
/// entries of a connected listener case does not matter: an entry for "doc" hears a source "Doc"
/// where another entry has named "Doc". Property names are passed on as they are.
///
/// A callback is not run once its listener has ended, not even in an announcement that is under way
/// on this thread. It may therefore use the listener, and may end it, or any other.
///
/// Deliberate, and to be known: setting another provider does not take the listener off the former
/// one; ScopedListener does that. An entry that is added later is heard only after the provider's
/// RemoveDataListener followed by SetDataSourceProvider, since a provider keeps the names that it
/// was first given. A move takes the entries along with their live subscriptions, while the
/// provider goes on knowing the object that was moved from: move a listener only before it has a
/// provider.
///
/// A class that overrides the calls below and owns its scope, or a source of it, calls Leave in its
/// destructor: else the overrides run while its members are being destroyed.
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
  /// Takes the listener off its provider and ends the registrations of all entries. The provider
  /// stays stored. For destructors of derived classes, and to move to another scope.
  void Leave();

  void ConnectToDatasource(IDataSource* source) override;
  void DisconnectFromDatasource(IDataSource* source) override;
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* gone) override;
  void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) override = 0;

 private:
  friend class details::ListenerDiagnosis;

  class EntryLife;

  void SetProvider(IDataSourceProvider* newProvider);

  std::vector<DataListenerEntry> listenerEntries;
  /// Lives as long as the entries, also where they are moved to: their callbacks ask for it.
  std::unique_ptr<EntryLife> entryLife;
  IDataSourceProvider* dataSourceProvider = nullptr;
  details::WeakReference providerLiveness;
};

}  // namespace DataBinding

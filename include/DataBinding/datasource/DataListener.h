// SPDX-License-Identifier: Apache-2.0
/// A DataListener runs callbacks when named properties of named data sources change. It does not
/// need to hold the sources.
///
/// Add all entries first, then give the listener a provider. The provider connects it at once to
/// each wanted source that it or an enclosing scope holds, connects it later to each wanted source
/// that is added to it (see IDataSourceProvider::AddDataListener), and disconnects it when a source
/// goes. Use a listener on one thread, that of the provider tree; its callbacks run on the thread
/// that announces the change.
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

/// An entry names one wanted property and holds its registration while the source is connected.
struct DataListenerEntry {
  /// The provider finds a source by exactly this name, case included. Once the provider has
  /// connected the listener to a source, all entries are compared with the source's name without
  /// regard to case.
  VtrString dataSourceName;
  /// This name is matched exactly. It may be a name that is announced without being a property.
  VtrString propertyName;
  /// This callback runs on the thread that announces the change.
  RepeatingCallback<void()> callback;
  /// This subscription stands while the source is connected.
  Subscription subscription;
};

/// A provider connects a listener only to sources whose names it gives exactly, case included.
/// Among the entries of a connected listener case does not matter: an entry for "doc" hears a
/// source "Doc" where another entry names "Doc". Property names are passed on as they are.
///
/// A callback does not run once its listener has ended, not even in an announcement that is under
/// way on this thread. It may therefore use the listener, and may end this listener or any other.
///
/// Three behaviours are deliberate and need to be known. Setting another provider does not take the
/// listener off the former one; ScopedListener does that. A provider keeps the names that it was
/// first given, so an entry that is added later is heard only after RemoveDataListener of the
/// provider and another SetDataSourceProvider. A move takes the entries along with their live
/// subscriptions, but the provider still knows the object that was moved from; therefore move a
/// listener only before it has a provider.
///
/// A class that overrides the calls below, and owns its scope or a source of its scope, calls Leave
/// in its destructor. Otherwise the overrides run while the members of the class are being
/// destroyed.
class DATABINDING_API DataListener : public IDataListener {
 public:
  DataListener() noexcept;
  /// Takes the other's entries with their live subscriptions. This is meant for listeners that have
  /// no provider yet.
  DataListener(DataListener&& other) noexcept;
  /// Does the same as the move constructor, and ends the entries that this listener had before.
  DataListener& operator=(DataListener&& other) noexcept;
  /// Takes the listener off its provider.
  ~DataListener() override;

  /// Calls OnDataSourceProviderChanging and then attaches the listener to the provider. Null only
  /// makes the listener forget its provider.
  void SetDataSourceProvider(IDataSourceProvider* newProvider);
  void ReportTo(details::ListenerReport& report) const override;

 protected:
  /// Adds an entry, which takes effect with the next SetDataSourceProvider. Where several entries
  /// are equal, each of them runs.
  void AddDataListener(const VtrString& dataSourceName, const VtrString& propertyName,
                       const RepeatingCallback<void()>& callback);
  /// Returns the provider, or null if the listener has none or the provider has ended.
  [[nodiscard]] IDataSourceProvider* GetDataSourceProvider() const noexcept {
    return providerLiveness.IsValid() ? dataSourceProvider : nullptr;
  }
  /// Takes the listener off its provider and ends the registrations of all entries; the provider
  /// stays stored. Destructors of derived classes call this, and so does a listener that moves to
  /// another scope.
  void Leave();

  void ConnectToDatasource(IDataSource* source) override;
  void DisconnectFromDatasource(IDataSource* source) override;
  void NotifyDatasourceProviderDestroyed(IDataSourceProvider* gone) override;
  void OnDataSourceProviderChanging(IDataSourceProvider* newProvider) override = 0;

 private:
  class EntryLife;

  void SetProvider(IDataSourceProvider* newProvider);

  std::vector<DataListenerEntry> listenerEntries;
  /// This object lives as long as the entries do, also when they are moved to another listener.
  /// Their callbacks ask whether it still lives.
  std::unique_ptr<EntryLife> entryLife;
  IDataSourceProvider* dataSourceProvider = nullptr;
  details::WeakReference providerLiveness;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// IDataSourceProvider is one scope in a tree of scopes in which data sources are found by name.
///
/// A provider answers a name with a source that was added to it. If it has none, it builds the
/// source by a registered constructor whose categories match its own. If there is no such
/// constructor, it asks its parent. A provider owns the sources that were added to it and nothing
/// else. Whoever creates a provider ends it with IDataSourceProvider::Destroy. A tree is used on
/// one thread.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <set>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/datasource/CustomDataProxy.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Guid.h"
#include "DataBinding/foundation/IVantorGeneric.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

/// Says what becomes of a child scope.
enum class ChildChange { Came, Goes };

class DATABINDING_API IDataSourceProvider {
 public:
  /// ObserveChildren takes a callback of this type.
  using ChildCallback = RepeatingCallback<void(IDataSourceProvider& child, ChildChange change)>;
  /// GetCustomData returns this type.
  using CustomDataProxy = DataBinding::CustomDataProxy;

  IDataSourceProvider() noexcept = default;
  IDataSourceProvider(const IDataSourceProvider&) noexcept = default;
  IDataSourceProvider& operator=(const IDataSourceProvider&) noexcept = default;

  /// Ends a provider. Null does nothing.
  static void Destroy(IDataSourceProvider* provider);
  /// Gives typed access to this provider's custom data.
  [[nodiscard]] CustomDataProxy GetCustomData() const noexcept;
  /// Returns a reference that tells whether the provider is still there, for code that keeps a
  /// pointer to it.
  [[nodiscard]] details::WeakReference GetLiveness() const { return liveness.GetRef(); }

  /// Makes a child scope with its own comma-separated categories. The caller owns it.
  [[nodiscard]] virtual IDataSourceProvider* CreateDataSourceProvider(const wchar_t* categories,
                                                                      IDataContext* context) = 0;
  /// Returns the enclosing scope, or null for a root.
  [[nodiscard]] virtual IDataSourceProvider* GetParent() const = 0;
  /// Returns the source of that name: the one held here, else one built here, else the parent's
  /// answer, else null. A source that is just being built here cannot be had yet. When its own
  /// building asks for it, also by way of other constructors, the answer is null and the failure
  /// handler is told (ListenerGuard.h).
  virtual IDataSource* GetDataSource(const wchar_t* name) = 0;
  /// Does the same as GetDataSource, but throws a VtrString, "No constructor found for data source
  /// %s.", when there is no source.
  virtual IDataSource& GetDataSourceReference(const wchar_t* name) = 0;
  /// Does the same as GetDataSource, and returns a proxy that can be asked for an interface of the
  /// source.
  virtual IVantorGenericDetail::FindInterfaceProxy GetDataSourceInterface(const wchar_t* name) = 0;
  /// Returns the source that is held here under that name, or null. Neither builds it nor asks the
  /// parent.
  [[nodiscard]] virtual IDataSource* GetLocalDataSourceInstance(const wchar_t* name) const = 0;
  /// Disconnects and ends the source that is held here under that name. The answer is always false,
  /// deliberately: callers must not read anything into it.
  virtual bool DeleteLocalDataSourceInstance(const wchar_t* name) = 0;
  /// Returns the opaque context that the provider was made with.
  [[nodiscard]] virtual IDataContext* GetDataContext() = 0;
  /// Takes a source over and connects the listeners that wait here for its name. The first source
  /// of a name keeps the name; a later one is owned and connected, but not found by the name. Null
  /// is ignored. Add a source only once, because each addition ends it.
  ///
  /// When a listener throws, the source has been taken over all the same; when there is no memory,
  /// it has not. The source is told nothing, deliberately: Emplace and GiveDataSource
  /// (MakeDataSource.h) tell it its scope, and lose no source when something is thrown.
  virtual void AddDataSource(IDataSource* source) = 0;
  /// Adds each source in order.
  virtual void AddDataSources(IDataSource* const* sources, std::size_t count) = 0;
  /// Disconnects a source and gives it back to the caller. Does nothing when nothing is held here
  /// under the source's name. The name becomes free even if another source is held under it.
  /// TakeDataSource tells whether the source was given back.
  virtual void RemoveDataSource(IDataSource* source) = 0;
  /// Removes each source in order.
  virtual void RemoveDataSources(IDataSource* const* sources, std::size_t count) = 0;
  /// Connects a listener to the sources of those names: now to the ones that are held here, later
  /// to the ones that are added here. Names that are neither held here nor can be built here go to
  /// the parent. The parent connects the ones that it holds, keeps the ones that it can build, and
  /// drops the rest; this scope keeps them too when keepUnresolved is true. So a listener hears of
  /// a source that appears later if it appears in the scope that was asked, or in an outer scope
  /// that could build it when the listener was added. A listener that is registered already keeps
  /// its first names: call RemoveDataListener before registering it with others.
  virtual void AddDataListener(IDataListener* listener, const std::set<VtrString>& names,
                               bool keepUnresolved) = 0;
  /// Disconnects a listener here and in all enclosing scopes.
  virtual void RemoveDataListener(IDataListener* listener) = 0;
  /// Stores a value under an identifier in this provider and returns the one that it replaces, or
  /// null.
  virtual void* SetCustomData(const Guid& id, void* value) = 0;
  /// Returns the value that is stored here or in the nearest enclosing scope that has the
  /// identifier, else null. A null that is stored here hides the values of enclosing scopes.
  [[nodiscard]] virtual void* GetCustomData(const Guid& id) const = 0;
  /// Returns the names of all sources that could be built here or in an enclosing scope, in order.
  [[nodiscard]] virtual std::vector<VtrString> GetRegisteredDataSources() const = 0;
  /// Returns true when the comma-separated list shares a category with this provider.
  [[nodiscard]] virtual bool MatchCategory(const wchar_t* categoryList) const = 0;
  /// Disconnects and ends the sources, the last one first, tells the listeners, leaves the tree and
  /// makes the children roots. Completes although one of these steps throws, and then throws the
  /// first exception. The provider may be used again.
  virtual void Shutdown() = 0;

 private:
  virtual void Destroy() = 0;

 public:
  /// Returns this provider's own categories, in the order in which they were given.
  [[nodiscard]] virtual const std::vector<VtrString>& GetCategories() const = 0;

 protected:
  virtual ~IDataSourceProvider();

  /// These functions serve providers that an application writes itself. Such a provider joins a
  /// tree by calling operations that are private in its other members.
  ///@{
  /// Moves a provider below another one, or makes it a root when the new parent is null. Both
  /// parents are told.
  static void SetParentOf(IDataSourceProvider& child, IDataSourceProvider* newParent) {
    child.SetParent(newParent);
  }
  /// Enters a child at a parent, or takes it off. The parent that the child itself knows does not
  /// change.
  static void AddChildTo(IDataSourceProvider& parent, IDataSourceProvider* child) {
    parent.AddChild(child);
  }
  static void RemoveChildFrom(IDataSourceProvider& parent, IDataSourceProvider* child) {
    parent.RemoveChild(child);
  }
  /// Appends the categories of the provider and of its enclosing scopes, the outermost first.
  static void AppendCategoriesOf(const IDataSourceProvider& provider, std::vector<VtrString>& out) {
    provider.GetCombinedCategoryList(out);
  }
  /// Has the parent tell that the child is about to go. A provider does so when it shuts down and
  /// its names can still be found.
  static void NoteGoingChildOf(IDataSourceProvider& parent, IDataSourceProvider* child) {
    parent.NoteGoingChild(child);
  }
  /// Disconnects from the source the listeners that wait in the provider for its name.
  static void DisconnectListenersIn(IDataSourceProvider& provider, IDataSource* source) {
    provider.DisconnectDataListeners(source);
  }
  ///@}

 private:
  virtual void SetParent(IDataSourceProvider* parent) = 0;
  virtual void AddChild(IDataSourceProvider* child) = 0;
  virtual void RemoveChild(IDataSourceProvider* child) = 0;
  virtual void GetCombinedCategoryList(std::vector<VtrString>& out) const = 0;
  virtual void DisconnectDataListeners(IDataSource* source) = 0;

 public:
  /// Returns true while the provider calls its listeners, because a source comes or goes or because
  /// the provider ends. While a source comes or goes, nothing may be added to the provider or
  /// removed from it, but a name may be asked for, even one that it has to build. A scope within a
  /// connecting one does not tell; so code that adds a listener to it asks its enclosing scopes
  /// too. Providers that cannot tell return false.
  [[nodiscard]] virtual bool IsConnecting() const;
  /// Runs the callback as soon as the provider may be changed: at once, or when the outermost
  /// change that is under way is over. An exception of a callback that had to wait leaves the
  /// operation that made the change. When the provider ends before, the callback runs inside its
  /// destructor, once the sources have ended and the listeners have been told.
  virtual void WhenConnected(OneShotCallback<void()> callback);
  /// Calls visit for the sources that were added here, in order of addition, or in no order when
  /// there is no memory to bring them into it. It skips a source from which the listeners are just
  /// being disconnected, and sources that are removed meanwhile. It does not visit sources that are
  /// added meanwhile. Like the next two operations, it stops when a visit ends the provider, and
  /// visits nothing in a provider that cannot tell.
  virtual void VisitDataSources(const std::function<void(IDataSource&)>& visit) const;
  /// Calls visit for the child scopes in the order in which they came, or in no order when there is
  /// no memory to bring them into it. It skips children that have left or begun to go, and does not
  /// visit children that come meanwhile.
  virtual void VisitChildren(const std::function<void(IDataSourceProvider&)>& visit) const;
  /// Calls visit for the living listeners that are registered here, in no meaningful order. It
  /// skips listeners that leave meanwhile, and may or may not visit listeners that come meanwhile.
  virtual void VisitDataListeners(const std::function<void(IDataListener&)>& visit) const;
  /// Calls the callback whenever a child scope has come, or goes, until the subscription ends. A
  /// provider that cannot tell gives an inert subscription. The children that are here already are
  /// not told: visit them.
  ///
  /// A child goes when it shuts down or ends, while its names can still be found; when it gets
  /// another parent; and when this scope ends, after its own sources have. A child that comes has
  /// no sources yet. If its class derives from DataSourceProvider, only the base has been made.
  ///
  /// The callback may do anything, also end the child or this scope, and end the subscription. When
  /// a callback removes a child that has just come, callbacks that did not hear of its coming may
  /// hear of its going. What a callback throws goes to the failure handler (ListenerGuard.h) under
  /// the name "child scopes".
  virtual Subscription ObserveChildren(const ChildCallback& callback);

 private:
  /// Tells that a child goes, once, although it is still in the tree.
  virtual void NoteGoingChild(IDataSourceProvider* child);

  details::WeakReferenceOwner liveness;
};

/// DataSourceProviderDeleter ends a provider by IDataSourceProvider::Destroy.
struct DATABINDING_API DataSourceProviderDeleter {
  /// Ends the provider. Null does nothing.
  void operator()(IDataSourceProvider* provider) const { IDataSourceProvider::Destroy(provider); }
};
/// A DataSourceProviderPtr owns a scope that somebody has created.
using DataSourceProviderPtr = std::unique_ptr<IDataSourceProvider, DataSourceProviderDeleter>;

}  // namespace DataBinding

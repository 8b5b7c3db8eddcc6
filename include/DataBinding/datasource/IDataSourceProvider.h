// SPDX-License-Identifier: Apache-2.0
/// One scope in a tree of scopes in which data sources are found by name.
///
/// A name is answered by the sources that were added here, then by building the source from a
/// registered constructor whose categories match this provider's, then by the parent. A provider
/// owns the sources that were added to it and nothing else; its creator ends it with
/// IDataSourceProvider::Destroy. A tree is used on one thread.
#pragma once

#include <cstddef>
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
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API IDataSourceProvider {
 public:
  /// What GetCustomData gives.
  using CustomDataProxy = DataBinding::CustomDataProxy;

  IDataSourceProvider() noexcept = default;
  IDataSourceProvider(const IDataSourceProvider&) noexcept = default;
  IDataSourceProvider& operator=(const IDataSourceProvider&) noexcept = default;

  /// Ends a provider. Does nothing for null.
  static void Destroy(IDataSourceProvider* provider);
  /// Typed access to this provider's custom data.
  [[nodiscard]] CustomDataProxy GetCustomData() const noexcept;
  /// Tells whether the provider is still there, for those that keep a pointer to it.
  [[nodiscard]] details::WeakReference GetLiveness() const { return liveness.GetRef(); }

  /// A new child scope with its own comma-separated categories. The caller owns it.
  [[nodiscard]] virtual IDataSourceProvider* CreateDataSourceProvider(const wchar_t* categories,
                                                                      IDataContext* context) = 0;
  /// The enclosing scope, or null for a root.
  [[nodiscard]] virtual IDataSourceProvider* GetParent() const = 0;
  /// The source of that name: held here, built here, or the parent's answer; else null. A source
  /// that is just being built here cannot be had yet: when its building asks for it, by way of
  /// other constructors too, the answer is null, and the failure handler is told (ListenerGuard.h).
  virtual IDataSource* GetDataSource(const wchar_t* name) = 0;
  /// As GetDataSource. Throws a VtrString, "No constructor found for data source %s.", for none.
  virtual IDataSource& GetDataSourceReference(const wchar_t* name) = 0;
  /// As GetDataSource, to be asked for an interface.
  virtual IVantorGenericDetail::FindInterfaceProxy GetDataSourceInterface(const wchar_t* name) = 0;
  /// The source that is held here under that name, or null. Neither builds nor climbs.
  [[nodiscard]] virtual IDataSource* GetLocalDataSourceInstance(const wchar_t* name) const = 0;
  /// Disconnects and ends the source that is held here under that name. Always answers false,
  /// deliberately: callers must not read anything into the answer.
  virtual bool DeleteLocalDataSourceInstance(const wchar_t* name) = 0;
  /// The opaque context that the provider was made with.
  [[nodiscard]] virtual IDataContext* GetDataContext() = 0;
  /// Takes a source over and connects the listeners that wait here for its name. The first source
  /// of a name keeps it; a later one is owned, and connected, but not found by name. Ignores null.
  /// Add a source once: each addition ends it.
  /// When a listener throws, the source is taken over all the same; without memory it is not.
  /// The source is told nothing, deliberately: Emplace and GiveDataSource (MakeDataSource.h) tell
  /// it its scope, and lose no source when something is thrown.
  virtual void AddDataSource(IDataSource* source) = 0;
  /// Adds each in order.
  virtual void AddDataSources(IDataSource* const* sources, std::size_t count) = 0;
  /// Disconnects a source and gives it back to the caller. Does nothing when nothing is held here
  /// under its name; what is held under its name is taken off it, even if it is another source.
  /// TakeDataSource tells whether the source was given back.
  virtual void RemoveDataSource(IDataSource* source) = 0;
  /// Removes each in order.
  virtual void RemoveDataSources(IDataSource* const* sources, std::size_t count) = 0;
  /// Connects a listener to the sources of those names: now to those that are held here, later to
  /// those that are added here. Names that are neither held nor can be built here go to the parent,
  /// which connects those that it holds, keeps those that it can build and drops the rest; they are
  /// kept here too when keepUnresolved is true. So a source that appears later is heard of in the
  /// scope asked, or where an outer scope could build it when the listener was added. A listener
  /// that is registered already keeps its first names: call RemoveDataListener before registering
  /// it with others.
  virtual void AddDataListener(IDataListener* listener, const std::set<VtrString>& names,
                               bool keepUnresolved) = 0;
  /// Disconnects a listener here and in all enclosing scopes.
  virtual void RemoveDataListener(IDataListener* listener) = 0;
  /// Stores a value under an identifier, here, and returns the former one or null.
  virtual void* SetCustomData(const Guid& id, void* value) = 0;
  /// The value stored here or in the nearest enclosing scope that has the identifier, else null.
  /// A null that is stored here hides outer values.
  [[nodiscard]] virtual void* GetCustomData(const Guid& id) const = 0;
  /// The names of all sources that could be built here or in an enclosing scope, in order.
  [[nodiscard]] virtual std::vector<VtrString> GetRegisteredDataSources() const = 0;
  /// True when the comma-separated list shares a category with this provider's own.
  [[nodiscard]] virtual bool MatchCategory(const wchar_t* categoryList) const = 0;
  /// Disconnects and ends the sources, last one first, tells the listeners, leaves the tree and
  /// makes the children roots. Completes although one of them throws, then throws the first
  /// exception. The provider may be used again.
  virtual void Shutdown() = 0;

 private:
  virtual void Destroy() = 0;

 public:
  /// This provider's own categories, in the order in which they were given.
  [[nodiscard]] virtual const std::vector<VtrString>& GetCategories() const = 0;

 protected:
  virtual ~IDataSourceProvider();

  /// For providers of your own, which join a tree by calling what its other members keep private.
  ///@{
  /// Moves a provider below another one, or makes it a root. Both parents are told.
  static void SetParentOf(IDataSourceProvider& child, IDataSourceProvider* newParent) {
    child.SetParent(newParent);
  }
  /// Enters a child at its parent, or takes it off; the child's own parent is not changed.
  static void AddChildTo(IDataSourceProvider& parent, IDataSourceProvider* child) {
    parent.AddChild(child);
  }
  static void RemoveChildFrom(IDataSourceProvider& parent, IDataSourceProvider* child) {
    parent.RemoveChild(child);
  }
  /// Appends the categories of the provider and those further out, the outermost ones first.
  static void AppendCategoriesOf(const IDataSourceProvider& provider, std::vector<VtrString>& out) {
    provider.GetCombinedCategoryList(out);
  }
  /// Disconnects the listeners that wait in the provider for the source's name.
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
  /// True while the provider calls its listeners, because a source comes or goes or because it ends
  /// itself. While a source comes or goes nothing may be added to it or removed from it; a name
  /// that it has to build may be asked for. A scope within one that is connecting does not tell:
  /// who adds a listener to it asks those further out, too. False for providers that do not tell.
  [[nodiscard]] virtual bool IsConnecting() const;
  /// Runs the callback once the provider may be changed: at once, or when the outermost change that
  /// is under way is over. What it throws then leaves the operation that made the change. When the
  /// provider is ending, it runs before the provider is gone; it is dropped when the provider ends
  /// in the callback of another.
  virtual void WhenConnected(OneShotCallback<void()> callback);

 private:
  details::WeakReferenceOwner liveness;
};

/// Ends a provider by IDataSourceProvider::Destroy.
struct DATABINDING_API DataSourceProviderDeleter {
  /// Does nothing for null.
  void operator()(IDataSourceProvider* provider) const { IDataSourceProvider::Destroy(provider); }
};
/// Owns a scope that somebody has created.
using DataSourceProviderPtr = std::unique_ptr<IDataSourceProvider, DataSourceProviderDeleter>;

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// The provider that the library itself builds: see IDataSourceProvider for what it does.
///
/// Re-entrancy: from inside its ConnectToDatasource or DisconnectFromDatasource a listener must not
/// add or remove listeners or sources of the provider that calls it, nor do so by way of a scope
/// within it, which passes on listeners that it does not serve. Debug builds assert it, but for
/// taking a listener off. It may look up names, also where the provider has to build the source;
/// one that is just being added is not found yet. A listener may end there, itself or another one:
/// it is then not called any more. A source that ends, and a listener that hears of the provider's
/// end, may end the provider, which does then what is left. An entry that was left behind, because
/// its listener moved to another provider or a scope between them was shut down, knows whether the
/// listener lives, and is dropped silently when it does not. One thread.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <vector>

#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/foundation/details/NameMap.h"

namespace DataBinding {

/// Copies are plain member-wise copies, deliberately: they tell nobody, are no child of their
/// parent, and name the same sources, which both would end. Copy only a root without sources,
/// children and listeners, as a template for another.
class DATABINDING_API DataSourceProvider : public IDataSourceProvider {
 public:
  /// A scope below the parent, or a root for null. Null categories are none. The registrar is not
  /// told: see IDataSourceRegistrar::AttachProvider.
  DataSourceProvider(IDataSourceProvider* parentProvider, const wchar_t* categoryList,
                     IDataContext* context);
  /// Member-wise, with all that follows from it; see the class.
  ///@{
  DataSourceProvider(const DataSourceProvider&);
  DataSourceProvider& operator=(const DataSourceProvider&);
  ///@}
  /// Shuts the provider down; what that throws is dropped.
  ~DataSourceProvider() override;

  IDataSourceProvider* CreateDataSourceProvider(const wchar_t* categoryList,
                                                IDataContext* context) override;
  [[nodiscard]] IDataSourceProvider* GetParent() const override;
  IDataSource* GetDataSource(const wchar_t* name) override;
  IDataSource& GetDataSourceReference(const wchar_t* name) override;
  IVantorGenericDetail::FindInterfaceProxy GetDataSourceInterface(const wchar_t* name) override;
  [[nodiscard]] IDataSource* GetLocalDataSourceInstance(const wchar_t* name) const override;
  bool DeleteLocalDataSourceInstance(const wchar_t* name) override;
  IDataContext* GetDataContext() override;
  void AddDataSource(IDataSource* source) override;
  void AddDataSources(IDataSource* const* sources, std::size_t count) override;
  void RemoveDataSource(IDataSource* source) override;
  void RemoveDataSources(IDataSource* const* sources, std::size_t count) override;
  void AddDataListener(IDataListener* listener, const std::set<VtrString>& names,
                       bool keepUnresolved) override;
  void RemoveDataListener(IDataListener* listener) override;
  using IDataSourceProvider::GetCustomData;
  void* SetCustomData(const Guid& id, void* value) override;
  [[nodiscard]] void* GetCustomData(const Guid& id) const override;
  [[nodiscard]] std::vector<VtrString> GetRegisteredDataSources() const override;
  [[nodiscard]] bool MatchCategory(const wchar_t* categoryList) const override;
  void Shutdown() override;
  [[nodiscard]] const std::vector<VtrString>& GetCategories() const override;
  [[nodiscard]] bool IsConnecting() const override;
  void WhenConnected(OneShotCallback<void()> callback) override;

  /// True when the comma-separated list holds one of the categories, exactly, case included.
  [[nodiscard]] static bool MatchCategory(const wchar_t* categoryList,
                                          const std::vector<VtrString>& categories);

  /// Calls visit(IDataSource&) for the sources that were added here, in order of addition. One from
  /// which the listeners are just being disconnected is skipped, and so are those that are removed
  /// meanwhile; those that are added meanwhile are not visited.
  template <class Visitor>
  void VisitDataSources(Visitor&& visit) const {
    const std::uint64_t last = lastAddition;
    for (auto next = addedSources.begin(); next != addedSources.end() && next->first <= last;) {
      const std::uint64_t number = next->first;
      if (next->second != calls.leaving) visit(*next->second);
      next = addedSources.upper_bound(number);
    }
  }
  /// Calls visit(IDataSourceProvider&) for the child scopes, in no meaningful order. Those that
  /// leave meanwhile are skipped. To go deeper, dynamic_cast a child to DataSourceProvider.
  template <class Visitor>
  void VisitChildren(Visitor&& visit) const {
    for (IDataSourceProvider* child : std::set(children)) {
      if (children.contains(child)) visit(*child);
    }
  }
  /// Calls visit(IDataListener&) for the living listeners that are registered here, in no
  /// meaningful order. Those that leave meanwhile are skipped, those that come may be.
  template <class Visitor>
  void VisitDataListeners(Visitor&& visit) const {
    for (auto next = listeners.begin(); next != listeners.end();) {
      IDataListener* const listener = next->first;
      if (next->second.liveness.IsValid()) visit(*listener);
      next = listeners.upper_bound(listener);
    }
  }

 private:
  struct ListenerEntry {
    std::shared_ptr<const std::set<VtrString>> names;
    details::WeakReference liveness;
  };
  /// What is under way in a provider. Its copies have nothing under way, and a provider that
  /// another is assigned to goes on with its own.
  struct Calls {
    Calls() = default;
    Calls(const Calls& /*others*/) noexcept {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
    Calls& operator=(const Calls& /*others*/) noexcept { return *this; }
    ~Calls() = default;

    /// The changes, one within the other, and the calls to listeners within them.
    int changes = 0;
    int notifications = 0;
    bool tellsItsEnd = false;
    /// The provider is being destroyed.
    bool ends = false;
    /// The source from which the listeners are just being disconnected.
    IDataSource* leaving = nullptr;
    /// The source that was built by name and is being added, until the scope has taken it over.
    IDataSource* built = nullptr;
    /// The names of the sources to which listeners are just being connected.
    std::vector<VtrStringView> arriving;
    /// The sources that a Shutdown has yet to end, and the listeners that it has yet to tell.
    std::map<std::uint64_t, IDataSource*> ending;
    std::map<IDataListener*, ListenerEntry> untold;
    std::vector<OneShotCallback<void()>> awaiting;
  };
  void Destroy() override;
  void SetParent(IDataSourceProvider* newParent) override;
  void AddChild(IDataSourceProvider* child) override;
  void RemoveChild(IDataSourceProvider* child) override;
  void GetCombinedCategoryList(std::vector<VtrString>& out) const override;
  void DisconnectDataListeners(IDataSource* source) override;

  template <class T>
  class Marking;
  class Arrival;
  /// Runs a change of sources or listeners and, when it is the outermost one, what awaits its end.
  template <class Step>
  void Change(Step step);
  [[nodiscard]] bool HoldsAnything() const noexcept;
  std::optional<IDataSource*> BuildDataSource(const wchar_t* name,
                                              IDataSourceConstructor& constructor);
  [[nodiscard]] bool CanBuild(IDataSourceConstructor* constructor) const;
  [[nodiscard]] IDataSource* FindLocal(const wchar_t* name) const;
  void LetGo(const VtrString& name, IDataSource* source, bool ends);
  void ForgetSource(IDataSource* source);
  [[nodiscard]] bool IsArriving(const wchar_t* name) const;
  void ConnectWaiting(const VtrString& name, IDataSource* source);
  void ConnectAndFile(IDataListener* listener, const std::set<VtrString>& names,
                      bool keepUnresolved);
  void Connect(IDataListener* listener, IDataSource* source);
  void ConnectBuilt(IDataListener* listener, std::vector<const VtrString*>& absent,
                    const std::set<VtrString>& kept);
  void FileListener(IDataListener* listener, std::set<VtrString>&& kept);
  void DisconnectAndForget(IDataListener* listener);
  ListenerEntry ForgetListener(IDataListener* listener);
  void ShutDownFrom(std::uint64_t first);
  void EndAll(std::uint64_t first);
  void TellListenersOfTheEnd();
  void LeaveTree();
  [[nodiscard]] IDataListener* NextWaiting(VtrStringView name, IDataListener* after);

  IDataSourceProvider* parent;
  IDataContext* dataContext;
  std::set<IDataSourceProvider*> children;
  std::vector<VtrString> categories;
  NameMap<IDataSource*> sourcesByName;
  /// The owned sources by the number of their addition, and the way back.
  std::map<std::uint64_t, IDataSource*> addedSources;
  std::multimap<IDataSource*, std::uint64_t> additions;
  std::uint64_t lastAddition = 0;
  std::map<Guid, void*> customData;
  std::map<IDataListener*, ListenerEntry> listeners;
  /// The same listeners by the names that they wait for here.
  NameMap<std::set<IDataListener*>> waiting;
  bool shutDown = false;
  Calls calls;
};

}  // namespace DataBinding

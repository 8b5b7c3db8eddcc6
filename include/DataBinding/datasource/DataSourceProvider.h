// SPDX-License-Identifier: Apache-2.0
/// DataSourceProvider is the provider that the library itself builds. IDataSourceProvider says what
/// a provider does.
///
/// Re-entrancy: while the provider runs a listener's ConnectToDatasource or
/// DisconnectFromDatasource, that listener must not add listeners or sources to the provider or
/// remove them from it. It must not do so by way of a scope within the provider either, since such
/// a scope passes on the listeners that it does not serve. Debug builds assert this, except when a
/// listener is taken off. The listener may look up names, also where the provider has to build the
/// source; a source that is just being added is not found yet. A listener may end itself or another
/// one there, and the provider does not call a listener that has ended. A source that ends, and a
/// listener that hears of the provider's end, may end the provider, which then does what is left to
/// do. Code that visits the sources, children or listeners may change them meanwhile. It may also
/// end the provider, and then the visit stops.
///
/// The callbacks of ObserveChildren may do all of this, too. A provider whose children nobody
/// observes pays a null pointer for it.
///
/// A listener may leave an entry behind in a provider, because it has moved to another one or
/// because a scope between them was shut down. The entry knows whether its listener lives, and the
/// provider drops it silently when it does not. All of this belongs to one thread.
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
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/foundation/details/NameMap.h"

namespace DataBinding {

/// Copies are plain member-wise copies, deliberately. A copy tells nobody, is no child of its
/// parent, and names the same sources as the original, and both would end these. Therefore copy
/// only a root without sources, children and listeners, as a template for another one.
class DATABINDING_API DataSourceProvider : public IDataSourceProvider {
 public:
  /// Makes a scope below the parent, or a root when the parent is null. Null categories mean none.
  /// The registrar does not hear of the scope: see IDataSourceRegistrar::AttachProvider.
  DataSourceProvider(IDataSourceProvider* parentProvider, const wchar_t* categoryList,
                     IDataContext* context);
  /// Copies member by member. The comment of the class says what follows from that.
  ///@{
  DataSourceProvider(const DataSourceProvider&);
  DataSourceProvider& operator=(const DataSourceProvider&);
  ///@}
  /// Shuts the provider down. An exception that this throws is dropped.
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
  void VisitDataSources(const std::function<void(IDataSource&)>& visit) const override;
  void VisitChildren(const std::function<void(IDataSourceProvider&)>& visit) const override;
  void VisitDataListeners(const std::function<void(IDataListener&)>& visit) const override;
  Subscription ObserveChildren(const ChildCallback& callback) override;

  /// Returns true when the comma-separated list holds one of the categories, exactly, case
  /// included.
  [[nodiscard]] static bool MatchCategory(const wchar_t* categoryList,
                                          const std::vector<VtrString>& categories);

 private:
  struct ListenerEntry {
    std::shared_ptr<const std::set<VtrString>> names;
    details::WeakReference liveness;
  };
  /// An Addition says that a source was added. Additions are numbered in their order, and a source
  /// may be added several times.
  struct Addition {
    IDataSource* source;
    std::uint64_t number;
  };
  struct BySource {
    bool operator()(const Addition& left, const Addition& right) const noexcept {
      if (left.source == right.source) return left.number < right.number;
      return std::less<>()(left.source, right.source);
    }
  };
  /// A Child says when a child came: children are numbered in that order. It is going once all who
  /// observe the children were told so.
  struct Child {
    std::uint64_t number = 0;
    bool isGoing = false;
  };
  /// ChildNews are told to those who observe the children.
  struct ChildNews {
    IDataSourceProvider* child;
    std::uint64_t number;
    ChildChange change;
  };
  struct ByNumber {
    bool operator()(const Addition& left, const Addition& right) const noexcept {
      return left.number < right.number;
    }
  };
  /// Calls records what is under way in a provider. A copy of a provider has nothing under way, and
  /// a provider that another one is assigned to goes on with its own calls.
  struct Calls {
    Calls() = default;
    Calls(const Calls& /*others*/) noexcept {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
    Calls& operator=(const Calls& /*others*/) noexcept { return *this; }
    ~Calls() = default;

    /// Counts the changes that are under way, one within the other; `notifications` counts the
    /// calls to listeners within them.
    int changes = 0;
    int notifications = 0;
    bool tellsItsEnd = false;
    /// Set when the provider is being destroyed.
    bool ends = false;
    /// The listeners are just being disconnected from this source.
    IDataSource* leaving = nullptr;
    /// This source was built by name and is being added. The pointer is null again once the scope
    /// has taken the source over.
    IDataSource* built = nullptr;
    /// Listeners are just being connected to the sources of these names.
    std::vector<VtrStringView> arriving;
    /// A Shutdown has yet to end the sources in `ending`, and has yet to tell the listeners in
    /// `untold`.
    std::set<Addition, ByNumber> ending;
    std::map<IDataListener*, ListenerEntry> untold;
    std::vector<OneShotCallback<void()>> awaiting;
    CallbackList<ChildNews> childObservers;
  };
  void Destroy() override;
  void SetParent(IDataSourceProvider* newParent) override;
  void AddChild(IDataSourceProvider* child) override;
  void RemoveChild(IDataSourceProvider* child) override;
  void GetCombinedCategoryList(std::vector<VtrString>& out) const override;
  void DisconnectDataListeners(IDataSource* source) override;
  void NoteGoingChild(IDataSourceProvider* child) override;

  template <class T>
  class Marking;
  class Arrival;
  /// Runs a change of sources or listeners. If it is the outermost change, the callbacks that await
  /// its end run afterwards.
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
  void TellThatChildrenGo();
  void LeaveTree();
  [[nodiscard]] bool IsChild(IDataSourceProvider* child, std::uint64_t number) const;
  [[nodiscard]] IDataListener* NextWaiting(VtrStringView name, IDataListener* after);

  IDataSourceProvider* parent;
  IDataContext* dataContext;
  std::map<IDataSourceProvider*, Child> children;
  std::uint64_t lastChild = 0;
  std::vector<VtrString> categories;
  NameMap<IDataSource*> sourcesByName;
  /// Holds the owned sources by address, so that one is taken off without looking at the others. A
  /// shutdown brings them into the order in which they were added.
  std::set<Addition, BySource> additions;
  std::uint64_t lastAddition = 0;
  std::map<Guid, void*> customData;
  std::map<IDataListener*, ListenerEntry> listeners;
  /// Holds the same listeners by the names that they wait for here.
  NameMap<std::set<IDataListener*>> waiting;
  bool shutDown = false;
  Calls calls;
};

}  // namespace DataBinding

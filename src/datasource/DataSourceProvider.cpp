// SPDX-License-Identifier: Apache-2.0
// This file holds the scope itself: how it finds or builds a source, and how it ends.
// ProviderWiring.cpp holds how it wires listeners to its sources, and ProviderChildren.cpp its
// place in the tree.

#include "DataBinding/datasource/DataSourceProvider.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <new>
#include <utility>

#include "Construction.h"
#include "DataBinding/datasource/IDataListener.h"
#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/foundation/StringSplit.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/foundation/details/VisitInOrder.h"
#include "DataBinding/registrar/IDataSourceConstructor.h"
#include "DataBinding/registrar/IDataSourceRegistrar.h"
#include "ProviderCalls.h"

namespace DataBinding {

DataSourceProvider::DataSourceProvider(IDataSourceProvider* parentProvider,
                                       const wchar_t* categoryList, IDataContext* context)
    : parent(parentProvider),
      dataContext(context),
      categories(String::Split(categoryList, L',', false, true)) {
  // This makes the registrar if need be, so that at exit the registrar outlives even a static
  // provider.
  static_cast<void>(IDataSourceRegistrar::GetInstance());
  // This allocates what references to the provider need, so that its end needs no memory.
  static_cast<void>(GetLiveness());
  if (parent != nullptr) AddChildTo(*parent, this);
}

DataSourceProvider::DataSourceProvider(const DataSourceProvider&) = default;
DataSourceProvider& DataSourceProvider::operator=(const DataSourceProvider&) = default;

DataSourceProvider::~DataSourceProvider() {
  calls.ends = true;
  calls.changes = 0;     // a change that this interrupts will not count itself down any more
  FirstFailure dropped;  // a shutdown completes all its steps; a destructor lets nothing out
  dropped.Try([this] { ShutDownFrom(0); });
  // Ending a source, and callbacks that awaited the end of a change, may have added to this scope;
  // end that, too. The number of rounds is limited, because the end of a source might always build
  // another one.
  for (int round = 0; round < 10 && HoldsAnything(); ++round) {
    dropped.Try([this] { ShutDownFrom(0); });
  }
}

bool DataSourceProvider::HoldsAnything() const noexcept {
  return !additions.empty() || !listeners.empty() || !children.empty();
}

/// Ends the provider once. A source that ends with the provider may ask for its end once more.
void DataSourceProvider::Destroy() {
  if (!std::exchange(calls.ends, true)) delete this;
}

IDataSourceProvider* DataSourceProvider::CreateDataSourceProvider(const wchar_t* categoryList,
                                                                  IDataContext* context) {
  return new DataSourceProvider(this, categoryList, context);
}

IDataSourceProvider* DataSourceProvider::GetParent() const { return parent; }

IDataContext* DataSourceProvider::GetDataContext() { return dataContext; }

IDataSource* DataSourceProvider::GetDataSource(const wchar_t* name) {
  if (name == nullptr) return nullptr;
  if (IDataSource* held = FindLocal(name)) return held;
  if (IsArriving(name)) return nullptr;
  if (Construction::IsAskedForItself(*this, name)) return nullptr;
  IDataSourceConstructor* constructor = IDataSourceRegistrar::GetInstance().FindConstructor(name);
  if (CanBuild(constructor)) {
    if (const auto built = BuildDataSource(name, *constructor)) return *built;
  }
  return parent == nullptr ? nullptr : parent->GetDataSource(name);
}

IDataSource& DataSourceProvider::GetDataSourceReference(const wchar_t* name) {
  if (IDataSource* source = GetDataSource(name)) return *source;
  throw VtrString().Format(L"No constructor found for data source %s.", VtrStringView(name));
}

IVantorGenericDetail::FindInterfaceProxy DataSourceProvider::GetDataSourceInterface(
    const wchar_t* name) {
  return IVantorGenericDetail::FindInterfaceProxy(GetDataSource(name));
}

IDataSource* DataSourceProvider::GetLocalDataSourceInstance(const wchar_t* name) const {
  return FindLocal(name);
}

IDataSource* DataSourceProvider::FindLocal(const wchar_t* name) const {
  if (name == nullptr) return nullptr;
  const auto found = sourcesByName.find(VtrStringView(name));
  return found == sourcesByName.end() ? nullptr : found->second;
}

/// Builds a source and adds it. Returns nothing where the constructor refuses. Returns null for a
/// source that is gone again, because a callback that awaited the end of its addition has ended it
/// or this scope.
std::optional<IDataSource*> DataSourceProvider::BuildDataSource(
    const wchar_t* name, IDataSourceConstructor& constructor) {
  const Construction underWay(*this, name);
  IDataSource* const built = constructor.CreateDataSource(this);
  if (built == nullptr) return std::nullopt;
  const auto isScopeThere = GetLiveness();
  const Marking adding(*this, calls.built, built);
  try {
    const auto isThere = built->GetLiveness();
    AddDataSource(built);
    return isThere.IsValid() ? built : nullptr;
  } catch (...) {
    if (isScopeThere.IsValid() && calls.built == built) IDataSource::Destroy(built);
    throw;
  }
}

bool DataSourceProvider::CanBuild(IDataSourceConstructor* constructor) const {
  return constructor != nullptr && MatchCategory(constructor->GetCategories(), categories);
}

/// Returns true for the name of a source that is being added and would otherwise be built here.
bool DataSourceProvider::IsArriving(const wchar_t* name) const {
  return std::ranges::count(calls.arriving, VtrStringView(name)) != 0 &&
         CanBuild(IDataSourceRegistrar::GetInstance().FindConstructor(name));
}

bool DataSourceProvider::DeleteLocalDataSourceInstance(const wchar_t* name) {
  if (name == nullptr) return false;
  const auto filed = sourcesByName.find(VtrStringView(name));
  if (filed == sourcesByName.end()) return false;
  assert(calls.notifications == 0 && "a listener deletes a source while this provider connects it");
  LetGo(VtrString(filed->first), filed->second, true);
  return false;
}

/// Takes every addition of a source off the list of owned sources.
void DataSourceProvider::ForgetSource(IDataSource* source) {
  const auto first = additions.lower_bound({source, 0});
  const auto isOfOther = [source](const Addition& next) { return next.source != source; };
  additions.erase(first, std::find_if(first, additions.end(), isOfOther));
}

void* DataSourceProvider::SetCustomData(const Guid& id, void* value) {
  return std::exchange(customData[id], value);
}

void* DataSourceProvider::GetCustomData(const Guid& id) const {
  const auto found = customData.find(id);
  if (found != customData.end()) return found->second;
  return parent == nullptr ? nullptr : parent->GetCustomData(id);
}

const std::vector<VtrString>& DataSourceProvider::GetCategories() const { return categories; }

void DataSourceProvider::GetCombinedCategoryList(std::vector<VtrString>& out) const {
  if (parent != nullptr) AppendCategoriesOf(*parent, out);
  out.insert(out.end(), categories.begin(), categories.end());
}

std::vector<VtrString> DataSourceProvider::GetRegisteredDataSources() const {
  std::vector<VtrString> combined;
  GetCombinedCategoryList(combined);
  return IDataSourceRegistrar::GetInstance().GetRegisteredDataSources(combined);
}

bool DataSourceProvider::MatchCategory(const wchar_t* categoryList) const {
  return MatchCategory(categoryList, categories);
}

bool DataSourceProvider::MatchCategory(const wchar_t* categoryList,
                                       const std::vector<VtrString>& categories) {
  for (const auto piece : String::SplitView(categoryList, L",", false, true)) {
    for (const auto& category : categories) {
      if (category.Compare(piece) == 0) return true;
    }
  }
  return false;
}

bool DataSourceProvider::IsConnecting() const {
  return calls.notifications != 0 || calls.tellsItsEnd;
}

void DataSourceProvider::WhenConnected(OneShotCallback<void()> callback) {
  if (!IsConnecting()) return callback();
  calls.awaiting.push_back(std::move(callback));
}

/// Ends all sources that are here. A Shutdown within another one leaves the sources of the outer
/// one to it, which goes on ending them.
void DataSourceProvider::Shutdown() {
  ShutDownFrom(calls.ending.empty() ? 0 : calls.ending.rbegin()->number + 1);
}

/// Ends the sources whose additions have that number or a later one.
void DataSourceProvider::ShutDownFrom(std::uint64_t first) {
  assert(calls.notifications == 0 && "a listener shuts this provider down while it is connected");
  Change([this, first] { EndAll(first); });
}

/// Has the parent tell that this scope goes, ends the sources, tells the listeners and leaves the
/// tree. Each step may end the provider, whose
/// destructor then does what is left.
void DataSourceProvider::EndAll(std::uint64_t first) {
  const auto alive = GetLiveness();
  FirstFailure failure;
  if (parent != nullptr) NoteGoingChildOf(*parent, this);
  if (!alive.IsValid()) return;
  calls.ending.merge(additions);
  sourcesByName.clear();
  while (alive.IsValid() && !calls.ending.empty() && calls.ending.rbegin()->number >= first) {
    IDataSource* const last = calls.ending.rbegin()->source;
    calls.ending.erase(std::prev(calls.ending.end()));
    // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): the destructor means this class
    failure.Try([&] { DisconnectDataListeners(last); });
    failure.Try([&] { IDataSource::Destroy(last); });
  }
  if (alive.IsValid() && !shutDown) {
    failure.Try([&] { IDataSourceRegistrar::GetInstance().DetachProvider(this); });
  }
  if (alive.IsValid()) failure.Try([&] { TellListenersOfTheEnd(); });
  if (alive.IsValid()) failure.Try([&] { TellThatChildrenGo(); });
  if (alive.IsValid()) LeaveTree();
  failure.Rethrow();
}

/// Tells the listeners that the provider ends. They stay registered until all were told, because a
/// source that one of them adds connects the others; only where there is no memory for a copy of
/// the list, they leave it first. When one of them shuts the provider down again, the outer walk
/// goes on. When one of them ends the provider, the destructor tells the rest.
void DataSourceProvider::TellListenersOfTheEnd() {
  if (calls.tellsItsEnd && !calls.ends) return;
  try {
    if (!calls.tellsItsEnd) calls.untold = listeners;
  } catch (const std::bad_alloc&) {
    calls.untold.swap(listeners);
    waiting.clear();
  }
  const auto alive = GetLiveness();
  const Marking telling(*this, calls.tellsItsEnd, true);
  FirstFailure failure;
  while (alive.IsValid() && !calls.untold.empty()) {
    const auto told = calls.untold.extract(calls.untold.begin());
    if (!told.mapped().liveness.IsValid()) continue;
    failure.Try([&] { told.key()->NotifyDatasourceProviderDestroyed(this); });
  }
  failure.Rethrow();
}

void DataSourceProvider::VisitDataSources(const std::function<void(IDataSource&)>& visit) const {
  const auto alive = GetLiveness();
  const auto visitThose = [&, last = lastAddition](const auto& sources) {
    for (auto next = sources.begin(); next != sources.end();) {
      const Addition here = *next;
      const bool isToVisit = here.number <= last && additions.contains(here);
      if (isToVisit && here.source != calls.leaving) visit(*here.source);
      if (!alive.IsValid()) return;
      next = sources.upper_bound(here);
    }
  };
  std::set<Addition, ByNumber> inOrder;
  try {
    inOrder.insert(additions.begin(), additions.end());
  } catch (const std::bad_alloc&) {
    return visitThose(additions);  // in no order, for want of memory
  }
  visitThose(inOrder);
}

void DataSourceProvider::VisitDataListeners(
    const std::function<void(IDataListener&)>& visit) const {
  const auto alive = GetLiveness();
  VisitInOrder(listeners, [&](IDataListener* listener, const ListenerEntry& entry) {
    if (entry.liveness.IsValid()) visit(*listener);
    return alive.IsValid();
  });
}

}  // namespace DataBinding

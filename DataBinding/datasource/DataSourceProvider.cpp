#include "DataBinding/DataSourceProvider.h"

#include <cassert>
#include <new>
#include <utility>

#include "Change.h"
#include "Construction.h"
#include "DataBinding/IDataListener.h"
#include "DataBinding/IDataSource.h"
#include "DataBinding/IDataSourceConstructor.h"
#include "DataBinding/IDataSourceRegistrar.h"
#include "DataBinding/foundation/FirstFailure.h"
#include "DataBinding/foundation/StringSplit.h"

namespace DataBinding {

DataSourceProvider::DataSourceProvider(IDataSourceProvider* parentProvider,
                                       const wchar_t* categoryList, IDataContext* context)
    : parent(parentProvider),
      dataContext(context),
      categories(String::Split(categoryList, L',', false, true)) {
  // Makes the registrar, if need be, so that at exit it outlives even a static provider.
  static_cast<void>(IDataSourceRegistrar::GetInstance());
  if (parent != nullptr) parent->AddChild(this);
}

DataSourceProvider::DataSourceProvider(const DataSourceProvider&) = default;
DataSourceProvider& DataSourceProvider::operator=(const DataSourceProvider&) = default;

DataSourceProvider::~DataSourceProvider() {
  FirstFailure dropped;  // Shutdown completes all its steps; a destructor lets nothing out
  dropped.Try([this] { DataSourceProvider::Shutdown(); });
  // What sources built here while they ended.
  if (!addedSources.empty()) dropped.Try([this] { DataSourceProvider::Shutdown(); });
}

void DataSourceProvider::Destroy() { delete this; }

IDataSourceProvider* DataSourceProvider::CreateDataSourceProvider(const wchar_t* categoryList,
                                                                  IDataContext* context) {
  return new DataSourceProvider(this, categoryList, context);
}

IDataSourceProvider* DataSourceProvider::GetParent() const { return parent; }

IDataContext* DataSourceProvider::GetDataContext() { return dataContext; }

void DataSourceProvider::SetParent(IDataSourceProvider* newParent) {
  if (parent != nullptr) parent->RemoveChild(this);
  parent = newParent;
  if (parent != nullptr) parent->AddChild(this);
}

void DataSourceProvider::AddChild(IDataSourceProvider* child) { children.insert(child); }

void DataSourceProvider::RemoveChild(IDataSourceProvider* child) { children.erase(child); }

IDataSource* DataSourceProvider::GetDataSource(const wchar_t* name) {
  if (name == nullptr) return nullptr;
  if (IDataSource* held = FindLocal(name)) return held;
  if (Construction::IsAskedForItself(*this, name)) return nullptr;
  if (IDataSource* built = BuildDataSource(name)) return built;
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

IDataSource* DataSourceProvider::BuildDataSource(const wchar_t* name) {
  IDataSourceConstructor* constructor = IDataSourceRegistrar::GetInstance().FindConstructor(name);
  if (!CanBuild(constructor)) return nullptr;
  const Construction underWay(*this, name);
  IDataSource* built = constructor->CreateDataSource(this);
  try {
    AddDataSource(built);
  } catch (...) {
    if (!additions.contains(built)) IDataSource::Destroy(built);
    throw;
  }
  return built;
}

bool DataSourceProvider::CanBuild(IDataSourceConstructor* constructor) const {
  return constructor != nullptr && MatchCategory(constructor->GetCategories(), categories);
}

bool DataSourceProvider::DeleteLocalDataSourceInstance(const wchar_t* name) {
  if (name == nullptr) return false;
  const auto filed = sourcesByName.find(VtrStringView(name));
  if (filed == sourcesByName.end()) return false;
  assert(notifications == 0 && "a listener deletes a source while this provider connects it");
  LetGo(VtrString(filed->first), filed->second, true);
  return false;
}

/// Takes every addition of a source off the list of owned sources.
void DataSourceProvider::ForgetSource(IDataSource* source) {
  const auto [first, last] = additions.equal_range(source);
  for (auto addition = first; addition != last; ++addition) addedSources.erase(addition->second);
  additions.erase(first, last);
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
  if (parent != nullptr) parent->GetCombinedCategoryList(out);
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

void DataSourceProvider::Shutdown() {
  assert(notifications == 0 && "a listener shuts this provider down while it is connected");
  Change([this] { EndAll(); });
}

void DataSourceProvider::EndAll() {
  FirstFailure failure;
  const auto ending = std::exchange(addedSources, {});
  additions.clear();
  sourcesByName.clear();
  for (auto last = ending.rbegin(); last != ending.rend(); ++last) {
    // NOLINTNEXTLINE(clang-analyzer-optin.cplusplus.VirtualCall): the destructor means this class
    failure.Try([&] { DisconnectDataListeners(last->second); });
    failure.Try([&] { IDataSource::Destroy(last->second); });
  }
  if (!shutDown) {
    failure.Try([&] { IDataSourceRegistrar::GetInstance().DetachProvider(this); });
  }
  if (!tellsItsEnd) failure.Try([&] { TellListenersOfTheEnd(); });
  listeners.clear();
  waiting.clear();
  if (parent != nullptr) parent->RemoveChild(this);
  parent = nullptr;
  for (IDataSourceProvider* child : std::exchange(children, {})) child->SetParent(parent);
  children.clear();
  shutDown = true;
  failure.Rethrow();
}

/// They stay registered until all were told, if there is memory to tell them from a copy: a source
/// that one of them adds connects the others.
void DataSourceProvider::TellListenersOfTheEnd() {
  const Meanwhile telling(tellsItsEnd, true);
  FirstFailure failure;
  std::map<IDataListener*, ListenerEntry> told;
  try {
    told = listeners;
  } catch (const std::bad_alloc&) {
    told.swap(listeners);
    waiting.clear();
  }
  for (const auto& [listener, entry] : told) {
    if (!entry.liveness.IsValid()) continue;
    failure.Try([&, ended = listener] { ended->NotifyDatasourceProviderDestroyed(this); });
  }
  failure.Rethrow();
}

}  // namespace DataBinding

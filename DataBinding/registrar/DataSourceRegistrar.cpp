#include "DataBinding/DataSourceRegistrar.h"

#include <algorithm>
#include <utility>

#include "DataBinding/DataSourceProvider.h"
#include "DataBinding/IDataSourceConstructor.h"
#include "DataBinding/foundation/FirstFailure.h"
#include "DataBinding/foundation/StringSplit.h"

namespace DataBinding {

IDataSourceConstructor::~IDataSourceConstructor() = default;

namespace {
IDataSourceRegistrar* testInstance = nullptr;
}  // namespace

IDataSourceRegistrar& IDataSourceRegistrar::GetInstance() {
  static DataSourceRegistrar processWide;
  return testInstance != nullptr ? *testInstance : processWide;
}

void IDataSourceRegistrar::SetInstanceForTests(IDataSourceRegistrar* instance) {
  testInstance = instance;
}

DataSourceRegistrar::DataSourceRegistrar() noexcept = default;

DataSourceRegistrar::~DataSourceRegistrar() {
  if (initialized) EndRoot();
}

void DataSourceRegistrar::RegisterDataSource(IDataSourceConstructor* constructor) {
  if (constructor == nullptr || constructor->GetName() == nullptr) return;
  if (constructors.try_emplace(constructor->GetName(), constructor).second) {
    constructor->OnRegistered();
  }
  for (const auto& [provider, liveness] : std::map(providers)) {
    if (liveness.IsValid() && provider->MatchCategory(constructor->GetCategories())) {
      constructor->OnProviderAttached(provider);
    }
  }
  List(constructor);
}

/// Puts a constructor where it wants to be in each of its categories.
void DataSourceRegistrar::List(IDataSourceConstructor* constructor) {
  for (const auto category : String::SplitView(constructor->GetCategories(), L",", false, true)) {
    ConstructorList& list = categoryConstructors[VtrString(category)];
    switch (static_cast<Placement>(constructor->GetPlacement())) {
      case Placement::Front:
        list.insert(list.begin(), constructor);
        break;
      case Placement::Back:
        list.push_back(constructor);
        break;
      case Placement::Nowhere:
      default:
        break;
    }
  }
}

void DataSourceRegistrar::Unlist(IDataSourceConstructor* constructor) {
  for (const auto category : String::SplitView(constructor->GetCategories(), L",", false, true)) {
    std::erase(categoryConstructors[VtrString(category)], constructor);
  }
}

void DataSourceRegistrar::UnregisterDataSource(IDataSourceConstructor* constructor) {
  if (constructor == nullptr || constructor->GetName() == nullptr) return;
  const VtrString name(constructor->GetName());
  const auto filed = constructors.find(name);
  if (filed == constructors.end()) return;
  FirstFailure failure;
  Unlist(constructor);
  // The constructor may be gone after this.
  failure.Try([&] { filed->second->OnUnregistered(); });
  constructors.erase(name);
  for (const auto& [provider, liveness] : std::map(providers)) {
    if (!liveness.IsValid() || !providers.contains(provider)) continue;
    failure.Try([&, holder = provider] { holder->DeleteLocalDataSourceInstance(name); });
  }
  failure.Rethrow();
}

IDataSourceProvider* DataSourceRegistrar::GetRootProvider() { return rootProvider; }

void DataSourceRegistrar::AttachProvider(IDataSourceProvider* provider) {
  if (provider == nullptr) return;
  providers.insert_or_assign(provider, provider->GetLiveness());
  for (const auto& category : provider->GetCategories()) {
    const ConstructorList& live = categoryConstructors[category];
    for (IDataSourceConstructor* constructor : ConstructorList(live)) {
      // An earlier one may have ended it.
      if (std::ranges::count(live, constructor) != 0) constructor->OnProviderAttached(provider);
    }
  }
}

void DataSourceRegistrar::DetachProvider(IDataSourceProvider* provider) {
  const auto attached = providers.find(provider);
  if (attached == providers.end()) return;
  if (!attached->second.IsValid()) {  // a former provider at the same address
    providers.erase(attached);
    return;
  }
  std::vector<VtrString> names;
  names.reserve(constructors.size());
  for (const auto& [name, constructor] : constructors) names.push_back(name);
  FirstFailure failure;
  for (const auto& name : names) {
    failure.Try([&] { provider->DeleteLocalDataSourceInstance(name); });
  }
  providers.erase(provider);
  failure.Rethrow();
}

IDataSourceConstructor* DataSourceRegistrar::FindConstructor(const wchar_t* name) {
  if (name == nullptr) return nullptr;
  const auto found = constructors.find(VtrStringView(name));
  return found == constructors.end() ? nullptr : found->second;
}

std::vector<VtrString> DataSourceRegistrar::GetRegisteredDataSources(
    const std::vector<VtrString>& categories) {
  std::vector<VtrString> names;
  if (categories.empty()) names.reserve(constructors.size());
  for (const auto& [name, constructor] : constructors) {
    if (categories.empty() ||
        DataSourceProvider::MatchCategory(constructor->GetCategories(), categories)) {
      names.push_back(name);
    }
  }
  return names;
}

void DataSourceRegistrar::Initialize() {
  initialized = true;
  rootProvider = new DataSourceProvider(nullptr, L"root", nullptr);
  AttachProvider(rootProvider);
}

void DataSourceRegistrar::Shutdown() {
  initialized = false;
  EndRoot();
}

void DataSourceRegistrar::EndRoot() {
  IDataSourceProvider::Destroy(rootProvider);
  // It has detached itself from the installed registrar, which may be another.
  providers.erase(rootProvider);
  rootProvider = nullptr;
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
// This file holds the registrar: constructors by name and by category, the attached providers, and
// the root provider. Constructors, sources and providers that it calls may register, unregister or
// end one another, so each walk goes over a copy or looks for its next step anew.

#include "DataBinding/registrar/DataSourceRegistrar.h"

#include <algorithm>
#include <new>
#include <utility>

#include "DataBinding/datasource/DataSourceProvider.h"
#include "DataBinding/foundation/StringSplit.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/foundation/details/VisitInOrder.h"
#include "DataBinding/registrar/IDataSourceConstructor.h"

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

/// Puts a constructor where it wants to be in each of its categories. All that takes memory comes
/// first, so that without memory the constructor is in none of them. GetPlacement is asked
/// afterwards, since it may register other constructors, which belong into the same lists.
void DataSourceRegistrar::List(IDataSourceConstructor* constructor) {
  std::vector<ConstructorList*> lists;
  ConstructorList places;
  for (const auto category : String::SplitView(constructor->GetCategories(), L",", false, true)) {
    lists.push_back(&categoryConstructors[VtrString(category)]);
    places.push_back(constructor);
  }
  for (ConstructorList* list : lists) {
    const auto placement = static_cast<Placement>(constructor->GetPlacement());
    if (placement == Placement::Front) list->splice(list->begin(), places, places.begin());
    if (placement == Placement::Back) list->splice(list->end(), places, places.begin());
  }
}

/// Takes a constructor off the lists of its categories. Without the memory to look these up, it
/// takes the constructor off all lists.
void DataSourceRegistrar::Unlist(IDataSourceConstructor* constructor) {
  try {
    for (const auto category : String::SplitView(constructor->GetCategories(), L",", false, true)) {
      std::erase(categoryConstructors[VtrString(category)], constructor);
    }
  } catch (const std::bad_alloc&) {
    for (auto& [name, list] : categoryConstructors) std::erase(list, constructor);
  }
}

void DataSourceRegistrar::UnregisterDataSource(IDataSourceConstructor* constructor) {
  if (constructor == nullptr || constructor->GetName() == nullptr) return;
  const auto filed = constructors.find(VtrStringView(constructor->GetName()));
  if (filed == constructors.end()) return;
  const VtrString name = filed->first;
  FirstFailure failure;
  Unlist(constructor);
  // The constructor may be gone after this.
  failure.Try([&] { filed->second->OnUnregistered(); });
  constructors.erase(name);
  // The constructor is gone, so the rest must complete even without memory: if there is none for a
  // copy, the attached providers are walked as they stand.
  std::map<IDataSourceProvider*, details::WeakReference> copy;
  try {
    copy = providers;
  } catch (const std::bad_alloc&) {
  }
  const auto& walked = copy.size() == providers.size() ? copy : providers;
  VisitInOrder(walked, [&](IDataSourceProvider* provider, const details::WeakReference&) {
    const auto attached = providers.find(provider);
    if (attached != providers.end() && attached->second.IsValid()) {
      failure.Try([&] { provider->DeleteLocalDataSourceInstance(name); });
    }
    return true;
  });
  failure.Rethrow();
}

IDataSourceProvider* DataSourceRegistrar::GetRootProvider() { return rootProvider; }

void DataSourceRegistrar::AttachProvider(IDataSourceProvider* provider) {
  if (provider == nullptr) return;
  const auto alive = provider->GetLiveness();
  providers.insert_or_assign(provider, alive);
  for (const auto& category : std::vector(provider->GetCategories())) {
    const ConstructorList& live = categoryConstructors[category];
    for (IDataSourceConstructor* constructor : ConstructorList(live)) {
      // An earlier constructor may have ended this one, or the provider.
      if (!alive.IsValid()) return;
      if (std::ranges::count(live, constructor) != 0) constructor->OnProviderAttached(provider);
    }
  }
}

void DataSourceRegistrar::DetachProvider(IDataSourceProvider* provider) {
  const auto attached = providers.find(provider);
  if (attached == providers.end()) return;
  const auto alive = attached->second;
  if (!alive.IsValid()) {  // it belonged to a former provider at the same address
    providers.erase(attached);
    return;
  }
  FirstFailure failure;
  VisitInOrder(constructors, [&](const VtrString& name, const IDataSourceConstructor*) {
    failure.Try([&] { provider->DeleteLocalDataSourceInstance(name); });
    return alive.IsValid();
  });
  if (alive.IsValid()) providers.erase(provider);
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

/// Ends the root provider. A source that ends with it may shut the registrar down once more, or
/// initialize it.
void DataSourceRegistrar::EndRoot() {
  IDataSourceProvider* const root = rootProvider;
  IDataSourceProvider::Destroy(root);
  // The root has detached itself from the installed registrar, which may be another one.
  providers.erase(root);
  if (rootProvider == root) rootProvider = nullptr;
}

}  // namespace DataBinding

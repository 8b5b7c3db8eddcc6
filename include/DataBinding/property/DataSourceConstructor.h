// SPDX-License-Identifier: Apache-2.0
/// DataSourceConstructor registers a data source class for as long as this object lives, so that
/// scopes build sources of the class on demand.
///
/// The name must be that of the sources that it builds. A T is constructed from the provider where
/// it can be, else without arguments, or by a factory. The object unregisters at the registrar at
/// which it registered. That registrar must outlive it, and deletes the sources of that name in the
/// attached providers.
///
///   const DataSourceConstructor<CpuSource> cpu(L"Cpu", L"root");
#pragma once

#include <concepts>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/registrar/IDataSourceConstructor.h"
#include "DataBinding/registrar/IDataSourceRegistrar.h"

namespace DataBinding {

template <std::derived_from<DataSourceImpl> T>
class DataSourceConstructor final : public IDataSourceConstructor {
 public:
  /// A Factory makes a source that knows the given provider, or returns null to make none.
  using Factory = RepeatingCallback<DataSourcePtr<T>(IDataSourceProvider*)>;

  /// Registers the class. Throws std::invalid_argument when the name is empty or taken.
  DataSourceConstructor(VtrString sourceName, VtrString categoryList,
                        Placement place = Placement::Back) requires std::default_initializable<T> ||
      std::constructible_from<T, IDataSourceProvider*>
      : DataSourceConstructor(std::move(sourceName), std::move(categoryList), place, &Build) {}
  /// Does the same with a factory, for sources that need more than their provider to be made.
  DataSourceConstructor(VtrString sourceName, VtrString categoryList, Placement place,
                        Factory sourceFactory)
      : registrar(IDataSourceRegistrar::GetInstance()),
        name(std::move(sourceName)),
        categories(std::move(categoryList)),
        placement(place),
        factory(std::move(sourceFactory)) {
    if (name.IsEmpty() || registrar.FindConstructor(name) != nullptr) {
      throw std::invalid_argument("the data source name \"" + name.ToUtf8() +
                                  "\" is empty or already registered");
    }
    try {
      registrar.RegisterDataSource(this);
    } catch (...) {
      Unregister();
      throw;
    }
  }
  DataSourceConstructor(const DataSourceConstructor&) = delete;
  DataSourceConstructor& operator=(const DataSourceConstructor&) = delete;
  ~DataSourceConstructor() override { Unregister(); }

  void OnRegistered() override {}
  void OnUnregistered() override {}
  const wchar_t* GetName() override { return name; }
  IDataSource* CreateDataSource(IDataSourceProvider* provider) override {
    return factory(provider).release();
  }
  void OnProviderAttached(IDataSourceProvider* /*provider*/) override {}
  int GetPlacement() override { return static_cast<int>(placement); }
  const wchar_t* GetCategories() override { return categories; }

 private:
  /// Drops what a source throws that refuses to end: the name is free again all the same.
  void Unregister() noexcept {
    FirstFailure dropped;
    dropped.Try([this] { registrar.UnregisterDataSource(this); });
  }
  static DataSourcePtr<T> Build(IDataSourceProvider* provider) {
    if constexpr (std::constructible_from<T, IDataSourceProvider*>) {
      return MakeDataSource<T>(provider, provider);
    } else {
      return MakeDataSource<T>(provider);
    }
  }

  IDataSourceRegistrar& registrar;
  VtrString name;
  VtrString categories;
  Placement placement = Placement::Nowhere;
  Factory factory;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Registers a data source class, to be built on demand, for as long as this object lives.
///
/// The name must be that of the sources it builds. A T is constructed from the provider where it
/// can be, else without arguments, or by a factory. It unregisters at the registrar at which it
/// registered, which must outlive it and deletes the sources of that name in attached providers.
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
  /// Makes a source that knows the given provider, or none.
  using Factory = RepeatingCallback<DataSourcePtr<T>(IDataSourceProvider*)>;

  /// Throws std::invalid_argument when the name is empty or taken.
  DataSourceConstructor(VtrString sourceName, VtrString categoryList,
                        Placement place = Placement::Back) requires std::default_initializable<T> ||
      std::constructible_from<T, IDataSourceProvider*>
      : DataSourceConstructor(std::move(sourceName), std::move(categoryList), place, &Build) {}
  /// The same with a factory, for sources that are made of more than their provider.
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
  /// A source that will not end is its own concern; the name is free again.
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

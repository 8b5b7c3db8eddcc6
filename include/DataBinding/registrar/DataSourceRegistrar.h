// SPDX-License-Identifier: Apache-2.0
/// DataSourceRegistrar is the registrar itself. Applications reach it through
/// IDataSourceRegistrar::GetInstance. A test makes one of its own and installs it for as long as
/// the test runs.
///
/// Constructors and providers may come and go while the registrar goes through them. A constructor
/// may register others when it is offered a provider, a source may unregister a constructor when it
/// ends, and OnUnregistered may delete its constructor.
#pragma once

#include <list>
#include <map>
#include <vector>

#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/registrar/IDataSourceRegistrar.h"

namespace DataBinding {

class DATABINDING_API DataSourceRegistrar final : public IDataSourceRegistrar {
 public:
  DataSourceRegistrar() noexcept;
  DataSourceRegistrar(const DataSourceRegistrar&) = delete;
  DataSourceRegistrar& operator=(const DataSourceRegistrar&) = delete;
  /// Ends the root provider if it is still there.
  ~DataSourceRegistrar();

  void RegisterDataSource(IDataSourceConstructor* constructor) override;
  void UnregisterDataSource(IDataSourceConstructor* constructor) override;
  IDataSourceProvider* GetRootProvider() override;
  void AttachProvider(IDataSourceProvider* provider) override;
  void DetachProvider(IDataSourceProvider* provider) override;
  IDataSourceConstructor* FindConstructor(const wchar_t* name) override;
  std::vector<VtrString> GetRegisteredDataSources(
      const std::vector<VtrString>& categories) override;
  void Initialize() override;
  void Shutdown() override;

 private:
  using ConstructorList = std::list<IDataSourceConstructor*>;

  void List(IDataSourceConstructor* constructor);
  void Unlist(IDataSourceConstructor* constructor);
  void EndRoot();

  std::map<VtrString, IDataSourceConstructor*, std::less<>> constructors;
  std::map<VtrString, ConstructorList> categoryConstructors;
  /// Holds the attached providers. A provider that ended without being detached is passed over.
  std::map<IDataSourceProvider*, details::WeakReference> providers;
  bool initialized = false;
  IDataSourceProvider* rootProvider = nullptr;
};

}  // namespace DataBinding

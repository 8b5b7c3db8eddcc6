// SPDX-License-Identifier: Apache-2.0
/// The registrar is the process-wide catalogue of data source constructors, and it owns the root
/// provider.
///
/// Names and categories are matched exactly, case included. The registrar owns neither constructors
/// nor attached providers. Only the first use of GetInstance is safe on several threads at once;
/// everything else belongs to the thread that owns the provider tree.
#pragma once

#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

class DATABINDING_API IDataSourceRegistrar {
 public:
  /// Returns the process-wide registrar, or the one that a test has installed.
  [[nodiscard]] static IDataSourceRegistrar& GetInstance();
  /// Installs a registrar, which the caller goes on owning. Null restores the process-wide one.
  static void SetInstanceForTests(IDataSourceRegistrar* instance);

  /// Files a constructor under its name and offers it the attached providers that match. A second
  /// constructor of a taken name is not filed, but deliberately it is offered the providers and
  /// listed all the same.
  virtual void RegisterDataSource(IDataSourceConstructor* constructor) = 0;
  /// Calls the constructor's OnUnregistered, takes its name off, and deletes the sources of that
  /// name in the providers that are attached then. Completes although a source refuses to end, and
  /// then throws the first exception.
  ///
  /// The constructor that is filed under the name is unregistered, even if it is another one;
  /// therefore a second constructor of one name is to end after the first.
  virtual void UnregisterDataSource(IDataSourceConstructor* constructor) = 0;
  /// Returns the root provider between Initialize and Shutdown, else null.
  virtual IDataSourceProvider* GetRootProvider() = 0;
  /// Adds a provider and offers it to the constructors of its categories. Attaching it again
  /// deliberately offers it again.
  virtual void AttachProvider(IDataSourceProvider* provider) = 0;
  /// Takes an attached provider off and deletes the sources that it holds under the names by which
  /// constructors are filed. A constructor whose GetName answers otherwise by now is not asked
  /// again, deliberately: sources are found by the name under which the constructor was filed.
  virtual void DetachProvider(IDataSourceProvider* provider) = 0;
  /// Returns the constructor of exactly that name, or null.
  virtual IDataSourceConstructor* FindConstructor(const wchar_t* name) = 0;
  /// Returns the names of the constructors that match one of the categories, in order; without
  /// categories it returns all names.
  virtual std::vector<VtrString> GetRegisteredDataSources(
      const std::vector<VtrString>& categories) = 0;
  /// Makes and attaches the root provider, whose category is "root". A second call without Shutdown
  /// makes another root provider and forgets the first.
  virtual void Initialize() = 0;
  /// Ends the root provider. Constructors stay registered.
  virtual void Shutdown() = 0;

 protected:
  IDataSourceRegistrar() noexcept = default;
  IDataSourceRegistrar(const IDataSourceRegistrar&) noexcept = default;
  IDataSourceRegistrar& operator=(const IDataSourceRegistrar&) noexcept = default;
  ~IDataSourceRegistrar() = default;
};

}  // namespace DataBinding

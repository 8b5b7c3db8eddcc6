// SPDX-License-Identifier: Apache-2.0
/// The process-wide catalogue of data source constructors, and the owner of the root provider.
///
/// Names and categories are matched exactly, case included. Constructors and attached providers are
/// not owned. Only the first use of GetInstance is safe on several threads at once; all else
/// belongs to the thread that owns the provider tree.
#pragma once

#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

class DATABINDING_API IDataSourceRegistrar {
 public:
  /// The process-wide registrar, or the one that a test has installed.
  [[nodiscard]] static IDataSourceRegistrar& GetInstance();
  /// Installs a registrar, which the caller keeps; null restores the process-wide one.
  static void SetInstanceForTests(IDataSourceRegistrar* instance);

  /// Files a constructor under its name and offers it the attached providers that match. A second
  /// constructor of a taken name is not filed, but deliberately offered and listed all the same.
  virtual void RegisterDataSource(IDataSourceConstructor* constructor) = 0;
  /// Calls the constructor's OnUnregistered, takes its name off, and deletes the sources of that
  /// name in the providers that are attached then. Completes although one of these refuses to end,
  /// then throws the first exception.
  /// What is filed under the name is unregistered, even if it is another constructor; a second
  /// constructor of one name is therefore to end after the first.
  virtual void UnregisterDataSource(IDataSourceConstructor* constructor) = 0;
  /// The root provider between Initialize and Shutdown, else null.
  virtual IDataSourceProvider* GetRootProvider() = 0;
  /// Adds a provider and offers it the constructors of its categories; attaching it again
  /// deliberately offers them again.
  virtual void AttachProvider(IDataSourceProvider* provider) = 0;
  /// Takes an attached provider off and deletes the sources that it holds under the names by which
  /// constructors are filed. A constructor whose GetName answers otherwise by now is not asked
  /// again, deliberately: sources are found by the name of the filing.
  virtual void DetachProvider(IDataSourceProvider* provider) = 0;
  /// The constructor of exactly that name, or null.
  virtual IDataSourceConstructor* FindConstructor(const wchar_t* name) = 0;
  /// The names of the constructors that match one of the categories, in order; all names when no
  /// category is given.
  virtual std::vector<VtrString> GetRegisteredDataSources(
      const std::vector<VtrString>& categories) = 0;
  /// Makes and attaches the root provider, whose category is "root". A second call without Shutdown
  /// makes another and forgets the first.
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

// SPDX-License-Identifier: Apache-2.0
/// A constructor builds data sources of one name on demand.
///
/// Client modules implement IDataSourceConstructor, most easily by DataSourceConstructor<T>, and
/// register their constructors with the registrar. The registrar does not own them, so a
/// constructor unregisters before it ends. The operations of a constructor are called on the thread
/// that owns the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"

namespace DataBinding {

/// Placement says where a constructor goes in the list of each of its categories.
enum class Placement : int { Nowhere = 0, Front = 1, Back = 2 };

class DATABINDING_API IDataSourceConstructor {
 protected:
  /// A constructor ends with the objects of its own module; no other code deletes it.
  virtual ~IDataSourceConstructor();

 public:
  /// Called once when the constructor is filed under its name. The constructor must not end here.
  virtual void OnRegistered() = 0;
  /// Called once when the constructor is taken off its name. The constructor may delete itself
  /// here, if its destructor does not unregister it once more.
  virtual void OnUnregistered() = 0;
  /// Returns the name of the sources that the constructor builds. The constructor is filed under
  /// this name, which should not change while it is registered.
  virtual const wchar_t* GetName() = 0;
  /// Builds a source that knows this provider, or returns null to refuse. The provider takes the
  /// source over. The constructor may ask the provider for other sources. When two constructors ask
  /// for each other, only one of them gets what it asks for; the second one gets null.
  virtual IDataSource* CreateDataSource(IDataSourceProvider* provider) = 0;
  /// Offers a provider of a matching category to the constructor, which may add something to it.
  virtual void OnProviderAttached(IDataSourceProvider* provider) = 0;
  /// Returns a value of Placement; any other value means Nowhere. The registrar asks anew for each
  /// category. The constructor may register other constructors here.
  virtual int GetPlacement() = 0;
  /// Returns the comma-separated categories of the providers in which the constructor builds.
  virtual const wchar_t* GetCategories() = 0;
};

}  // namespace DataBinding

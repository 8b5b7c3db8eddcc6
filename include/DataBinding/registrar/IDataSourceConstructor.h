// SPDX-License-Identifier: Apache-2.0
/// Builds data sources of one name on demand.
///
/// Client modules implement it, most easily by DataSourceConstructor<T>, and register it with the
/// registrar, which does not own it: a constructor unregisters before it ends. Its operations are
/// called on the thread that owns the provider tree.
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"

namespace DataBinding {

/// Where a constructor goes in the list of each of its categories.
enum class Placement : int { Nowhere = 0, Front = 1, Back = 2 };

class DATABINDING_API IDataSourceConstructor {
 protected:
  /// Constructors end with their modules' own objects; nobody else deletes them.
  virtual ~IDataSourceConstructor();

 public:
  /// Called once when the constructor is filed under its name. It must not end here.
  virtual void OnRegistered() = 0;
  /// Called once when the constructor is taken off its name. It may delete itself here,
  /// if its destructor does not unregister it once more.
  virtual void OnUnregistered() = 0;
  /// The name of the sources that it builds, under which it is filed. It should not change while
  /// the constructor is registered.
  virtual const wchar_t* GetName() = 0;
  /// Builds a source that knows this provider; null when it will not. The provider takes it over.
  /// It may ask the provider for other sources. Two constructors that ask for each other do not
  /// both get what they ask for: the second one gets null.
  virtual IDataSource* CreateDataSource(IDataSourceProvider* provider) = 0;
  /// Offers a provider of a matching category, for constructors that add something to each.
  virtual void OnProviderAttached(IDataSourceProvider* provider) = 0;
  /// A value of Placement; any other means Nowhere. Asked anew for each category. It may register
  /// other constructors.
  virtual int GetPlacement() = 0;
  /// The comma-separated categories of the providers in which it builds.
  virtual const wchar_t* GetCategories() = 0;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// The base from which client modules derive their data sources.
///
/// A source is built, given its provider, post-constructed, and handed to a provider that owns it
/// from then on; MakeDataSource does the first three, Emplace all four. Until it is
/// post-constructed its announcements reach nobody, deliberately: a source that is still being
/// built has nothing to tell. Because a source that was never post-constructed stays silent for
/// good, debug builds say so on standard error, once for each class, when it announces a property
/// that somebody is registered for.
#pragma once

#include <set>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/IDataSource.h"
#include "DataBinding/datasource/details/PropertyChanges.h"
#include "DataBinding/foundation/PostConstructible.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

namespace details {
class DataSourceAccess;
}  // namespace details

class DATABINDING_API DataSourceImpl : public PostConstructible, public IDataSource {
 public:
  DataSourceImpl();

  /// The provider that the source belongs to, or null: also once that provider has ended. Not
  /// owned.
  [[nodiscard]] IDataSourceProvider* GetDataSourceProvider() const noexcept {
    return dataSourceProvider.Get();
  }
  /// The provider's context, or null without a provider.
  [[nodiscard]] IDataContext* GetDataContext() const override;

  /// Announces changes: of one property, of each one of a comma-separated list in its order, or,
  /// for a list that begins with "*" (or holds no name at all), of every reflected property in
  /// order of name. Names after the "*" are left out; the first character of each is dropped
  /// whatever it is, deliberately, so that "*,-Size" and "*,!Size" both read naturally. "*" in a
  /// later place is a name like any other. A listener may destroy the source: the rest of the list
  /// is then dropped. Listeners' exceptions do not arrive here.
  ///
  /// Typed properties call it once for each of their names that is announced, also at the end of a
  /// PropertyBatch: an override hears of every change. The text is the property's, and a listener
  /// may end that: an override that needs it after this call copies it before.
  void UpdateListeners(const VtrString& names) override;

 protected:
  ~DataSourceImpl() override;

  /// Sets a property of this source, a read-only one too, and says whether it changed. Refuses, as
  /// read-only, a property of another source.
  template <class Property, class Value>
  auto Assign(Property& property, Value&& value);
  /// Stores the provider; tells nobody.
  void SetDataSourceProvider(IDataSourceProvider* newProvider);

 private:
  friend class details::DataSourceAccess;

  void Destroy() override;
  void UpdateAllBut(const std::set<VtrString>& excluded, const details::WeakReference& self);

  WeakPtr<IDataSourceProvider> dataSourceProvider;
  details::PropertyChanges propertyChanges;
};

namespace details {

/// What the library's own helpers do to a data source on its author's behalf.
class DATABINDING_API DataSourceAccess {
 public:
  template <class Property, class Value>
  static auto Assign(const DataSourceImpl& source, Property& property, Value&& value) {
    return property.StoreFor(source, std::forward<Value>(value));
  }
  /// Gives a new source its provider and post-constructs it, even where an override of
  /// PostConstruct forgets its base.
  static void Complete(DataSourceImpl& source, IDataSourceProvider* provider);
  static void SetProvider(DataSourceImpl& source, IDataSourceProvider* provider) {
    source.SetDataSourceProvider(provider);
  }
  [[nodiscard]] static IDataSourceProvider* Provider(const DataSourceImpl& source) {
    return source.GetDataSourceProvider();
  }
  [[nodiscard]] static PropertyChanges& Changes(DataSourceImpl& source) noexcept {
    return source.propertyChanges;
  }
  [[nodiscard]] static WeakReference Liveness(const DataSourceImpl& source) {
    return source.GetLiveness();
  }
};

}  // namespace details

template <class Property, class Value>
auto DataSourceImpl::Assign(Property& property, Value&& value) {
  return details::DataSourceAccess::Assign(*this, property, std::forward<Value>(value));
}

}  // namespace DataBinding

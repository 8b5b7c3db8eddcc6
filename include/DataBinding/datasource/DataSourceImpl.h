// SPDX-License-Identifier: Apache-2.0
/// DataSourceImpl is the base from which client modules derive their data sources.
///
/// A source is built, given its provider, post-constructed, and handed to a provider, which owns it
/// from then on. MakeDataSource does the first three of these steps, and Emplace all four.
///
/// The announcements of a source reach nobody until it is post-constructed. This is deliberate: a
/// source that is still being built has nothing to tell. A source that was never post-constructed
/// would stay silent for good, so debug builds say so on standard error, once for each class, when
/// it announces a property that somebody is registered for.
#pragma once

#include <memory>
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

  /// Returns the provider that the source belongs to. Returns null if there is none or it has
  /// ended. The source does not own its provider.
  [[nodiscard]] IDataSourceProvider* GetDataSourceProvider() const noexcept {
    return dataSourceProvider.Get();
  }
  /// Returns the provider's context, or null without a provider.
  [[nodiscard]] IDataContext* GetDataContext() const override;

  /// Announces changes. The text is one property's name, or a comma-separated list, whose names are
  /// announced in its order. A list that begins with "*", or holds no name at all, announces every
  /// reflected property in order of name. Names after the "*" are left out of that; the first
  /// character of each is dropped whatever it is, deliberately, so that "*,-Size" and "*,!Size"
  /// both read naturally. A "*" in a later place is a name like any other. A listener may destroy
  /// the source, and the rest of the list is then dropped. Exceptions of listeners do not arrive
  /// here.
  ///
  /// Typed properties call this operation once for each of their names that is announced, also at
  /// the end of a PropertyBatch, so an override hears of every change. The text belongs to the
  /// property, and a listener may end the property. An override that needs the text after this call
  /// therefore copies it before.
  void UpdateListeners(const VtrString& names) override;

 protected:
  ~DataSourceImpl() override;

  /// Sets a property of this source, even a read-only one, and says whether it changed. A property
  /// of another source is refused as read-only.
  template <class Property, class Value>
  auto Assign(Property& property, Value&& value);
  /// Stores the provider and tells nobody.
  void SetDataSourceProvider(IDataSourceProvider* newProvider);

 private:
  friend class details::DataSourceAccess;

  void Destroy() override;
  void UpdateList(const VtrString& names);
  void UpdateAllBut(const std::set<VtrString>& excluded, const details::WeakReference& self);

  WeakPtr<IDataSourceProvider> dataSourceProvider;
  /// Is made when it is first needed.
  std::unique_ptr<details::PropertyChanges> propertyChanges;
};

namespace details {

/// DataSourceAccess lets the library's own helpers use those parts of a data source that its author
/// need not touch.
class DATABINDING_API DataSourceAccess {
 public:
  template <class Property, class Value>
  static auto Assign(const DataSourceImpl& source, Property& property, Value&& value) {
    return property.StoreFor(source, std::forward<Value>(value));
  }
  /// Gives a new source its provider and post-constructs it. The source counts as post-constructed
  /// even where an override of PostConstruct does not call its base.
  static void Complete(DataSourceImpl& source, IDataSourceProvider* provider);
  static void SetProvider(DataSourceImpl& source, IDataSourceProvider* provider) {
    source.SetDataSourceProvider(provider);
  }
  /// Returns the list of a source's changed properties, or null if there is none yet.
  [[nodiscard]] static PropertyChanges* Changes(const DataSourceImpl& source) noexcept {
    return source.propertyChanges.get();
  }
  /// Returns that list, which is made if there is none yet.
  static PropertyChanges& MakeChanges(DataSourceImpl& source);
  [[nodiscard]] static bool IsComplete(const DataSourceImpl& source) noexcept {
    return source.postConstructed;
  }
};

}  // namespace details

template <class Property, class Value>
auto DataSourceImpl::Assign(Property& property, Value&& value) {
  return details::DataSourceAccess::Assign(*this, property, std::forward<Value>(value));
}

}  // namespace DataBinding

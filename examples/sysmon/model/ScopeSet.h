/// The child scopes of one category: one for each thing of a kind that the system has.
///
/// A scope is made when its thing is first read, with a record of it as data context, and ended
/// when the thing is read no more: its sources go with it and its listeners are told.
#pragma once

#include <map>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include <DataBinding/IDataSourceProvider.h>

#include "Records.h"
#include "SampledSource.h"

namespace Sysmon {

template <class Record>
class ScopeSet {
 public:
  using Reading = typename Record::Reading;

  ScopeSet(DataBinding::IDataSourceProvider& parentScope, const wchar_t* scopeCategory)
      : parent(parentScope), category(scopeCategory) {}

  /// Moves the records on and refreshes their sources. True when scopes have come or gone.
  bool Follow(const std::vector<Reading>& readings, const SystemRecord& system) {
    bool isChanged = false;
    auto ended = std::exchange(scopes, {});
    for (const Reading& reading : readings) {
      scopes.insert(ended.extract(Record::Key(reading)));
      const auto [scope, isNew] =
          scopes.try_emplace(Record::Key(reading), parent, category, system);
      isChanged |= isNew;
      scope->second.record.Advance(reading);
      RefreshSources(*scope->second.provider);
    }
    return isChanged || !ended.empty();
  }

 private:
  using Key = std::decay_t<decltype(Record::Key(std::declval<const Reading&>()))>;

  struct ProviderDeleter {
    void operator()(DataBinding::IDataSourceProvider* provider) const {
      DataBinding::IDataSourceProvider::Destroy(provider);
    }
  };
  struct Scope {
    Scope(DataBinding::IDataSourceProvider& parentScope, const wchar_t* scopeCategory,
          const SystemRecord& system)
        : record(system), provider(parentScope.CreateDataSourceProvider(scopeCategory, &record)) {}

    Record record;  // ends after the sources that read it
    std::unique_ptr<DataBinding::IDataSourceProvider, ProviderDeleter> provider;
  };

  DataBinding::IDataSourceProvider& parent;
  const wchar_t* category;
  std::map<Key, Scope> scopes;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// The child scopes of one category: one scope for each process, or for each network interface.
///
/// A scope is made when its thing is first reported, and has a record of the thing as its data
/// context. It is ended when the thing is reported no more; its sources end with it, and its
/// listeners are told.
#pragma once

#include <map>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "Records.h"

namespace Sysmon {

/// A Thing is what a report has of each thing: a sample of a process, or the name of an interface.
template <class Record, class Thing>
class ScopeSet {
 public:
  ScopeSet(DataBinding::IDataSourceProvider& parentScope, const wchar_t* scopeCategory,
           SystemReader& systemReader)
      : parent(parentScope), category(scopeCategory), reader(systemReader) {}

  /// Brings the records up to date with a report. True when scopes have come or gone.
  bool Follow(const std::vector<Thing>& things) {
    bool isChanged = false;
    auto ended = std::exchange(scopes, {});
    for (const Thing& thing : things) {
      scopes.insert(ended.extract(Record::Key(thing)));
      const auto [scope, isNew] = scopes.try_emplace(Record::Key(thing), *this, thing);
      isChanged |= isNew;
      scope->second.record.Follow(thing, *scope->second.provider);
    }
    return isChanged || !ended.empty();
  }

 private:
  using Key = std::decay_t<decltype(Record::Key(std::declval<const Thing&>()))>;

  struct ProviderDeleter {
    void operator()(DataBinding::IDataSourceProvider* provider) const {
      DataBinding::IDataSourceProvider::Destroy(provider);
    }
  };
  struct Scope {
    Scope(const ScopeSet& set, const Thing& thing)
        : record(thing, set.reader),
          provider(set.parent.CreateDataSourceProvider(set.category, &record)) {}

    Record record;  // ends after the sources that read it
    std::unique_ptr<DataBinding::IDataSourceProvider, ProviderDeleter> provider;
  };

  DataBinding::IDataSourceProvider& parent;
  const wchar_t* category;
  SystemReader& reader;
  std::map<Key, Scope> scopes;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
// This file holds the table of all singleton entries, which finds an entry by its type and deletes
// the contents that belong to a module.
#include "DataBinding/foundation/SingletonLibrary.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "DataBinding/foundation/TypeName.h"

namespace VtrUtils {

/// This is the table of all entries. It is never destroyed, because modules still ask for
/// singletons while the process ends.
class SingletonEntries {
 public:
  struct Record {
    SingletonLibrary entry;
    std::vector<SingletonLibrary::Reset*> resets;
  };

  static SingletonEntries& Get() {
    static auto* entries = new SingletonEntries;
    return *entries;
  }

  SingletonLibrary& Find(std::type_index type, SingletonLibrary::Reset* reset) {
    const WriteLock guard(lock);
    Record& record = records[TypeKey(type)];
    if (reset != nullptr && std::ranges::count(record.resets, reset) == 0) {
      record.resets.push_back(reset);
    }
    return record.entry;
  }

  void RemoveReset(std::type_index type, SingletonLibrary::Token token) {
    const WriteLock guard(lock);
    const auto found = records.find(TypeKey(type));
    if (found == records.end()) return;
    std::erase_if(found->second.resets, [token](const auto* reset) {
      return reinterpret_cast<std::uintptr_t>(reset) == token;
    });
  }

  /// Empties the entries of a module. The caller deletes the returned contents without holding a
  /// lock.
  std::vector<std::pair<void (*)(void*), void*>> TakeContents(SingletonLibrary::Token token) {
    std::vector<std::pair<void (*)(void*), void*>> contents;
    const WriteLock guard(lock);
    for (auto& [name, record] : records) {
      const WriteLock entryGuard(record.entry.lock);
      if (record.entry.moduleToken != token || record.entry.data == nullptr) continue;
      for (auto* reset : record.resets) (*reset)();
      contents.emplace_back(record.entry.deleter, record.entry.data.exchange(nullptr));
      record.entry.moduleToken = 0;
    }
    return contents;
  }

 private:
  ThreadLock lock;
  std::map<std::string, Record> records DATABINDING_GUARDED_BY(lock);
};

SingletonLibrary* SingletonLibrary::GetEntryForType(std::type_index type, Initialise init,
                                                    bool create, Reset* reset) {
  SingletonLibrary& entry = SingletonEntries::Get().Find(type, reset);
  init(entry, create);
  return &entry;
}

void SingletonLibrary::RemoveCallback(std::type_index type, Token token) {
  SingletonEntries::Get().RemoveReset(type, token);
}

void SingletonLibrary::NotifySingletonModuleUnloaded(Token token) {
  for (const auto& [deleter, data] : SingletonEntries::Get().TakeContents(token)) deleter(data);
}

}  // namespace VtrUtils

// SPDX-License-Identifier: Apache-2.0
/// The process-wide bookkeeping of singletons: one entry a type, whichever modules ask for it.
///
/// Entries are keyed by a copy of the type's name, so that they outlive the module that asked
/// first, and are never freed, so that modules may keep pointers to them. What an entry holds
/// belongs to the module that last created the instance and is deleted before that module is
/// unloaded. Any thread; Singleton<T, N> is its one user.
#pragma once

#include <atomic>
#include <typeindex>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/SafeFunction.h"
#include "DataBinding/foundation/ThreadLock.h"

namespace VtrUtils {

class DATABINDING_API SingletonLibrary {
 public:
  /// Stands for a module: an address in its copy of the code.
  using Token = unsigned long long;
  /// Fills an entry that has no contents yet, if `create` says so.
  using Initialise = void (*)(SingletonLibrary& entry, bool create);
  /// Makes a module forget its pointer to an entry.
  using Reset = basic_safe_function<void()>;

  /// Finds or makes the entry of a type, calls `init` on it and keeps `reset`, where one is given,
  /// to be run when the entry's contents go away. The caller keeps `reset` alive until
  /// RemoveCallback.
  static SingletonLibrary* GetEntryForType(std::type_index type, Initialise init, bool create,
                                           Reset* reset);
  /// Forgets the reset function whose address is the token.
  static void RemoveCallback(std::type_index type, Token token);
  /// Deletes the contents of all entries that belong to a module, while its code is still there.
  static void NotifySingletonModuleUnloaded(Token token);

  /// What `init` fills, under the lock. Data may be looked at without it.
  ThreadLock lock;
  /// The contents, or null.
  std::atomic<void*> data{nullptr};
  /// Ends the contents; code of the module that the token stands for.
  void (*deleter)(void* data) = nullptr;
  /// The module to which the contents belong.
  Token moduleToken = 0;
  /// Kept for whoever fills the entry; null otherwise.
  void* context = nullptr;

  SingletonLibrary(const SingletonLibrary&) = delete;
  SingletonLibrary& operator=(const SingletonLibrary&) = delete;

 private:
  friend class SingletonEntries;
  SingletonLibrary() = default;
  ~SingletonLibrary() = default;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::SingletonLibrary;
}  // namespace DataBinding

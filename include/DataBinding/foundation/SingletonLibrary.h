// SPDX-License-Identifier: Apache-2.0
/// SingletonLibrary keeps the entries of all singletons in a process. Each type has one entry,
/// whichever modules ask for it. Singleton<T, N> is the only user of this class.
///
/// An entry is keyed by a copy of the type's name, so that it outlives the module that asked first.
/// Entries are never freed, so modules may keep pointers to them. The contents of an entry belong
/// to the module that last created the instance, and are deleted before that module is unloaded.
/// The functions may be called on any thread.
#pragma once

#include <atomic>
#include <typeindex>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/SafeFunction.h"
#include "DataBinding/foundation/ThreadLock.h"

namespace VtrUtils {

class DATABINDING_API SingletonLibrary {
 public:
  /// Identifies a module by an address in its copy of the code.
  using Token = unsigned long long;
  /// A function that fills an entry which has no contents yet, if `create` is true.
  using Initialise = void (*)(SingletonLibrary& entry, bool create);
  /// A function that makes a module forget its pointer to an entry.
  using Reset = basic_safe_function<void()>;

  /// Finds or makes the entry of a type and calls `init` for it. If `reset` is given, it is called
  /// when the contents of the entry are deleted; the caller keeps it alive until RemoveCallback.
  static SingletonLibrary* GetEntryForType(std::type_index type, Initialise init, bool create,
                                           Reset* reset);
  /// Forgets a reset function. The token is the address of that function, not a module's.
  static void RemoveCallback(std::type_index type, Token token);
  /// Deletes the contents of all entries that belong to a module. The module calls this while its
  /// code is still loaded.
  static void NotifySingletonModuleUnloaded(Token token);

  /// `init` fills the members below under this lock. `data` may be read without it.
  ThreadLock lock;
  /// Points to the contents, or is null.
  std::atomic<void*> data{nullptr};
  /// Deletes the contents. This is code of the module that `moduleToken` identifies.
  void (*deleter)(void* data) = nullptr;
  /// Identifies the module to which the contents belong.
  Token moduleToken = 0;
  /// `init` may keep a value here; otherwise it is null.
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

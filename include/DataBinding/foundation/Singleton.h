// SPDX-License-Identifier: Apache-2.0
/// Singleton<T, N> provides one T in a process, which all modules share that ask for it.
///
/// T derives from Singleton<T>. If T's constructor or destructor is private, T makes Singleton<T> a
/// friend. N only tells instantiations apart.
///
/// The instance is created on first use. It is deleted by ReleaseInstance, or when the module that
/// created it is unloaded, at the latest when the process exits. After that GetInstance creates
/// another one. Any thread may create and release the instance, but no thread may use it while
/// another one releases it.
///
///   class Clipboard : public Singleton<Clipboard> { ... };
///   Clipboard::GetInstance().Copy(text);
#pragma once

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <typeindex>
#include <utility>

#include "DataBinding/foundation/SingletonLibrary.h"

namespace VtrUtils {

template <class T, int N = 0>
class Singleton {
 public:
  Singleton(const Singleton&) = delete;
  Singleton& operator=(const Singleton&) = delete;

  /// Returns the instance, which is created if there is none. Throws std::bad_alloc when there is
  /// no memory for it.
  [[nodiscard]] static T& GetInstance() { return ObtainInstance(); }
  /// Returns true when there is an instance. Never creates one, and does not wait for a thread that
  /// creates or releases it.
  [[nodiscard]] static bool HasInstance() { return IsInstanceThere(); }
  /// Deletes the instance, if there is one. GetInstance creates another one afterwards, whether
  /// `markReleased` is set or not; the library keeps the mark and never reads it.
  static void ReleaseInstance(bool markReleased) { EndInstance(markReleased); }

 protected:
  Singleton() noexcept = default;
  ~Singleton() = default;

  /// Makes the instance, or returns null when there is no memory. A class that is made in another
  /// way hides this function by its own.
  [[nodiscard]] static T* CreateInstance() { return new (std::nothrow) T; }
  /// Deletes what CreateInstance made. Does nothing for null.
  static void DeleteInstance(T* instance) { delete instance; }

 private:
  struct SingletonData {
    std::atomic<T*> instance{nullptr};
    bool released = false;
    ThreadLock lock;
  };

  // The public operations call these three functions. A library that owns a singleton specialises
  // and exports the public operations, and calls these functions in them. Then the instance belongs
  // to that library, whichever module asks for it first.

  static T& ObtainInstance() {
    SingletonData* data = GetSingletonData(true);
    T* instance = data->instance.load(std::memory_order_acquire);
    if (instance == nullptr) instance = CreateSingletonData(*data);
    if (instance == nullptr) throw std::bad_alloc();
    return *instance;
  }
  static bool IsInstanceThere() {
    const SingletonData* data = GetSingletonData(false);
    return data != nullptr && data->instance.load(std::memory_order_acquire) != nullptr;
  }
  static void EndInstance(bool markReleased) {
    SingletonData* data = GetSingletonData(false);
    if (data == nullptr) return;
    const auto takeOut = [&] {
      const WriteLock guard(data->lock);
      if (markReleased) data->released = true;
      return data->instance.exchange(nullptr, std::memory_order_acq_rel);
    };
    DeleteInstance(takeOut());
  }

  /// This module's pointer to the entry that the whole process shares.
  struct Cache {
    std::atomic<SingletonLibrary*> entry{nullptr};
    /// Clears this cache. Null once this module is being unloaded.
    std::atomic<SingletonLibrary::Reset*> reset{nullptr};
  };
  static Cache& ModuleCache() {
    static constinit Cache cache;
    return cache;
  }

  static SingletonData* GetSingletonData(bool create) {
    const SingletonLibrary* const entry = ModuleCache().entry.load(std::memory_order_acquire);
    void* const data = entry == nullptr ? nullptr : entry->data.load(std::memory_order_acquire);
    return data == nullptr ? FindSingletonData(create) : static_cast<SingletonData*>(data);
  }
  /// Asks the library for the entry. Gives null if there is no data and none is to be made.
  static SingletonData* FindSingletonData(bool create) {
    Cache& cache = ModuleCache();
    static const bool prepared = PrepareReset();
    static_cast<void>(prepared);
    SingletonLibrary* entry = cache.entry.load(std::memory_order_acquire);
    if (entry == nullptr || (create && entry->data.load(std::memory_order_acquire) == nullptr)) {
      entry = SingletonLibrary::GetEntryForType(typeid(T), &Initialise, create, cache.reset);
      cache.entry.exchange(entry, std::memory_order_acq_rel);
    }
    return static_cast<SingletonData*>(entry->data.load(std::memory_order_acquire));
  }

  /// A static object of this class calls a function when this module is unloaded, at the latest
  /// when the process exits.
  template <void (*Run)()>
  struct AtUnload {
    AtUnload() noexcept = default;
    AtUnload(const AtUnload&) = delete;
    AtUnload& operator=(const AtUnload&) = delete;
    ~AtUnload() { Run(); }
  };

  /// Prepares the function by which the library clears this module's cache, and sees to it that the
  /// library forgets the function when this module is unloaded.
  static bool PrepareReset() {
    const auto clear = [] { ModuleCache().entry.exchange(nullptr, std::memory_order_acq_rel); };
    ModuleCache().reset = new SingletonLibrary::Reset(clear);
    static const AtUnload<&DropReset> atUnload;
    return true;
  }
  static void DropReset() {
    const std::unique_ptr<SingletonLibrary::Reset> reset(ModuleCache().reset.exchange(nullptr));
    if (reset == nullptr) return;
    (*reset)();
    SingletonLibrary::RemoveCallback(typeid(T), reinterpret_cast<std::uintptr_t>(reset.get()));
  }

  static void Initialise(SingletonLibrary& entry, bool create) {
    const WriteLock guard(entry.lock);
    if (!create || entry.data.load(std::memory_order_relaxed) != nullptr) return;
    entry.context = nullptr;
    entry.moduleToken = ModuleToken();
    entry.deleter = &DeleteData;
    entry.data.store(new SingletonData, std::memory_order_release);
  }

  /// Files the entry under this module, since it creates the instance and its code is needed
  /// to delete the instance.
  static void TakeOver() {
    SingletonLibrary& entry = *ModuleCache().entry.load(std::memory_order_acquire);
    const WriteLock guard(entry.lock);
    entry.moduleToken = ModuleToken();
    entry.deleter = &DeleteData;
  }

  static T* CreateSingletonData(SingletonData& data) {
    const WriteLock guard(data.lock);
    T* instance = data.instance.load(std::memory_order_relaxed);
    if (instance != nullptr) return instance;
    instance = CreateInstance();
    if (instance == nullptr) return nullptr;
    TakeOver();
    RegisterFinalizer();
    data.instance.store(instance, std::memory_order_release);
    return instance;
  }

  static void DeleteData(void* contents) {
    const std::unique_ptr<SingletonData> data(static_cast<SingletonData*>(contents));
    data->released = true;
    DeleteInstance(data->instance.exchange(nullptr, std::memory_order_acq_rel));
  }

  /// Identifies this module's copy of the code.
  static SingletonLibrary::Token ModuleToken() noexcept {
    return reinterpret_cast<std::uintptr_t>(&StaticFinalizer);
  }
  static void StaticFinalizer() {
    HasFinalized() = true;
    SingletonLibrary::NotifySingletonModuleUnloaded(ModuleToken());
  }
  static void RegisterFinalizer() {
    static const AtUnload<&StaticFinalizer> atUnload;
    // An instance that is made again during exit comes too late for the static object above.
    if (HasFinalized()) static_cast<void>(std::atexit(&StaticFinalizer));
  }
  static std::atomic<bool>& HasFinalized() {
    static constinit std::atomic<bool> finalized{false};
    return finalized;
  }
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::Singleton;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// Singleton<T, N>: one T in a process, shared by all modules that ask for it.
///
/// T derives from it, and makes it a friend where its constructor or destructor is private; N only
/// tells instantiations apart. The instance is created on first use, and deleted by ReleaseInstance
/// or when the module that created it is unloaded, at the latest at exit. After that GetInstance
/// creates another. Creation and release are safe on any thread; using an instance while another
/// thread releases it is not.
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

  /// The instance, created if need be. Throws std::bad_alloc when there is no memory for it.
  [[nodiscard]] static T& GetInstance() { return ObtainInstance(); }
  /// True when there is an instance. Never creates one, and waits for no creation or release.
  [[nodiscard]] static bool HasInstance() { return IsInstanceThere(); }
  /// Deletes the instance, if there is one. Whether it was meant for good is noted.
  static void ReleaseInstance(bool markReleased) { EndInstance(markReleased); }

 protected:
  Singleton() noexcept = default;
  ~Singleton() = default;

  /// Makes the instance; null when there is no memory. A T with an own way of it hides this.
  [[nodiscard]] static T* CreateInstance() { return new (std::nothrow) T; }
  /// Ends what CreateInstance made; does nothing for null.
  static void DeleteInstance(T* instance) { delete instance; }

 private:
  struct SingletonData {
    std::atomic<T*> instance{nullptr};
    bool released = false;
    ThreadLock lock;
  };

  // What the public operations do. A library that owns a singleton specialises those, exported, and
  // answers with these, so that the instance is its own whichever module asks first.

  static T& ObtainInstance() {
    SingletonData* data = GetSingletonData(true);
    T* instance = CreateSingletonData(*data);
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

  /// This module's way to the process-wide entry.
  struct Cache {
    std::atomic<SingletonLibrary*> entry{nullptr};
    /// Null once this module is being unloaded.
    std::atomic<SingletonLibrary::Reset*> reset{nullptr};
  };
  static Cache& ModuleCache() {
    static constinit Cache cache;
    return cache;
  }

  static SingletonData* GetSingletonData(bool create) {
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

  /// Runs a function when this module is unloaded, at the latest at exit.
  template <void (*Run)()>
  struct AtUnload {
    AtUnload() noexcept = default;
    AtUnload(const AtUnload&) = delete;
    AtUnload& operator=(const AtUnload&) = delete;
    ~AtUnload() { Run(); }
  };

  /// Lets the library clear this module's cache, until this module goes.
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

  /// The creating module owns the entry from now on: its code must be there for the deletion.
  static void TakeOver() {
    SingletonLibrary& entry = *ModuleCache().entry.load(std::memory_order_acquire);
    const WriteLock guard(entry.lock);
    entry.moduleToken = ModuleToken();
    entry.deleter = &DeleteData;
  }

  static T* CreateSingletonData(SingletonData& data) {
    T* instance = data.instance.load(std::memory_order_acquire);
    if (instance != nullptr) return instance;
    const WriteLock guard(data.lock);
    instance = data.instance.load(std::memory_order_relaxed);
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
    if (HasFinalized()) static_cast<void>(std::atexit(&StaticFinalizer));  // made anew at exit
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

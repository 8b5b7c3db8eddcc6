// SPDX-License-Identifier: Apache-2.0
/// A shared library or plug-in, loaded for as long as an object of this class lives.
#pragma once

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

namespace Boundary {

class LoadedModule {
 public:
  LoadedModule(const LoadedModule&) = delete;
  LoadedModule& operator=(const LoadedModule&) = delete;

#if defined(_WIN32)
  explicit LoadedModule(const char* path) : handle(LoadLibraryA(path)) {}
  ~LoadedModule() { FreeLibrary(handle); }
  static bool IsThere(const char* path) { return GetModuleHandleA(path) != nullptr; }
#else
  explicit LoadedModule(const char* path) : handle(dlopen(path, RTLD_NOW | RTLD_LOCAL)) {}
  ~LoadedModule() { dlclose(handle); }
  static bool IsThere(const char* path) {
    void* loaded = dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) dlclose(loaded);
    return loaded != nullptr;
  }
#endif

  /// An exported function, or null.
  template <class Function>
  Function* Find(const char* name) const {
#if defined(_WIN32)
    return reinterpret_cast<Function*>(reinterpret_cast<void (*)()>(GetProcAddress(handle, name)));
#else
    return reinterpret_cast<Function*>(dlsym(handle, name));
#endif
  }

 private:
#if defined(_WIN32)
  HMODULE handle;
#else
  void* handle;
#endif
};

}  // namespace Boundary

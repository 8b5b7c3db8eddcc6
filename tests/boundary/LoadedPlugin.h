/// The plug-in, loaded for as long as an object of this class lives.
#pragma once

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "Shared.h"

namespace Boundary {

class Plugin {
 public:
  Plugin() : handle(Load()), functions(Find(handle)()) {}
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin() { Unload(handle); }
  const PluginFunctions* operator->() const { return functions; }

#if defined(_WIN32)
  static bool IsLoaded() { return GetModuleHandleA(BOUNDARY_PLUGIN) != nullptr; }
#else
  static bool IsLoaded() {
    void* loaded = dlopen(BOUNDARY_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) dlclose(loaded);
    return loaded != nullptr;
  }
#endif

 private:
  using Entry = const PluginFunctions* (*)();

#if defined(_WIN32)
  using Handle = HMODULE;
  static Handle Load() { return LoadLibraryA(BOUNDARY_PLUGIN); }
  static void Unload(Handle loaded) { FreeLibrary(loaded); }
  static Entry Find(Handle loaded) {
    const auto found = reinterpret_cast<void (*)()>(GetProcAddress(loaded, "GetPluginFunctions"));
    return reinterpret_cast<Entry>(found);
  }
#else
  using Handle = void*;
  static Handle Load() { return dlopen(BOUNDARY_PLUGIN, RTLD_NOW | RTLD_LOCAL); }
  static void Unload(Handle loaded) { dlclose(loaded); }
  static Entry Find(Handle loaded) {
    return reinterpret_cast<Entry>(dlsym(loaded, "GetPluginFunctions"));
  }
#endif

  Handle handle;
  const PluginFunctions* functions;
};

}  // namespace Boundary

/// The plug-in, loaded for as long as an object of this class lives.
#pragma once

#include <dlfcn.h>

#include "Shared.h"

namespace Boundary {

class Plugin {
 public:
  Plugin() : handle(dlopen(BOUNDARY_PLUGIN, RTLD_NOW | RTLD_LOCAL)) {
    using Entry = const PluginFunctions* (*)();
    const auto entry = reinterpret_cast<Entry>(dlsym(handle, "GetPluginFunctions"));
    functions = entry();
  }
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;
  ~Plugin() { dlclose(handle); }
  const PluginFunctions* operator->() const { return functions; }

  static bool IsLoaded() {
    void* loaded = dlopen(BOUNDARY_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
    if (loaded != nullptr) dlclose(loaded);
    return loaded != nullptr;
  }

 private:
  void* handle;
  const PluginFunctions* functions;
};

}  // namespace Boundary

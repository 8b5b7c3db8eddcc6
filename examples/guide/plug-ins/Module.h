// SPDX-License-Identifier: Apache-2.0
/// Loads a module at run time, and unloads it when the object of this class ends.
///
/// It throws std::runtime_error when the module or a function of it cannot be found. Everything
/// that refers to the module's code must have ended before the object does.
#pragma once

#if defined(_WIN32)
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include <stdexcept>

class Module {
 public:
  explicit Module(const char* path) : handle(Load(path)) {
    if (handle == nullptr) throw std::runtime_error("the module cannot be loaded");
  }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() { Unload(handle); }

  void Call(const char* name) const {
    const Function function = Find(handle, name);
    if (function == nullptr) throw std::runtime_error("the module has no such function");
    function();
  }

 private:
  using Function = void (*)();

#if defined(_WIN32)
  using Handle = HMODULE;
  static Handle Load(const char* path) { return LoadLibraryA(path); }
  static void Unload(Handle module) { FreeLibrary(module); }
  static Function Find(Handle module, const char* name) {
    return reinterpret_cast<Function>(GetProcAddress(module, name));
  }
#else
  using Handle = void*;
  static Handle Load(const char* path) { return dlopen(path, RTLD_NOW | RTLD_LOCAL); }
  static void Unload(Handle module) { dlclose(module); }
  static Function Find(Handle module, const char* name) {
    return reinterpret_cast<Function>(dlsym(module, name));
  }
#endif

  Handle handle;
};

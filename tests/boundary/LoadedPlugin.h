// SPDX-License-Identifier: Apache-2.0
/// The plug-in, loaded for as long as an object of this class lives.
#pragma once

#include "LoadedModule.h"
#include "Shared.h"

namespace Boundary {

class Plugin {
 public:
  const PluginFunctions* operator->() const { return functions; }
  static bool IsLoaded() { return LoadedModule::IsThere(BOUNDARY_PLUGIN); }

 private:
  LoadedModule module{BOUNDARY_PLUGIN};
  const PluginFunctions* functions = module.Find<const PluginFunctions*()>("GetPluginFunctions")();
};

}  // namespace Boundary

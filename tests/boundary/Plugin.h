// SPDX-License-Identifier: Apache-2.0
/// What the plug-in's files know of each other.
#pragma once

#include "Shared.h"

namespace Boundary {

PluginEvents MakePluginEvents();

}  // namespace Boundary

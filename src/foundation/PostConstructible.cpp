// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/PostConstructible.h"

namespace VtrUtils {

PostConstructible::~PostConstructible() = default;

void PostConstructible::PostConstruct() { postConstructed = true; }

}  // namespace VtrUtils

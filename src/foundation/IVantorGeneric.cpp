// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/IVantorGeneric.h"

namespace VtrUtils {

bool IVantorGeneric::FindInterfaceByIID(const GUID& /*id*/, void** /*out*/) { return false; }

}  // namespace VtrUtils

#include "DataBinding/foundation/VantorGeneric.h"

namespace VtrUtils {

bool IVantorGeneric::FindInterfaceByIID(const GUID& /*id*/, void** /*out*/) { return false; }

}  // namespace VtrUtils

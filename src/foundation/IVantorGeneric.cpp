#include "DataBinding/foundation/IVantorGeneric.h"

namespace VtrUtils {

bool IVantorGeneric::FindInterfaceByIID(const GUID& /*id*/, void** /*out*/) { return false; }

}  // namespace VtrUtils

#include "DataBinding/foundation/PostConstructible.h"

namespace VtrUtils {

PostConstructible::~PostConstructible() = default;

void PostConstructible::PostConstruct() { postConstructed = true; }

}  // namespace VtrUtils

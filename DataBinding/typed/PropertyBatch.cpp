#include "DataBinding/PropertyBatch.h"

#include <new>

namespace DataBinding {

PropertyBatch::PropertyBatch(DataSourceImpl& changingSource)
    : source(changingSource), liveness(details::DataSourceAccess::Liveness(changingSource)) {
  details::DataSourceAccess::Changes(source).Open();
}

PropertyBatch::~PropertyBatch() {
  if (!liveness.IsValid()) return;
  details::PropertyChanges& changes = details::DataSourceAccess::Changes(source);
  if (!changes.Close()) return;
  try {
    while (liveness.IsValid() && !changes.IsOpen()) {
      const details::PropertyLink* property = changes.TakeFirst();
      if (property == nullptr) return;
      source.UpdateListeners(VtrString(property->name));
    }
  } catch (const std::bad_alloc&) {
    return;
  }
}

}  // namespace DataBinding

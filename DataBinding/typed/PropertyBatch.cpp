#include "DataBinding/PropertyBatch.h"

#include <exception>

#include "DataBinding/foundation/FirstFailure.h"

namespace DataBinding {

PropertyBatch::PropertyBatch(DataSourceImpl& changingSource)
    : source(changingSource),
      liveness(details::DataSourceAccess::Liveness(changingSource)),
      uncaughtBefore(std::uncaught_exceptions()) {
  details::DataSourceAccess::Changes(source).Open();
}

PropertyBatch::~PropertyBatch() noexcept(false) {
  if (!liveness.IsValid()) return;
  if (!details::DataSourceAccess::Changes(source).Close()) return;
  if (std::uncaught_exceptions() == uncaughtBefore) {
    Notify();
  } else {
    FirstFailure dropped;  // another exception is on its way
    dropped.Try([this] { Notify(); });
  }
}

void PropertyBatch::Notify() {
  details::PropertyChanges& changes = details::DataSourceAccess::Changes(source);
  while (liveness.IsValid() && !changes.IsOpen()) {
    const details::PropertyLink* property = changes.TakeFirst();
    if (property == nullptr) return;
    source.UpdateListeners(VtrString(property->name));
  }
}

}  // namespace DataBinding

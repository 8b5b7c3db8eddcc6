// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/property/PropertyBatch.h"

#include <exception>
#include <utility>

#include "DataBinding/foundation/details/FirstFailure.h"
#include "PropertyAnnouncement.h"

namespace DataBinding {

PropertyBatch::PropertyBatch(DataSourceImpl& changingSource)
    : source(changingSource),
      liveness(changingSource.GetLiveness()),
      uncaughtBefore(std::uncaught_exceptions()) {
  details::PropertyBase::PrepareBatch(source).Open();
}

PropertyBatch::~PropertyBatch() noexcept(false) {
  if (std::uncaught_exceptions() == uncaughtBefore) {
    Commit();
  } else {
    FirstFailure dropped;  // another exception is leaving the scope already
    dropped.Try([&] { Commit(); });
  }
}

void PropertyBatch::Commit() {
  if (!std::exchange(isOpen, false)) return;
  if (liveness.IsValid() && !details::DataSourceAccess::Changes(source)->Close()) return;
  details::PropertyAnnouncement announcement;
  if (liveness.IsValid()) announcement.Take(*details::DataSourceAccess::Changes(source));
  announcement.Run();
}

}  // namespace DataBinding

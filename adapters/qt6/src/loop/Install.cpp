// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/loop/Install.h"

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBindingQt6/values/Text.h"
#include "LogCategory.h"

namespace DataBinding::Qt6 {

namespace {

void Log(const ListenerFailure& failure) {
  const QString what = failure.exception == nullptr
                           ? QStringLiteral("hardware fault 0x%1").arg(failure.faultCode, 0, 16)
                           : ToQString(ExceptionText(failure.exception));
  qCWarning(LogCategory).noquote().nospace()
      << "Failure at \"" << ToQString(failure.property) << "\": " << what;
}

}  // namespace

const QLoggingCategory& LogCategory() {
  static const QLoggingCategory category("databinding");
  return category;
}

void Install() {
  SetListenerFailureHandler(&Log);
  if (!IsHardwareFaultGuardOn()) return;
  SetHardwareFaultGuard(false);
  qCInfo(LogCategory) << "The guard against hardware faults in listeners is off: a fault ends the "
                         "program, as everywhere in it.";
}

}  // namespace DataBinding::Qt6

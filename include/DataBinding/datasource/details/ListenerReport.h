// SPDX-License-Identifier: Apache-2.0
/// A ListenerReport takes down what the listeners of one scope want there. Diagnose fills one for
/// each scope, by asking each listener (IDataListener::ReportTo).
///
/// A report copies the texts that it is given, and asks nothing of a listener later. The one who
/// asks owns it. It is used on one thread, that of the provider tree.
#pragma once

#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding::Framework {
struct BindStatus;
}  // namespace DataBinding::Framework

namespace DataBinding::details {

class ListenerReport {
 public:
  ListenerReport(const ListenerReport&) = delete;
  ListenerReport& operator=(const ListenerReport&) = delete;

  /// Returns the scope that is asked about. A listener may be registered in outer scopes too, but
  /// reports only to the scope that it was given.
  [[nodiscard]] virtual const IDataSourceProvider& Scope() const noexcept = 0;
  /// Adds a property whose changes a listener waits for, and says whether its subscription stands.
  virtual void AddEntry(const VtrString& source, const VtrString& property, bool isHeard) = 0;
  /// Adds a bind, which can explain itself.
  virtual void AddBind(const VtrString& source, const VtrString& property,
                       const Framework::BindStatus& status) = 0;

 protected:
  ListenerReport() = default;
  ~ListenerReport() = default;
};

}  // namespace DataBinding::details

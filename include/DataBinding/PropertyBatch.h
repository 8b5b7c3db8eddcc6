/// A scope in which a source's changed properties are noted, to be notified once each at its end,
/// in order of their first change.
///
/// Properties that are computed from them are noted with them. Batches on one source may nest: the
/// outermost notifies. What the source announces itself, by UpdateListeners, is not held back. The
/// source may end within the scope: nobody is notified then.
///
///   PropertyBatch batch(source);
///   source.width.Set(4);
///   source.height.Set(3);
#pragma once

#include "DataBinding/DataSourceImpl.h"
#include "DataBinding/Export.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API PropertyBatch {
 public:
  /// Opens the batch. The source may end before it.
  [[nodiscard]] explicit PropertyBatch(DataSourceImpl& changingSource);
  PropertyBatch(const PropertyBatch&) = delete;
  PropertyBatch& operator=(const PropertyBatch&) = delete;
  /// Notifies. What an overridden UpdateListeners throws, or a thread's cancellation, goes through,
  /// unless an exception ends the scope; what was not notified then is, by the next batch.
  ~PropertyBatch() noexcept(false);

 private:
  void Notify();

  DataSourceImpl& source;
  details::WeakReference liveness;
  int uncaughtBefore;
};

}  // namespace DataBinding

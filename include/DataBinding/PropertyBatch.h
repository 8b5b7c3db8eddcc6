/// A scope in which a source's changed properties are noted, to be notified once each at its end,
/// in order of their first change.
///
/// Properties that are computed from them are noted with them. Batches on one source may nest: the
/// outermost notifies. What the source announces itself, by UpdateListeners, is not held back. The
/// source may end within the scope: nobody is notified then.
///
///   PropertyBatch batch(source);
///   source.Width.Set(4);
///   source.Height.Set(3);
#pragma once

#include "DataBinding/DataSourceImpl.h"
#include "DataBinding/Export.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API PropertyBatch {
 public:
  [[nodiscard]] explicit PropertyBatch(DataSourceImpl& changingSource);
  PropertyBatch(const PropertyBatch&) = delete;
  PropertyBatch& operator=(const PropertyBatch&) = delete;
  /// Notifies. Should there be no memory for a first notification, the rest is dropped.
  ~PropertyBatch();

 private:
  DataSourceImpl& source;
  details::WeakReference liveness;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A scope in which a source's changed properties are noted, to be announced at its end by one call
/// of UpdateListeners each: those that were set, in order of their first change, then what is
/// computed from them, in this source or others, in the order in which those properties were made.
///
/// Batches on one source may nest: the outermost announces. What the source announces itself, by
/// UpdateListeners, is not held back. The source may end within the scope: nothing of it is
/// announced then.
///
///   PropertyBatch batch(source);
///   source.width.Set(4);
///   source.height.Set(3);
#pragma once

#include "DataBinding/Export.h"
#include "DataBinding/datasource/DataSourceImpl.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding {

class DATABINDING_API PropertyBatch {
 public:
  /// Opens the batch. The source may end before it.
  [[nodiscard]] explicit PropertyBatch(DataSourceImpl& changingSource);
  PropertyBatch(const PropertyBatch&) = delete;
  PropertyBatch& operator=(const PropertyBatch&) = delete;
  /// Announces. The first exception that an overridden UpdateListeners throws goes through when all
  /// is announced, unless another one ends the scope. A thread's cancellation goes through at once;
  /// what is left then is announced by the next batch of its source.
  ~PropertyBatch() noexcept(false);

 private:
  DataSourceImpl& source;
  details::WeakReference liveness;
  int uncaughtBefore;
};

}  // namespace DataBinding

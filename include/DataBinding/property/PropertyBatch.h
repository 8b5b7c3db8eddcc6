// SPDX-License-Identifier: Apache-2.0
/// While a PropertyBatch is open on a source, the changed properties of the source are only noted.
/// At its end, UpdateListeners is called once for each of them: first for the properties that were
/// set, in order of their first change, then for what is computed from them, in this source or
/// others, in the order in which those properties were made.
///
/// Commit ends the batch where the code says so. The destructor ends it where Commit was not
/// called, because an exception left the scope or because its block is all that matters.
///
/// Batches on one source may nest; the outermost one announces. A batch does not hold back what the
/// source announces itself by UpdateListeners. The source may end within the scope, and nothing of
/// it is announced then.
///
///   PropertyBatch batch(source);
///   source.width.Set(4);
///   source.height.Set(3);
///   batch.Commit();
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
  /// Does what Commit does. While another exception ends the scope, what an overridden
  /// UpdateListeners throws is dropped, since the other one goes on.
  ~PropertyBatch() noexcept(false);

  /// Ends the batch and announces. An exception that an overridden UpdateListeners throws does not
  /// stop the rest; the first one is thrown when all is announced. A thread's cancellation goes
  /// through at once, and the next batch of the source announces what is left then. Does nothing
  /// when the batch has ended.
  void Commit();

 private:
  DataSourceImpl& source;
  details::WeakReference liveness;
  int uncaughtBefore;
  bool isOpen = true;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// An InboxCore is the part of a ListInbox that does not depend on the row type: it asks for the
/// idle pass on which the inbox is emptied.
///
/// It queues an event of its own kind, which has no name in the event system: nobody disables it or
/// listens to it, and nothing of it is kept for the process. At most one such event is queued. It
/// refers to the inbox weakly, and the inbox drops it when it ends. The class of the event is the
/// library's, so an event that is left in the queue does not need the module of the inbox.
///
/// Ask may be called on any thread while the inbox lives; all else belongs to the tree's thread.
#pragma once

#include <atomic>
#include <memory>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/WeakPtr.h"

namespace DataBinding::details {

class DATABINDING_API InboxCore : public SupportsWeakPtr<InboxCore> {
 public:
  InboxCore(const InboxCore&) = delete;
  InboxCore& operator=(const InboxCore&) = delete;

 protected:
  InboxCore();
  /// Drops the event that is queued.
  virtual ~InboxCore();

  /// Has the next idle pass call Deliver, however often it is asked before. Any thread. When the
  /// loop cannot be woken, the exception of `wake` comes out, and the pass is due all the same.
  void Ask() const;

 private:
  class Event;

  /// Empties the inbox. Runs on the delivering thread.
  virtual void Deliver() = 0;

  /// Taken before other threads see the inbox.
  WeakPtr<InboxCore> self;
  /// Shared with the event, which may be dropped after the inbox has ended.
  std::shared_ptr<std::atomic<bool>> isAsked;
};

}  // namespace DataBinding::details

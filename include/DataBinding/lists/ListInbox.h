// SPDX-License-Identifier: Apache-2.0
/// A ListInbox takes rows from any thread for a list that belongs to the tree's thread.
///
/// Post takes a whole list of rows. The next idle pass assigns them to the list (ListData::Assign),
/// so that only what differs is told. When several threads post, or one posts several times before
/// the pass, the rows that came last win.
///
/// The inbox belongs to the tree's thread, as its list does. It ends after the threads have stopped
/// posting, and before or after the list. Rows that were not delivered by then are dropped, and so
/// are those that come when the list has ended. An exception of the assignment goes to the error
/// handler of the events (EventBroadcaster.h).
///
///   ListInbox<Process> inbox(processes);
///   std::jthread reader([&] { inbox.Post(ReadProcesses()); });
#pragma once

#include <optional>
#include <utility>
#include <vector>

#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/details/InboxCore.h"

namespace DataBinding {

template <class Row>
class ListInbox final : private details::InboxCore {
 public:
  /// The rows go to this list, which may end before the inbox.
  explicit ListInbox(ListData<Row>& receiver) : list(receiver.Liveness(), &receiver) {}
  ListInbox(const ListInbox&) = delete;
  ListInbox& operator=(const ListInbox&) = delete;
  ~ListInbox() override = default;

  /// Has the list assigned these rows on the next idle pass, in place of rows that were posted
  /// before and not delivered yet; those end on this thread. Any thread. An exception of the
  /// loop's `wake` comes out, but the rows are delivered all the same.
  void Post(std::vector<Row> rows) {
    std::optional<std::vector<Row>> replaced(std::move(rows));
    Swap(replaced);
    Ask();
  }

 private:
  void Swap(std::optional<std::vector<Row>>& rows) {
    const WriteLock guard(lock);
    posted.swap(rows);
  }
  void Deliver() override {
    std::optional<std::vector<Row>> rows;
    Swap(rows);
    if (rows && list) list->Assign(*std::move(rows));
  }

  WeakPtr<ListData<Row>> list;
  ThreadLock lock;
  std::optional<std::vector<Row>> posted DATABINDING_GUARDED_BY(lock);
};

}  // namespace DataBinding

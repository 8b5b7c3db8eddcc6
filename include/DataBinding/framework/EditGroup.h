// SPDX-License-Identifier: Apache-2.0
/// An EditGroup is all edits of a window, so that none is lost when the window closes, when a
/// button is pressed that takes no focus, or before another record is shown.
///
/// A group owns no session. Sessions and group end in any order, also inside the functions of the
/// sessions. A group is used on the thread of its sessions.
///
///   EditGroup edits;
///   edits.Add(name);
///   edits.Add(size);
///   save.onClick = [&] { if (edits.CommitAll().IsAccepted()) Save(); };
///   const Subscription follow = edits.OnState([&](bool typed) { apply.Enable(typed); });
#pragma once

#include <memory>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/EditSession.h"

namespace DataBinding {

class DATABINDING_API EditGroup {
 public:
  EditGroup();
  EditGroup(const EditGroup&) = delete;
  EditGroup& operator=(const EditGroup&) = delete;
  ~EditGroup();

  /// Adds a session until it ends or is removed. One that was moved from is not there, and one that
  /// is there already is not added again.
  void Add(const EditSession& session);
  /// Takes a session out of the group. It keeps what was typed.
  void Remove(const EditSession& session);

  /// Commits all edits, in the order in which they were added, and answers the first refusal. The
  /// others are committed all the same, and each refused edit stays in its widget. An edit is tried
  /// again when a validator may have changed its mind, because others were filed. The first
  /// exception leaves this call when all were committed. Where all or nothing is to be set, let the
  /// window edit a draft (CopyProperties.h). Inside a commit of one of these edits, it refuses.
  SetResult CommitAll();
  /// Says whether each edit for itself would be accepted now, answers the first refusal, and sets
  /// nothing. CommitAll may accept an edit that is refused here, once another one is filed. Inside
  /// a commit or check of one of these edits, it refuses.
  [[nodiscard]] SetResult CheckAll();
  /// Reverts all edits.
  void RevertAll();
  /// Returns true while an edit holds something that was typed and is neither filed nor reverted.
  [[nodiscard]] bool HasTyped() const;
  /// Says whether it is this session whose refusal the last CommitAll or CheckAll has answered, so
  /// that its widget can get the focus.
  [[nodiscard]] bool WasRefusedFirst(const EditSession& session) const;
  /// Calls the function with HasTyped when that has changed, until the subscription or the group
  /// ends, so that a button can follow it. Nobody is told when a session ends that has something
  /// typed; that is told with the next change of any session. The function may do anything, also
  /// end the group. Where it changes HasTyped, all are told of that, and those behind it do not
  /// hear of the former answer. What it throws leaves the operation of the session.
  Subscription OnState(const RepeatingCallback<void(const bool& hasTyped)>& callback);

 private:
  class State;
  std::shared_ptr<State> state;
};

}  // namespace DataBinding

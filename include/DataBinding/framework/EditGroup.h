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
#pragma once

#include <memory>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/framework/EditSession.h"

namespace DataBinding {

class DATABINDING_API EditGroup {
 public:
  /// Adds a session for as long as it lives. One that was moved from is not there.
  void Add(const EditSession& session);
  /// Commits all edits, in the order in which they were added, and answers the first refusal. The
  /// others are committed all the same, and each refused edit stays in its widget. An edit is tried
  /// again when a validator may have changed its mind, because others were filed. The first
  /// exception leaves this call when all were committed. Where all or nothing is to be set, let the
  /// window edit a draft (CopyProperties.h). Inside a commit of one of these edits, it refuses.
  SetResult CommitAll();
  /// Reverts all edits.
  void RevertAll();
  /// Returns true while an edit holds something that was typed and is neither filed nor reverted.
  [[nodiscard]] bool HasTyped() const;

 private:
  [[nodiscard]] std::vector<std::shared_ptr<details::EditCore>> Living() const;

  std::vector<std::weak_ptr<details::EditCore>> cores;
};

}  // namespace DataBinding

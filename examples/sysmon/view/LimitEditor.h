// SPDX-License-Identifier: Apache-2.0
/// A line in which the limit of an alarm is edited: a widget, joined to the limit by its name.
///
/// A text that is refused stays in the line, with the reason beside it.
#pragma once

#include <DataBinding/framework/DataBind.h>
#include <DataBinding/framework/TwoWay.h>

#include "../common/Limits.h"

namespace Sysmon {

class LimitEditor {
 public:
  LimitEditor(IDataSourceProvider& root, const VtrString& limitName);
  LimitEditor(const LimitEditor&) = delete;
  LimitEditor& operator=(const LimitEditor&) = delete;
  ~LimitEditor() = default;

  /// Adds a character at the end of the line, if there is room.
  void Insert(wchar_t character);
  /// Removes the last character.
  void Erase();
  /// Sets the limit. False when the line does not hold one that may be set.
  [[nodiscard]] bool Commit();

  [[nodiscard]] const VtrString& Limit() const { return bind.Path(); }
  [[nodiscard]] const VtrString& Text() const { return text; }
  /// Why the line was refused. Empty before it is, and once it has been changed.
  [[nodiscard]] const VtrString& Reason() const { return reason; }

 private:
  void Change(VtrString newText);

  VtrString text;
  VtrString reason;
  DataBinding::Framework::DataBind<double> bind;
  DataBinding::TwoWayJoin join;  // the last member: it ends before the text
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// The whole screen: the summary, the interfaces, the processes, the details of one process, and
/// the log of events.
///
/// It is given a root scope and knows names: of sources, their properties and their lists. It sees
/// nothing of the classes behind them but the rows of the lists.
#pragma once

#include <memory>

#include <DataBinding/Fwd.h>
#include <DataBinding/framework/ListBind.h>

#include "DetailPane.h"
#include "Keys.h"
#include "LimitEditor.h"
#include "LogPane.h"
#include "Summary.h"
#include "Table.h"

namespace Sysmon {

class MonitorView {
 public:
  /// An interactive view marks the chosen process, and has the log and a line of help.
  MonitorView(IDataSourceProvider& rootScope, Surface& targetSurface, const EventLog& log,
              bool isInteractive);

  /// Brings the surface up to date.
  void Draw();
  /// Obeys a key. False for a key that has no meaning here. The next Draw shows the outcome.
  bool Obey(const KeyPress& press);
  /// Shows, or stops showing, that the screen stands still.
  void ShowPaused(bool isNowPaused);
  /// The next Draw draws everything.
  void Redraw() { layout = {}; }

 private:
  struct Layout {
    Area summary;
    Area interfaces;
    Area processes;
    Area details;
    Area log;
    Area footer;

    friend bool operator==(const Layout&, const Layout&) = default;
  };

  [[nodiscard]] Layout MakeLayout();
  void Invalidate();
  bool MoveChoice(Key key);
  bool Sort(Key key);
  bool Change(Key key);
  void OpenDetails();
  void CloseDetails();
  void EditNextLimit();
  void EditLimit(const KeyPress& press);
  void CommitLimit();
  [[nodiscard]] VtrString FooterText(int width) const;
  void DrawFooter();

  IDataSourceProvider& root;
  Surface& surface;
  bool interactive;
  Layout layout;
  Summary summary;
  DataBinding::Framework::ListBind<Interface> interfaceList;
  DataBinding::Framework::ListBind<Process> processList;
  Table<Interface> interfaces;
  Table<Process> processes;
  std::unique_ptr<DetailPane> details;
  LogPane log;
  std::unique_ptr<LimitEditor> editor;
  bool isPaused = false;
  VtrString message;
  VtrString footerShown;
};

}  // namespace Sysmon

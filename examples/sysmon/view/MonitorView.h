/// The whole screen: the summary, the interfaces, the processes, and the details of one process.
///
/// It is given a root scope and knows names: of categories, sources, properties and events. It sees
/// nothing of the classes behind them.
#pragma once

#include <memory>
#include <optional>

#include <DataBinding/Fwd.h>

#include "DetailPane.h"
#include "Summary.h"
#include "Table.h"

namespace Sysmon {

enum class Key {
  None,
  Up,
  Down,
  PageUp,
  PageDown,
  First,
  Last,
  Open,
  Close,
  SortByCpu,
  SortByMemory,
  SortById,
  SortByName,
  Reverse,
  Redraw,
  Quit
};

class MonitorView {
 public:
  /// An interactive view marks the chosen process and has a line of help.
  MonitorView(IDataSourceProvider& root, Surface& targetSurface, bool isInteractive);

  /// Brings the surface up to date.
  void Draw();
  /// Obeys a key, Quit excepted. The next Draw shows the outcome.
  void Obey(Key key);

 private:
  struct Layout {
    Area summary;
    Area interfaces;
    Area processes;
    Area details;
    Area footer;

    friend bool operator==(const Layout&, const Layout&) = default;
  };

  [[nodiscard]] Layout MakeLayout();
  void Invalidate();
  void OpenDetails();
  void CloseDetails();
  void DrawFooter();

  Surface& surface;
  bool interactive;
  Layout layout;
  Summary summary;
  Table interfaces;
  Table processes;
  std::unique_ptr<DetailPane> details;
  VtrString message;
  VtrString footerShown;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
// An address book: addressbook [FILE.json] [--shot FILE.png].

#include <iostream>

#include "Window.h"

using namespace DataBinding;

static constexpr const char* style = R"(
QMainWindow, QDialog, #card, QToolBar { background: #ffffff; border: none; }
QToolBar { border-bottom: 1px solid #dde2e7; padding: 8px; }
QToolButton { padding: 5px 9px; border-radius: 5px; }
QToolButton:hover { background: #e6eef8; }
QLineEdit { padding: 5px 8px; border: 1px solid #c6ced6; border-radius: 5px; }
QLineEdit:focus { border-color: #2d77d6; }
QLineEdit[refused="true"] { border-color: #c4342b; background: #fdf0ef; }
QTableView { border: none; alternate-background-color: #f6f8fa; }
QTableView { selection-background-color: #d5e6fb; selection-color: #10253c; }
QHeaderView::section { background: #eaeef2; color: #4b5966; border: none; padding: 7px; }
#name { font-size: 21px; font-weight: 600; }
#hint { color: #c4342b; })";

int main(int argc, char** argv) {
  const QString shot = argc > 2 && argv[argc - 2] == QString("--shot") ? argv[argc - 1] : "";
  if (!shot.isEmpty() && !qEnvironmentVariableIsSet("DISPLAY"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle("fusion");
  application.setStyleSheet(style);
  Qt6::Install();
  const Qt6::QtIdlePass pass;
  DataSourceProvider root(nullptr, L"", nullptr);
  auto& book = Emplace<AddressBook>(root);
  Window window(book, root);
  if (argc > (shot.isEmpty() ? 1 : 3)) {
    if (const VtrString reason = book.Load(argv[1]); !reason.IsEmpty()) {
      std::cerr << argv[1] << ": " << reason << '\n';
      return 1;
    }
  }
  if (!shot.isEmpty()) return window.Shoot(shot) ? 0 : 1;
  window.show();
  return QApplication::exec();
}

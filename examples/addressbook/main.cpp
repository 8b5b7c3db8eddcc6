// SPDX-License-Identifier: Apache-2.0
// An address book: addressbook [FILE.json] [--shot FILE.png].

#include <iostream>

#include "Window.h"

using namespace DataBinding;

int main(int argc, char** argv) {
  const QString shot = argc > 2 && argv[argc - 2] == QString("--shot") ? argv[argc - 1] : "";
  if (!shot.isEmpty() && !qEnvironmentVariableIsSet("DISPLAY"))
    qputenv("QT_QPA_PLATFORM", "offscreen");
  QApplication application(argc, argv);
  QApplication::setStyle("fusion");
  application.setStyleSheet("file:///:/style.qss");
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

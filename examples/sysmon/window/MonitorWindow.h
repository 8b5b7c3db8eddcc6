// SPDX-License-Identifier: Apache-2.0
/// The monitor as a window of Qt. Like the view on a terminal it is given a root scope and knows
/// names: of sources, their properties and their lists.
#pragma once

#include <QFormLayout>
#include <QGroupBox>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QTableView>

#include <DataBinding/framework/ListBind.h>
#include <DataBindingQt6/models/ListModel.h>

#include "../common/EventLog.h"
#include "../model/Pause.h"
#include "../view/ProcessScope.h"

namespace Sysmon {

class MonitorWindow : public QMainWindow {
 public:
  MonitorWindow(IDataSourceProvider& root, const EventLog& eventLog);

  /// Writes the events that were logged since the last call.
  void ShowNewEvents();

 private:
  [[nodiscard]] QWidget* MakeSummary();
  [[nodiscard]] QWidget* MakeAlarms();
  [[nodiscard]] QWidget* MakeTables();
  [[nodiscard]] QWidget* MakeDetails();
  void MakePause();

  DataBinding::Framework::ListBind<Process> processes;
  DataBinding::Framework::ListBind<Interface> interfaces;
  ProcessScope process;
  DataBinding::Qt6::ListModel processModel;
  DataBinding::Qt6::ListModel interfaceModel;
  Pause pause;
  const EventLog& log;
  Count eventsShown = 0;
  QPlainTextEdit* events;
};

}  // namespace Sysmon

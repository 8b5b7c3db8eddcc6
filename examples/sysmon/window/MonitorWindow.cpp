// SPDX-License-Identifier: Apache-2.0
#include "MonitorWindow.h"

#include <QAction>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QSplitter>
#include <QStatusBar>
#include <QToolBar>
#include <algorithm>

#include <DataBindingQt6/DataBindingQt6.h>

#include "../common/Limits.h"
#include "../view/LogText.h"
#include "LoadCurve.h"

namespace Sysmon {

namespace {

using DataBinding::Qt6::Bind;
using DataBinding::Qt6::ListColumn;
using DataBinding::Qt6::ToQString;

struct NamedLabel {
  const char* text;
  const wchar_t* source;
  const wchar_t* property;
};

constexpr NamedLabel hostLabels[] = {{"Host", L"Host", L"Name"},
                                     {"System", L"Host", L"System"},
                                     {"Up", L"Host", L"Uptime"},
                                     {"Processes", L"Host", L"Processes"}};
constexpr NamedLabel cpuLabels[] = {{"Processors", L"Cpu", L"Usage"}, {"Load", L"Load", L"One"}};
constexpr NamedLabel memoryLabels[] = {{"Memory", L"Memory", L"Usage"},
                                       {"Used", L"Memory", L"Used"}};
constexpr NamedLabel processLabels[] = {{"Name", L"Process", L"Name"},
                                        {"User", L"Process", L"User"},
                                        {"Processor", L"Process", L"Cpu"},
                                        {"Time", L"Process", L"CpuTime"},
                                        {"Age", L"Process", L"Age"},
                                        {"Memory", L"Process", L"Resident"},
                                        {"Open files", L"Command", L"OpenFiles"},
                                        {"Folder", L"Command", L"Directory"},
                                        {"Command", L"Command", L"CommandLine"}};

/// Shows a number of a table as the quantity that it is.
template <class T>
QVariant As(const DataBinding::Value& value, int role, const QModelIndex& /*index*/) {
  const auto quantity = DataBinding::FromValue<T>(value);
  if (role != Qt::DisplayRole || !quantity) return {};
  return ToQString(Show(*quantity));
}

std::vector<ListColumn> ProcessColumns() {
  return {{L"Id", "Id"},
          {L"User", "User"},
          {L"Cpu", "Processor", As<Share>},
          {L"Resident", "Memory", As<Bytes>},
          {L"Name", "Name"},
          {L"State", "State"},
          {L"Threads", "Threads"},
          {L"CpuTime", "Time", As<Seconds>}};
}

std::vector<ListColumn> InterfaceColumns() {
  return {{L"Name", "Interface"},
          {L"State", "State"},
          {L"ReceivedRate", "Receiving", As<BytesPerSecond>},
          {L"SentRate", "Sending", As<BytesPerSecond>},
          {L"Received", "Received", As<Bytes>},
          {L"Sent", "Sent", As<Bytes>}};
}

/// Adds a line for each label, bound by its names in the scope of the form.
void AddLabels(QFormLayout& form, std::span<const NamedLabel> labels) {
  for (const NamedLabel& each : labels) {
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    form.addRow(each.text, label);
    Bind(label, each.source, each.property);
  }
}

QTableView* MakeTable(QAbstractItemModel& model, int sortColumn) {
  auto* const table = new QTableView;
  table->setModel(&model);
  table->setSortingEnabled(true);
  table->sortByColumn(sortColumn, Qt::DescendingOrder);
  table->setSelectionBehavior(QAbstractItemView::SelectRows);
  table->setAlternatingRowColors(true);
  table->setShowGrid(false);
  table->verticalHeader()->hide();
  table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().height() + 6);
  table->horizontalHeader()->setHighlightSections(false);
  table->horizontalHeader()->setDefaultSectionSize(82);
  return table;
}

QGroupBox* MakeBox(const QString& title) {
  auto* const box = new QGroupBox(title);
  box->setFlat(true);
  return box;
}

}  // namespace

MonitorWindow::MonitorWindow(IDataSourceProvider& root, const EventLog& eventLog)
    : processes(&root, L"Machine", L"Processes"),
      interfaces(&root, L"Machine", L"Interfaces"),
      process(root, processes),
      processModel(processes, ProcessColumns()),
      interfaceModel(interfaces, InterfaceColumns()),
      log(eventLog),
      events(new QPlainTextEdit) {
  DataBinding::Qt6::SetScope(this, &root);
  setWindowTitle("System monitor");
  auto* const whole = new QWidget;
  auto* const lines = new QVBoxLayout(whole);
  setCentralWidget(whole);
  lines->addWidget(MakeSummary());
  lines->addWidget(MakeTables(), 1);
  MakePause();
  resize(1120, 760);
}

QWidget* MonitorWindow::MakeSummary() {
  auto* const summary = new QWidget;
  auto* const columns = new QHBoxLayout(summary);
  auto* const host = new QFormLayout;
  columns->addLayout(host, 2);
  AddLabels(*host, hostLabels);
  const auto addCurve = [&](const wchar_t* source, std::span<const NamedLabel> labels) {
    auto* const form = new QFormLayout;
    auto* const curve = new LoadCurve;
    columns->addLayout(form, 3);
    form->addRow(curve);
    AddLabels(*form, labels);
    Bind(curve, source, L"Usage");
  };
  addCurve(L"Cpu", cpuLabels);
  addCurve(L"Memory", memoryLabels);
  columns->addWidget(MakeAlarms());
  return summary;
}

QWidget* MonitorWindow::MakeAlarms() {
  auto* const box = MakeBox("Alarms");
  auto* const form = new QFormLayout(box);
  auto* const reason = new QLabel;
  reason->setWordWrap(true);
  reason->setStyleSheet("color: #c62828");
  for (const VtrString& limit : {VtrString(L"Cpu"), VtrString(L"Memory"), VtrString(L"Load")}) {
    auto* const edit = new QLineEdit;
    auto* const raised = new QLabel(QString::fromUtf8("\u25cf raised"));
    raised->setStyleSheet("color: #c62828");
    auto* const line = new QHBoxLayout;
    line->addWidget(edit);
    line->addWidget(raised);
    form->addRow(ToQString(limit), line);
    Bind(edit, limitSource, limit, {.reasonIn = reason});
    DataBinding::Qt6::BindVisible(raised, limitSource, limit + L"Raised");
  }
  form->addRow(reason);
  box->setFixedWidth(250);
  return box;
}

QWidget* MonitorWindow::MakeTables() {
  auto* const rows = new QSplitter(Qt::Vertical);
  auto* const tables = new QSplitter;
  auto* const processTable = MakeTable(processModel, 2);
  processTable->horizontalHeader()->setSectionResizeMode(4, QHeaderView::Stretch);
  // The busiest process is shown until the user chooses another one.
  connect(
      &processModel, &QAbstractItemModel::rowsInserted, processTable,
      [processTable] { processTable->selectRow(0); },
      static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::SingleShotConnection));
  new DataBinding::Qt6::ListSelection(processTable->selectionModel(), process.Chosen());
  tables->addWidget(processTable);
  tables->addWidget(MakeDetails());
  tables->setStretchFactor(0, 1);
  rows->addWidget(tables);
  auto* const below = new QSplitter;
  auto* const interfaceTable = MakeTable(interfaceModel, 4);
  interfaceTable->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
  events->setReadOnly(true);
  events->setMaximumBlockCount(1000);
  events->setLineWrapMode(QPlainTextEdit::NoWrap);
  events->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  below->addWidget(interfaceTable);
  below->addWidget(events);
  rows->addWidget(below);
  rows->setSizes({400, 180});
  return rows;
}

QWidget* MonitorWindow::MakeDetails() {
  auto* const box = MakeBox("Process");
  DataBinding::Qt6::SetScope(box, &process.Get());
  auto* const form = new QFormLayout(box);
  process.Get().GetDataSource(L"Command");  // binds find a source, and this has it built
  AddLabels(*form, processLabels);
  box->setFixedWidth(330);
  return box;
}

void MonitorWindow::MakePause() {
  QAction* const action = addToolBar("Monitor")->addAction("Pause");
  action->setCheckable(true);
  action->setShortcut(Qt::Key_Space);
  connect(action, &QAction::toggled, this, [this](bool isPaused) {
    if (isPaused != pause.IsOn()) pause.Toggle();
    statusBar()->showMessage(isPaused ? "Paused: what is measured stands still." : "");
  });
}

void MonitorWindow::ShowNewEvents() {
  const auto& entries = log.Entries();
  const Count unseen = std::min<Count>(log.Added() - eventsShown, entries.size());
  eventsShown = log.Added();
  for (auto entry = entries.end() - static_cast<std::ptrdiff_t>(unseen); entry != entries.end();
       ++entry) {
    if (!IsMeasurement(*entry)) events->appendPlainText(ToQString(ShowEntry(*entry)));
  }
}

}  // namespace Sysmon

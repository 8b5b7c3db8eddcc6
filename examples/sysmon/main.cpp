// SPDX-License-Identifier: Apache-2.0
/// A system monitor. It shows live figures by means of the library's data sources, lists, scopes,
/// events and binds.
///
///   system   reads the machine                      plain structs, on a thread of their own
///      |  events, through a queue                   model/Events.h
///   model    publishes it: sources and lists        names, values, rows, announcements
///      |
///   view     shows whatever is published            knows names and rows, redraws what has changed
///
/// Start reading at model/Events.h, then model/MachineSources.h, view/Watch.h and view/Table.h.
#include <clocale>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>

#include <DataBinding/registrar/IDataSourceRegistrar.h>
#include <nlohmann/json.hpp>

#include "Options.h"
#include "common/EventLog.h"
#include "common/Limits.h"
#include "loop/EventPump.h"
#include "loop/Loop.h"
#include "model/AlarmWatch.h"
#include "model/EventRecorder.h"
#include "model/Machine.h"
#include "model/Sampler.h"
#include "view/JsonReport.h"
#include "view/MonitorView.h"
#include "view/Terminal.h"
#include "view/TextSurface.h"

namespace Sysmon {

namespace {

/// The root scope, for as long as this lives.
class RootScope {
 public:
  RootScope() { Registrar().Initialize(); }
  RootScope(const RootScope&) = delete;
  RootScope& operator=(const RootScope&) = delete;
  ~RootScope() { Registrar().Shutdown(); }

  [[nodiscard]] IDataSourceProvider& Get() const { return *Registrar().GetRootProvider(); }

 private:
  [[nodiscard]] static DataBinding::IDataSourceRegistrar& Registrar() {
    return DataBinding::IDataSourceRegistrar::GetInstance();
  }
};

/// The parts of the program that are the same wherever the figures are shown.
class Monitor {
 public:
  explicit Monitor(const Options& programOptions) : options(programOptions) {
    for (const auto& [name, value] : options.alarms) SetAlarm(name, value);
  }

  /// These run until the program is to end. They give the signal that ended it, or 0.
  int PrintJson() {
    constexpr std::uint64_t usualFrames = 2;
    Options limited = options;
    if (options.frames == 0) limited.frames = usualFrames;
    Signals signals(false);
    Loop loop(limited, pump, signals, nullptr, nullptr);
    const int signal = Run(loop);
    if (signal == 0) PrintReport();
    return signal;
  }
  int RunOnPage() {
    Signals signals(false);
    TextSurface page;
    MonitorView view(root.Get(), page, log, false);
    Loop loop(options, pump, signals, &view, nullptr);
    return Run(loop);
  }
  int RunOnTerminal() {
    Signals signals(true);
    Terminal terminal;
    MonitorView view(root.Get(), terminal, log, true);
    Loop loop(options, pump, signals, &view, &terminal);
    return Run(loop);
  }

 private:
  void SetAlarm(const std::string& name, const std::string& value) {
    const VtrString wrong =
        SetLimit(root.Get(), VtrString::FromUtf8(name), VtrString::FromUtf8(value));
    if (!wrong.IsEmpty()) throw UsageError("--alarm " + name + ": " + wrong.ToUtf8());
  }
  int Run(Loop& loop) {
    const Sampler sampler(*reader, options.interval);
    return loop.Run();
  }
  void PrintReport() {
    auto report = ReportMachine(root.Get());
    if (options.frames != 0) report["Events"] = ReportEvents(log);
    if (options.frames != 0 && log.Dropped() != 0) report["EventsDropped"] = log.Dropped();
    std::cout << report.dump(2) << '\n';
    if (!std::cout.flush()) throw std::runtime_error("cannot write to standard output");
  }

  static constexpr std::size_t mostEvents = 10'000;

  const Options& options;
  EventPump pump;
  RootScope root;
  std::unique_ptr<SystemReader> reader = SystemReader::Create();
  EventLog log{mostEvents};
  EventRecorder recorder{log};
  Machine machine{*reader, root.Get()};
  AlarmWatch alarms{root.Get()};
};

int RunMonitor(const Options& options) {
  Monitor monitor(options);
  if (options.isJson) return monitor.PrintJson();
  return Terminal::IsThere() ? monitor.RunOnTerminal() : monitor.RunOnPage();
}

int Main(int count, char** arguments) {
  const Options options = ParseOptions(count, arguments);
  if (options.isHelp) {
    std::cout << usageText;
    return EXIT_SUCCESS;
  }
  const int endingSignal = RunMonitor(options);
  // All is put back as it was. Now the signal ends the program, so that its parent learns of it.
  if (endingSignal != 0) Signals::EndBy(endingSignal);
  return EXIT_SUCCESS;
}

}  // namespace

}  // namespace Sysmon

int main(int count, char** arguments) {
  std::setlocale(LC_CTYPE, "");  // NOLINT(concurrency-mt-unsafe): one thread
  try {
    return Sysmon::Main(count, arguments);
  } catch (const Sysmon::UsageError& error) {
    std::cerr << "sysmon: " << error.what() << "\nTry 'sysmon --help'.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "sysmon: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}

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
#include <iostream>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "Options.h"
#include "loop/EventPump.h"
#include "loop/Loop.h"
#include "model/PublishedMachine.h"
#include "model/Sampler.h"
#include "view/JsonReport.h"
#include "view/MonitorView.h"
#include "view/Terminal.h"
#include "view/TextSurface.h"

namespace Sysmon {

namespace {

/// Shows the published machine as the options say.
class Monitor {
 public:
  explicit Monitor(const Options& programOptions) : options(programOptions) {
    const VtrString wrong = SetLimits(published.Root(), options.alarms);
    if (!wrong.IsEmpty()) throw UsageError("--alarm " + wrong.ToUtf8());
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
    MonitorView view(published.Root(), page, published.Log(), false);
    Loop loop(options, pump, signals, &view, nullptr);
    return Run(loop);
  }
  int RunOnTerminal() {
    Signals signals(true);
    Terminal terminal;
    MonitorView view(published.Root(), terminal, published.Log(), true);
    Loop loop(options, pump, signals, &view, &terminal);
    return Run(loop);
  }

 private:
  int Run(Loop& loop) {
    const Sampler sampler(published.Reader(), options.interval);
    return loop.Run();
  }
  void PrintReport() {
    auto report = ReportMachine(published.Root());
    if (options.frames != 0) report["Events"] = ReportEvents(published.Log());
    if (options.frames != 0 && published.Log().Dropped() != 0)
      report["EventsDropped"] = published.Log().Dropped();
    std::cout << report.dump(2) << '\n';
    if (!std::cout.flush()) throw std::runtime_error("cannot write to standard output");
  }

  const Options& options;
  EventPump pump;
  PublishedMachine published;
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
  if (!options.shot.empty()) throw UsageError("--shot is for sysmon-window");
  const int endingSignal = RunMonitor(options);
  // All is put back as it was. Now the signal ends the program, so that its parent learns of it.
  if (endingSignal != 0) Signals::EndBy(endingSignal);
  return EXIT_SUCCESS;
}

}  // namespace

}  // namespace Sysmon

int main(int count, char** arguments) {
  std::setlocale(LC_CTYPE, "");  // NOLINT(concurrency-mt-unsafe): one thread
  return Sysmon::RunProgram(&Sysmon::Main, count, arguments);
}

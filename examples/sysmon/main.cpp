/// A system monitor: the library's data sources, scopes and listeners at work on live figures.
///
///   system   reads the machine                      plain structs
///      |
///   model    publishes it: sources in scopes        names, values, announcements
///      |
///   view     shows whatever is published            knows names only, redraws what has changed
///
/// Start reading at model/Sampler.h, then view/Watch.h.
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <stdexcept>
#include <thread>

#include <DataBinding/IDataSourceRegistrar.h>
#include <nlohmann/json.hpp>

#include "Options.h"
#include "loop/Loop.h"
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

int PrintJson(const Options& options, Sampler& sampler, IDataSourceProvider& root) {
  std::this_thread::sleep_for(options.interval);
  sampler.Sample();
  std::cout << ReportTree(root).dump(2) << '\n';
  if (!std::cout.flush()) throw std::runtime_error("cannot write to standard output");
  return 0;
}

int RunOnTerminal(const Options& options, Sampler& sampler, IDataSourceProvider& root,
                  SignalPipe& signals) {
  Terminal terminal;
  MonitorView view(root, terminal, true);
  return Loop(options, sampler, view, signals, &terminal).Run();
}

int RunOnPage(const Options& options, Sampler& sampler, IDataSourceProvider& root,
              SignalPipe& signals) {
  TextSurface page;
  MonitorView view(root, page, false);
  return Loop(options, sampler, view, signals, nullptr).Run();
}

/// Runs until the program is to end. The signal that ended it, or 0.
int RunMonitor(const Options& options) {
  const RootScope root;
  Sampler sampler(SystemReader::Create(), root.Get());
  sampler.Sample();
  if (options.isJson) return PrintJson(options, sampler, root.Get());
  if (isatty(STDOUT_FILENO) == 0) {
    SignalPipe signals{SIGINT, SIGTERM, SIGHUP};
    return RunOnPage(options, sampler, root.Get(), signals);
  }
  SignalPipe signals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGTSTP, SIGCONT, SIGWINCH};
  return RunOnTerminal(options, sampler, root.Get(), signals);
}

int Main(int count, char** arguments) {
  const Options options = ParseOptions(count, arguments);
  if (options.isHelp) {
    std::cout << usageText;
    return EXIT_SUCCESS;
  }
  const int endingSignal = RunMonitor(options);
  // All is put back as it was: whoever started this program is to learn what ended it.
  if (endingSignal != 0) std::raise(endingSignal);
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

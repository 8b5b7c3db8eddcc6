// SPDX-License-Identifier: Apache-2.0
/// The monitor in a window: the same model as the one that main.cpp of the folder above shows on a
/// terminal.
#include <QApplication>
#include <iostream>

#include <DataBindingQt6/loop/Install.h>
#include <DataBindingQt6/loop/QtIdlePass.h>

#include "../Options.h"
#include "../model/PublishedMachine.h"
#include "../model/Sampler.h"
#include "MonitorWindow.h"

namespace Sysmon {

namespace {

/// Ends the program after the frames that the options ask for, with a picture where they ask for
/// one.
void EndAfterFrames(const Options& options, QWidget& window) {
  if (!options.shot.empty() && !window.grab().save(QString::fromStdString(options.shot))) {
    std::cerr << "sysmon: cannot write '" << options.shot << "'\n";
    return QApplication::exit(EXIT_FAILURE);
  }
  QApplication::quit();
}

int RunWindow(const Options& options) {
  DataBinding::Qt6::Install();
  const DataBinding::Qt6::QtIdlePass pass;
  const PublishedMachine published;
  const VtrString wrong = SetLimits(published.Root(), options.alarms);
  if (!wrong.IsEmpty()) throw UsageError("--alarm " + wrong.ToUtf8());
  MonitorWindow window(published.Root(), published.Log());
  constexpr Count usualFrames = 3;
  Count left = options.frames != 0 ? options.frames : options.shot.empty() ? 0 : usualFrames;
  bool isLast = false;
  const auto counted =
      sampleTaken.Subscribe([&](const Count&) { isLast = left != 0 && --left == 0; });
  const auto failed = samplingFailed.Subscribe([](const VtrString& reason) {
    std::cerr << "sysmon: " << reason << '\n';
    QApplication::exit(EXIT_FAILURE);
  });
  QObject::connect(&pass, &DataBinding::Qt6::QtIdlePass::delivered, &window, [&] {
    window.ShowNewEvents();
    if (isLast) EndAfterFrames(options, window);
  });
  window.show();
  const Sampler sampler(published.Reader(), options.interval);
  return QApplication::exec();
}

int Main(int count, char** arguments) {
  const Options options = ParseOptions(count, arguments);
  if (options.isHelp) std::cout << usageText;
  if (options.isHelp) return EXIT_SUCCESS;
  if (options.isJson) throw UsageError("--json is for sysmon");
  const bool hasDisplay =
      qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
  if (!options.shot.empty() && !hasDisplay) qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(count, arguments);
  return RunWindow(options);
}

}  // namespace

}  // namespace Sysmon

int main(int count, char** arguments) {
  return Sysmon::RunProgram(&Sysmon::Main, count, arguments);
}

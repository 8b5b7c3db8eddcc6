/// The loop of the program: samples at each tick, draws, and meanwhile obeys keys and signals.
#pragma once

#include <chrono>

#include "../Options.h"
#include "../model/Sampler.h"
#include "../view/MonitorView.h"
#include "../view/Terminal.h"
#include "SignalPipe.h"

namespace Sysmon {

class Loop {
 public:
  /// The terminal is null where the view draws on something else.
  Loop(const Options& programOptions, Sampler& modelSampler, MonitorView& monitorView,
       SignalPipe& signalPipe, Terminal* keyTerminal);

  /// Runs until the frames are drawn, or somebody ends it by key or signal. The signal, or 0.
  [[nodiscard]] int Run();

 private:
  using Clock = std::chrono::steady_clock;

  void WaitUntil(Clock::time_point tick);
  void ObeySignals();
  void ObeyKeys();
  void Stop();

  const Options& options;
  Sampler& sampler;
  MonitorView& view;
  SignalPipe& signals;
  Terminal* terminal;
  bool hasKeys;
  bool isEnding = false;
  int endingSignal = 0;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// The loop of the program. It delivers events, draws, and obeys keys and signals.
#pragma once

#include <DataBinding/foundation/Subscription.h>

#include "../Options.h"
#include "../model/Pause.h"
#include "../view/MonitorView.h"
#include "../view/Terminal.h"
#include "EventPump.h"
#include "Signals.h"

namespace Sysmon {

class Loop {
 public:
  /// The view is null if nothing is drawn; the terminal is null if the view draws on something
  /// else.
  Loop(const Options& programOptions, EventPump& eventPump, Signals& programSignals,
       MonitorView* monitorView, Terminal* keyTerminal);

  /// Runs until all frames are drawn, or until a key or a signal ends it. Gives the signal, or 0.
  /// Throws when sampling fails.
  [[nodiscard]] int Run();

 private:
  void Wait();
  void DeliverEvents();
  void ObeySignals();
  void ObeyKeys();
  void ObeyKey(const KeyPress& press);
  void Draw();
  void Stop();

  const Options& options;
  EventPump& pump;
  Signals& signals;
  MonitorView* view;
  Terminal* terminal;
  bool hasKeys;
  Pause pause;
  Count frames = 0;
  bool isFrameDue = false;
  bool isEnding = false;
  DataBinding::Subscription sampled;
  DataBinding::Subscription failed;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
#include "Loop.h"

#include <stdexcept>
#include <utility>

namespace Sysmon {

Loop::Loop(const Options& programOptions, EventPump& eventPump, Signals& programSignals,
           MonitorView* monitorView, Terminal* keyTerminal)
    : options(programOptions),
      pump(eventPump),
      signals(programSignals),
      view(monitorView),
      terminal(keyTerminal),
      hasKeys(keyTerminal != nullptr && keyTerminal->HasKeys()),
      sampled(sampleTaken.Subscribe([this](const Count&) { isFrameDue = true; })),
      failed(samplingFailed.Subscribe(
          [](const VtrString& reason) { throw std::runtime_error(reason.ToUtf8()); })) {}

int Loop::Run() {
  while (!isEnding) Wait();
  return signals.Ending();
}

void Loop::Wait() {
  const WhatIsReady ready = WaitFor(signals.Ready(), pump.Ready(), hasKeys);
  if (ready.signals) ObeySignals();
  if (ready.events && !isEnding) DeliverEvents();
  if (ready.keys && !isEnding) ObeyKeys();
  isEnding |= ready.isTerminalGone;
}

/// Draws a frame for each sample. On a terminal, where drawing costs little, it draws one for each
/// event.
void Loop::DeliverEvents() {
  pump.Deliver();
  const bool isFrame = std::exchange(isFrameDue, false);
  if (isFrame || terminal != nullptr) Draw();
  if (isFrame) isEnding |= ++frames == options.frames;
}

void Loop::ObeySignals() {
  for (auto request = signals.Next(); request != Request::None; request = signals.Next()) {
    switch (request) {
      case Request::Stop:
        Stop();
        break;
      case Request::Redraw:
        terminal->Resume();
        view->Redraw();
        break;
      default:
        isEnding = true;
        return;
    }
  }
  Draw();
}

void Loop::Stop() {
  terminal->Suspend();
  signals.Stop();
  terminal->Resume();
  view->Redraw();
}

void Loop::ObeyKeys() {
  for (auto press = terminal->ReadKey(); press.key != Key::None && !isEnding;
       press = terminal->ReadKey()) {
    ObeyKey(press);
  }
  if (!isEnding) Draw();
}

void Loop::ObeyKey(const KeyPress& press) {
  if (view->Obey(press)) return;
  isEnding |= press.key == Key::Quit;
  if (press.key != Key::Pause) return;
  pause.Toggle();
  view->ShowPaused(pause.IsOn());
}

void Loop::Draw() {
  if (view != nullptr) view->Draw();
}

}  // namespace Sysmon

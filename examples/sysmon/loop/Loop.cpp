#include "Loop.h"

#include <poll.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <utility>

namespace Sysmon {

Loop::Loop(const Options& programOptions, EventPump& eventPump, SignalPipe& signalPipe,
           MonitorView* monitorView, Terminal* keyTerminal)
    : options(programOptions),
      pump(eventPump),
      signals(signalPipe),
      view(monitorView),
      terminal(keyTerminal),
      hasKeys(keyTerminal != nullptr && isatty(STDIN_FILENO) != 0),
      sampled(sampleTaken.Subscribe([this](const Count&) { isFrameDue = true; })),
      failed(samplingFailed.Subscribe(
          [](const VtrString& reason) { throw std::runtime_error(reason.ToUtf8()); })) {}

int Loop::Run() {
  while (!isEnding) Wait();
  return endingSignal;
}

void Loop::Wait() {
  pollfd inputs[] = {
      {signals.Descriptor(), POLLIN, 0}, {pump.Descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
  if (poll(inputs, hasKeys ? 3 : 2, -1) < 0) return;  // a signal came, and waits in the pipe
  if (inputs[0].revents != 0) ObeySignals();
  if (inputs[1].revents != 0 && !isEnding) DeliverEvents();
  if ((inputs[2].revents & POLLIN) != 0 && !isEnding) ObeyKeys();
  isEnding |= (inputs[2].revents & ~POLLIN) != 0;  // the terminal is gone
}

/// A frame is drawn for each sample; on a terminal, where that costs little, at once for each
/// event.
void Loop::DeliverEvents() {
  pump.Deliver();
  const bool isFrame = std::exchange(isFrameDue, false);
  if (isFrame || terminal != nullptr) Draw();
  if (isFrame) isEnding |= ++frames == options.frames;
}

void Loop::ObeySignals() {
  for (int signal = signals.Next(); signal != 0; signal = signals.Next()) {
    switch (signal) {
      case SIGTSTP:
        Stop();
        break;
      case SIGCONT:
      case SIGWINCH:
        terminal->Resume();
        view->Redraw();
        break;
      default:
        isEnding = true;
        endingSignal = signal;
        return;
    }
  }
  Draw();
}

void Loop::Stop() {
  terminal->Suspend();
  signals.RaiseUnhandled(SIGTSTP);
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

#include "Loop.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

namespace Sysmon {

Loop::Loop(const Options& programOptions, Sampler& modelSampler, MonitorView& monitorView,
           SignalPipe& signalPipe, Terminal* keyTerminal)
    : options(programOptions),
      sampler(modelSampler),
      view(monitorView),
      signals(signalPipe),
      terminal(keyTerminal),
      hasKeys(keyTerminal != nullptr && isatty(STDIN_FILENO) != 0) {}

int Loop::Run() {
  auto tick = Clock::now();
  for (Count frame = 1; !isEnding; ++frame) {
    view.Draw();
    if (frame == options.frames) break;
    tick = std::max(tick + options.interval, Clock::now());  // late ticks are not made up for
    WaitUntil(tick);
    if (!isEnding) sampler.Sample();
  }
  return endingSignal;
}

void Loop::WaitUntil(Clock::time_point tick) {
  while (!isEnding) {
    const auto rest = std::chrono::ceil<std::chrono::milliseconds>(tick - Clock::now());
    pollfd inputs[] = {{signals.Descriptor(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}};
    const int ready = poll(inputs, hasKeys ? 2 : 1, std::max(0, static_cast<int>(rest.count())));
    if (ready == 0) return;
    if (ready < 0) continue;  // a signal came, and waits in the pipe
    if (inputs[0].revents != 0) ObeySignals();
    if ((inputs[1].revents & POLLIN) != 0 && !isEnding) ObeyKeys();
    isEnding |= (inputs[1].revents & ~POLLIN) != 0;  // the terminal is gone
  }
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
        view.Obey(Key::Redraw);
        break;
      default:
        isEnding = true;
        endingSignal = signal;
        return;
    }
  }
  view.Draw();
}

void Loop::Stop() {
  terminal->Suspend();
  signals.RaiseUnhandled(SIGTSTP);
  terminal->Resume();
  view.Obey(Key::Redraw);
}

void Loop::ObeyKeys() {
  for (Key key = terminal->ReadKey(); key != Key::None; key = terminal->ReadKey()) {
    isEnding |= key == Key::Quit;
    view.Obey(key);
  }
  if (!isEnding) view.Draw();
}

}  // namespace Sysmon

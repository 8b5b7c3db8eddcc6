// SPDX-License-Identifier: Apache-2.0
/// Joins the event broadcaster to the application's message loop: wakes the loop when events are
/// queued, and delivers them when the loop is idle.
///
/// Make it on the delivering thread before any producer starts, and end it after they have stopped.
/// `wake` runs on the thread that raises, once until the next Run: it must be safe on any thread
/// and get the loop to call Run soon, or throw if it cannot. Run may be entered again from a modal
/// loop that a listener runs. Several passes may end in any order: each gives the callback that it
/// replaced back. The newest is woken, and counts as woken until its own Run.
///
///   IdlePass idle([&] { loop.Wake(); });     // poll: write one byte to a pipe
///   while (loop.Wait()) idle.Run();          // RunFor(8ms) where events may come in floods
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"

namespace DataBinding {

class DATABINDING_API IdlePass {
 public:
  /// Installs the UpdateUI callback. Wakes at once when events are queued already.
  [[nodiscard]] explicit IdlePass(RepeatingCallback<void()> wake);
  IdlePass(const IdlePass&) = delete;
  IdlePass& operator=(const IdlePass&) = delete;
  /// Restores the former UpdateUI callback, and runs it if events are left for it.
  ~IdlePass();

  /// Delivers what is queued. What comes in meanwhile wakes the loop for another pass. Afterwards
  /// throws what the first listener or hook threw, if no error handler takes that; a Run inside a
  /// delivery leaves it to the outer one. Costs next to nothing when nothing is queued. The pass
  /// may end, and the broadcaster be released, meanwhile.
  void Run();
  /// The same, but stops after the event, at least one, during which as much time has passed: the
  /// others stay queued, in their order, and the loop is woken for another pass. A Run from inside
  /// delivers them first. What an event of another kind lets out leaves them queued, too.
  void RunFor(std::chrono::nanoseconds budget);
  /// True from the waking until the next Run.
  [[nodiscard]] bool IsRequested() const noexcept;
  /// How many exceptions were dropped beside the one that Run threw last.
  [[nodiscard]] std::size_t DroppedFailures() const noexcept;

 private:
  class State;
  template <class Dispatch>
  void Deliver(Dispatch dispatch);

  std::shared_ptr<State> state;
  RepeatingCallback<void()> installed;
  RepeatingCallback<void()> former;
  IdlePass* nextPass = nullptr;
};

}  // namespace DataBinding

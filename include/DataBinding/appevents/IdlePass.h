// SPDX-License-Identifier: Apache-2.0
/// Joins the event broadcaster to the application's message loop: wakes the loop when events are
/// queued, and delivers them when the loop is idle.
///
/// Make it on the delivering thread before any thread starts to raise events, and end it after all
/// have stopped. It calls `wake` on the thread that raises, and then not again until the next Run.
/// `wake` must be safe on any thread. It gets the loop to call Run soon, or throws if it cannot.
///
/// A listener that runs a modal loop may call Run again inside a Run. Several passes may exist and
/// end in any order, because each restores the callback that it replaced. Only the newest one is
/// woken, and it counts as woken until its own Run.
///
///   IdlePass idle([&] { loop.Wake(); });     // poll: write one byte to a pipe
///   while (loop.Wait()) idle.Run();          // RunFor(8ms) where events may come in floods
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

class DATABINDING_API IdlePass {
 public:
  /// Installs the UpdateUI callback. Calls `wake` at once when events are queued already, or when a
  /// listener's exception waits for a Run; if `wake` throws then, nothing is installed.
  [[nodiscard]] explicit IdlePass(RepeatingCallback<void()> wake);
  IdlePass(const IdlePass&) = delete;
  IdlePass& operator=(const IdlePass&) = delete;
  /// Restores the UpdateUI callback that this pass replaced, and runs it if events are left.
  ~IdlePass();

  /// Delivers the events that are queued now. Events that are raised meanwhile wake the loop for
  /// another pass. Afterwards Run throws the first exception of a listener or hook, if no error
  /// handler took it; a Run inside a delivery leaves the exception to the outer one. Costs next to
  /// nothing when nothing is queued. A listener may end this pass and release the broadcaster.
  void Run();
  /// Delivers like Run, but stops after the first event at whose end the budget is used up. The
  /// other events stay queued in their order, and the loop is woken for another pass. A Run inside
  /// a listener delivers them first. They stay queued, too, when the Dispatch of an event of the
  /// application's own kind throws.
  void RunFor(std::chrono::nanoseconds budget);
  /// Calls the function at the end of each Run and RunFor, when the events are delivered, until the
  /// subscription ends. It is called also when no event was queued, and inside a delivery when a
  /// listener runs a modal loop. It may end the pass, and then no other is called. What it throws
  /// leaves the Run when all were called, unless the delivery has thrown something already.
  Subscription OnDelivered(const RepeatingCallback<void()>& callback) const;
  /// Returns a function that wakes the loop for a Run although no event is queued. It may be called
  /// on any thread, wakes as raising an event does, and does nothing once the pass has ended.
  [[nodiscard]] RepeatingCallback<void()> Waker() const { return installed; }
  /// True from a successful call of `wake` until the next Run.
  [[nodiscard]] bool IsRequested() const noexcept;
  /// How many further exceptions came with the one that Run threw last, and were dropped.
  [[nodiscard]] std::size_t DroppedFailures() const noexcept;

 private:
  class State;
  void Deliver(std::optional<std::chrono::nanoseconds> budget);
  static void DeliverEvents(State& state, std::optional<std::chrono::nanoseconds> budget);

  std::shared_ptr<State> state;
  RepeatingCallback<void()> installed;
  RepeatingCallback<void()> former;
  IdlePass* nextPass = nullptr;
};

}  // namespace DataBinding

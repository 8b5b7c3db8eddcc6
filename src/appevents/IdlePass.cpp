// SPDX-License-Identifier: Apache-2.0
// This file holds the state that a pass shares with its UpdateUI callback; the chain of passes,
// which a pass enters and leaves; and Run and RunFor, which deliver.
#include "DataBinding/appevents/IdlePass.h"

#include <atomic>
#include <utility>

#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/details/Cancellation.h"
#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding {

/// The state that a pass shares with its UpdateUI callback. It is shared, because another thread
/// may still run the callback when the pass ends.
class IdlePass::State {
 public:
  explicit State(RepeatingCallback<void()> callback) : wake(std::move(callback)) {}

  /// Wakes the loop, unless it was woken since the last Begin.
  DATABINDING_CATCHES_CANCELLATION void Request() {
    if (ended || requested.exchange(true, std::memory_order_acq_rel)) return;
    try {
      wake();
    } catch (...) {
      requested = false;  // the next event tries again
      throw;
    }
  }
  /// Run calls this before it takes the queue. A thread that found `requested` set, and so did not
  /// wake the loop, had queued its event before; the queue that is taken after this has the event.
  void Begin() noexcept {
    if (IsRequested()) requested.exchange(false, std::memory_order_acq_rel);
  }
  void End() noexcept {
    ended = true;
    delivered = CallbackList<>();
  }
  Subscription OnDelivered(const RepeatingCallback<void()>& callback) {
    return delivered.Add(callback);
  }
  /// Once the pass has ended, nobody is told any more.
  void TellDelivered() const { delivered.CallAll(); }
  [[nodiscard]] bool IsRequested() const noexcept { return requested; }

  std::size_t droppedFailures = 0;

 private:
  RepeatingCallback<void()> wake;
  CallbackList<> delivered;
  std::atomic<bool> requested{false};
  std::atomic<bool> ended{false};
};

namespace {

/// The newest pass, from which nextPass leads to the older ones. For the delivering thread.
IdlePass*& NewestPass() noexcept {
  static IdlePass* newest = nullptr;
  return newest;
}

[[nodiscard]] bool IsAnythingToDo(const IAppEventBroadcaster& events) noexcept {
  return events.HasPendingEvents() || events.HasFailure();
}

[[nodiscard]] bool IsAnythingToDo() {
  return IAppEventBroadcaster::HasInstance() && IsAnythingToDo(IAppEventBroadcaster::GetInstance());
}

}  // namespace

IdlePass::IdlePass(RepeatingCallback<void()> wake)
    : state(std::make_shared<State>(std::move(wake))),
      installed([shared = state] { shared->Request(); }),
      former(AEB::UpdatePolicy::GetUpdateUICallback()) {
  if (IsAnythingToDo()) state->Request();  // first, since it may throw: nothing is installed yet
  nextPass = std::exchange(NewestPass(), this);
  AEB::UpdatePolicy::SetUpdateUICallback(installed);
}

/// Takes this pass out of the chain of callbacks. If a newer pass has replaced this one's callback,
/// that pass is given the callback that this one had replaced.
IdlePass::~IdlePass() {
  state->End();
  const auto isMine = [this](const RepeatingCallback<void()>& callback) {
    return callback.GetBindState() == installed.GetBindState();
  };
  IdlePass** link = &NewestPass();
  while (*link != nullptr && *link != this) {
    if (isMine((*link)->former)) (*link)->former = former;
    link = &(*link)->nextPass;
  }
  if (*link == this) *link = nextPass;
  if (!isMine(AEB::UpdatePolicy::GetUpdateUICallback())) return;
  AEB::UpdatePolicy::SetUpdateUICallback(former);
  FirstFailure dropped;
  if (IsAnythingToDo()) dropped.Try([this] { former(); });
}

void IdlePass::Run() { Deliver(std::nullopt); }

void IdlePass::RunFor(std::chrono::nanoseconds budget) { Deliver(budget); }

void IdlePass::Deliver(std::optional<std::chrono::nanoseconds> budget) {
  const auto keep = state;  // a listener may end the pass
  keep->Begin();
  FirstFailure failure;
  failure.Try([&] { DeliverEvents(*keep, budget); });
  failure.Try([&] { keep->TellDelivered(); });
  failure.Rethrow();
}

/// Without a budget it delivers all that is queued.
void IdlePass::DeliverEvents(State& state, std::optional<std::chrono::nanoseconds> budget) {
  if (!IAppEventBroadcaster::HasInstance()) return;
  auto& events = IAppEventBroadcaster::GetInstance();
  if (!IsAnythingToDo(events)) return;
  const auto alive = events.GetWeakPtr();
  try {
    budget ? events.DispatchPendingEventsFor(*budget) : events.DispatchPendingEvents();
  } catch (...) {
    if (alive && IsAnythingToDo(events)) state.Request();
    throw;
  }
  if (!alive) return;
  if (events.HasPendingEvents()) state.Request();
  // Inside a delivery, as in a modal loop, the outer Run throws the failure at its end.
  if (!events.HasFailure() || events.IsDelivering()) return;
  const EventFailure failure = events.TakeFailure();
  state.droppedFailures = failure.others;
  std::rethrow_exception(failure.exception);
}

Subscription IdlePass::OnDelivered(const RepeatingCallback<void()>& callback) const {
  return state->OnDelivered(callback);
}

bool IdlePass::IsRequested() const noexcept { return state->IsRequested(); }

std::size_t IdlePass::DroppedFailures() const noexcept { return state->droppedFailures; }

}  // namespace DataBinding

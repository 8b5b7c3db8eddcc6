// SPDX-License-Identifier: Apache-2.0
// This file holds what changes a callback list: adding, cancelling, pausing and closing, and the
// release of cancelled callbacks after a walk. The walk itself stands in the header.
#include "DataBinding/foundation/CallbackList.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "DataBinding/foundation/details/Registration.h"

namespace VtrUtils {

namespace details {

namespace {

/// A ListRegistration is the state behind the Subscription of a list.
class ListRegistration final : public RegistrationState<ListRegistration> {
 public:
  ListRegistration(CallbackListCore* list, std::uint64_t number) noexcept
      : core(comlike_ptr<CallbackListCore>::Share(list)), token(number) {}

  void End() noexcept { core->Cancel(token); }
  void EndAndWait() noexcept { core->CancelAndWait(token); }
  void Pause() noexcept { core->Pause(token, 1); }
  void Resume() noexcept { core->Pause(token, -1); }
  [[nodiscard]] bool IsGone() const noexcept { return false; }

 private:
  comlike_ptr<CallbackListCore> core;
  std::uint64_t token;
};

}  // namespace

const void* ThisThread() noexcept {
  static constinit thread_local char ofThread = 0;
  return &ofThread;
}

void CallbackListCoreTraits::Destroy(const CallbackListCore* core) noexcept { delete core; }

std::uint64_t CallbackListCore::Add(comlike_ptr<BindStateBase> callback,
                                    BindStateBase::InvokeFunction caller) {
  const WriteLock guard(lock);
  if (walks == 0 && gaps > entries.size() / 2) CloseGaps();
  entries.emplace_back(lastToken + 1, callback.Get(), caller);
  static_cast<void>(callback.Detach());
  return ++lastToken;
}

void CallbackListCore::Cancel(std::uint64_t token) noexcept {
  const BindStateBase* ended = nullptr;
  {
    const WriteLock guard(lock);
    Entry* const found = Find(token);
    if (found == nullptr) return;
    found->silence.fetch_or(Entry::ended, std::memory_order_seq_cst);
    anyCancelled.store(true, std::memory_order_seq_cst);
    if (walks.load(std::memory_order_seq_cst) != 0) return;
    ended = std::exchange(found->state, nullptr);
    if (ended != nullptr) ++gaps;
  }
  if (ended != nullptr) ended->Release();
}

void CallbackListCore::CancelAndWait(std::uint64_t token) noexcept {
  Cancel(token);
  const bool isWalking = walks.load(std::memory_order_seq_cst) != 0 &&
                         walker.load(std::memory_order_relaxed) == ThisThread();
  if (!isWalking) WaitWhile([&] { return Holds(token); });
}

void CallbackListCore::Pause(std::uint64_t token, std::int32_t change) noexcept {
  const WriteLock guard(lock);
  if (Entry* const found = Find(token)) found->silence += static_cast<std::uint32_t>(change);
}

CallbackListCore::Entry* CallbackListCore::Find(std::uint64_t token) noexcept {
  const auto found = std::ranges::lower_bound(entries, token, {}, &Entry::token);
  return found == entries.end() || found->token != token ? nullptr : &*found;
}

/// Returns true until the callback of a token has been taken out. If it was cancelled during a
/// walk, that happens at the end of the walk.
bool CallbackListCore::Holds(std::uint64_t token) noexcept {
  const ReadLock guard(lock);
  const Entry* const found = Find(token);
  return found != nullptr && found->state != nullptr;
}

void CallbackListCore::Close() noexcept {
  {
    const WriteLock guard(lock);
    closed = true;
    for (auto& entry : entries) entry.silence.fetch_or(Entry::ended);
    anyCancelled.store(true, std::memory_order_seq_cst);
  }
  if (walks != 0) return;
  ReleaseCancelled();
  Release();
}

void CallbackListCore::EndOutermostWalk() noexcept {
  const auto keep = comlike_ptr<CallbackListCore>::Share(this);
  const bool wasClosed = closed;
  ReleaseCancelled();
  if (wasClosed) Release();
}

/// Releases the cancelled callbacks and closes their gaps. A callback's end may run any code, so a
/// few callbacks at a time are taken out under the lock and then released without it.
void CallbackListCore::ReleaseCancelled() noexcept {
  std::array<const BindStateBase*, 16> taken{};
  for (std::size_t count = taken.size(); count == taken.size();) {
    count = TakeCancelled(taken);
    std::for_each_n(taken.begin(), count, [](const auto* state) { state->Release(); });
  }
}

std::size_t CallbackListCore::TakeCancelled(std::span<const BindStateBase*> room) noexcept {
  std::size_t count = 0;
  const WriteLock guard(lock);
  for (auto& entry : entries) {
    if (!entry.IsCancelled() || entry.state == nullptr) continue;
    if (count == room.size()) return count;
    room[count++] = std::exchange(entry.state, nullptr);
  }
  if (walks == 0 && count < room.size()) {
    CloseGaps();
    anyCancelled.store(false, std::memory_order_seq_cst);
  }
  return count;
}

void CallbackListCore::CloseGaps() noexcept {
  std::erase_if(entries, [](const Entry& entry) { return entry.state == nullptr; });
  gaps = 0;
}

}  // namespace details

Subscription CallbackListBase::Add(const RepeatingCallbackMemento& callback,
                                   details::BindStateBase::InvokeFunction caller) {
  details::RepeatingCallbackBase untyped;
  untyped.SetMemento(callback);
  if (!untyped) return {};
  if (core == nullptr) core = new details::CallbackListCore;
  const auto token =
      core->Add(comlike_ptr<details::BindStateBase>::Share(untyped.GetBindState()), caller);
  try {
    using End = OneShotCallback<void()>;
    using State = comlike_ptr<details::BindStateBase>;
    return Subscription(End(State(new details::ListRegistration(core, token))));
  } catch (...) {
    core->Cancel(token);  // there is no subscription that could do it
    throw;
  }
}

void CallbackListBase::Drop(details::CallbackListCore* core) noexcept {
  if (core != nullptr) core->Close();
}

}  // namespace VtrUtils

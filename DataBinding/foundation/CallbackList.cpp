#include "DataBinding/foundation/CallbackList.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace VtrUtils {

namespace details {

void CallbackListCoreTraits::Destroy(const CallbackListCore* core) noexcept { delete core; }

std::uint64_t CallbackListCore::Add(comlike_ptr<BindStateBase> callback) {
  const WriteLock guard(lock);
  if (walks == 0 && gaps > entries.size() / 2) CloseGaps();
  entries.emplace_back(lastToken + 1, callback.Get());
  static_cast<void>(callback.Detach());
  return ++lastToken;
}

void CallbackListCore::Cancel(std::uint64_t token) noexcept {
  const BindStateBase* ended = nullptr;
  {
    const WriteLock guard(lock);
    const auto found = std::ranges::lower_bound(entries, token, {}, &Entry::token);
    if (found == entries.end() || found->token != token) return;
    found->cancelled.store(true, std::memory_order_seq_cst);
    anyCancelled.store(true, std::memory_order_seq_cst);
    if (walks.load(std::memory_order_seq_cst) != 0) return;
    ended = std::exchange(found->state, nullptr);
    if (ended != nullptr) ++gaps;
  }
  if (ended != nullptr) ended->Release();
}

void CallbackListCore::Close() noexcept {
  {
    const WriteLock guard(lock);
    closed = true;
    for (auto& entry : entries) entry.cancelled.store(true, std::memory_order_seq_cst);
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

/// Lets the cancelled callbacks go, a handful at a time since their ends may run any code, then
/// closes their gaps.
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
    if (!entry.cancelled || entry.state == nullptr) continue;
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

Subscription CallbackListBase::Add(const RepeatingCallbackMemento& callback) {
  details::RepeatingCallbackBase untyped;
  untyped.SetMemento(callback);
  if (!untyped) return {};
  if (core == nullptr) core = new details::CallbackListCore;
  using Core = comlike_ptr<details::CallbackListCore>;
  const auto token = core->Add(comlike_ptr<details::BindStateBase>::Share(untyped.GetBindState()));
  try {
    return Subscription([shared = Core::Share(core), token] { shared->Cancel(token); });
  } catch (...) {
    core->Cancel(token);  // nobody else could
    throw;
  }
}

void CallbackListBase::Drop(details::CallbackListCore* core) noexcept {
  if (core != nullptr) core->Close();
}

}  // namespace VtrUtils

// SPDX-License-Identifier: Apache-2.0
// This file holds the group of edits. Its state is kept by each call, since the functions of one
// edit may end the group, end other edits, and add some.

#include "DataBinding/framework/EditGroup.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding {

using details::EditCore;
using Purpose = EditCore::Purpose;

class EditGroup::State : public std::enable_shared_from_this<State> {
 public:
  using Cores = std::vector<std::shared_ptr<EditCore>>;

  void Add(const std::shared_ptr<EditCore>& core);
  void Remove(const std::shared_ptr<EditCore>& core);
  SetResult CommitAll();
  SetResult CheckAll();
  [[nodiscard]] Cores Living() const;
  [[nodiscard]] static bool HaveTyped(const Cores& cores) {
    return std::ranges::any_of(cores, [](const auto& core) { return core->HasTyped(); });
  }
  [[nodiscard]] bool IsRefused(const std::shared_ptr<EditCore>& core) const {
    return core != nullptr && refused.lock() == core;
  }
  Subscription OnState(const RepeatingCallback<void(const bool&)>& callback);
  /// The group is gone, so nobody is told from now on.
  void End() { callbacks = CallbackList<bool>(); }
  /// Tells that HasTyped has become another one.
  void Tell();

 private:
  struct Member {
    std::weak_ptr<EditCore> core;
    Subscription states;
  };
  [[nodiscard]] static auto IsOf(const EditCore* core) {
    return [core](const Member& member) { return member.core.lock().get() == core; };
  }
  void NoteRefusal(const std::shared_ptr<EditCore>& core, SetResult result, SetResult& first);

  std::vector<Member> members;
  CallbackList<bool> callbacks;
  std::weak_ptr<EditCore> refused;
  bool told = false;
};

void EditGroup::State::Add(const std::shared_ptr<EditCore>& core) {
  std::erase_if(members, IsOf(nullptr));
  if (core == nullptr || std::ranges::any_of(members, IsOf(core.get()))) return;
  members.push_back({core, core->OnState([self = weak_from_this()](const EditState&) {
                       if (const auto keep = self.lock()) keep->Tell();
                     })});
  Tell();
}

void EditGroup::State::Remove(const std::shared_ptr<EditCore>& core) {
  if (core == nullptr) return;
  std::erase_if(members, IsOf(core.get()));
  Tell();
}

/// A validator may accept an edit once another one is filed. So the refused ones are committed
/// again as long as that goes on.
SetResult EditGroup::State::CommitAll() {
  const auto living = Living();
  refused.reset();
  FirstFailure failure;
  SetResult first;
  bool goesOn = true;
  for (std::size_t round = 0; goesOn && round < living.size(); ++round) {
    first = {};
    refused.reset();
    goesOn = false;
    for (const auto& core : living) {
      if (!core->HasTyped()) continue;
      SetResult result;
      failure.Try([&] { result = core->Judge(Purpose::Commit); });
      goesOn = goesOn || !core->HasTyped();
      NoteRefusal(core, std::move(result), first);
    }
    goesOn = goesOn && !first.IsAccepted();
  }
  failure.Rethrow();
  if (!first.IsAccepted() || !HaveTyped(living)) return first;
  return {false, PropertyError::Refused, L"Not all of what was typed is committed yet."};
}

SetResult EditGroup::State::CheckAll() {
  SetResult first;
  refused.reset();
  for (const auto& core : Living()) {
    if (!core->HasTyped()) continue;
    if (core->IsBusy())
      return {false, PropertyError::Refused, L"An edit is being committed or checked."};
    NoteRefusal(core, core->Judge(Purpose::Check), first);
  }
  return first;
}

void EditGroup::State::NoteRefusal(const std::shared_ptr<EditCore>& core, SetResult result,
                                   SetResult& first) {
  if (!first.IsAccepted() || result.IsAccepted()) return;
  refused = core;
  first = std::move(result);
}

EditGroup::State::Cores EditGroup::State::Living() const {
  Cores living;
  living.reserve(members.size());
  for (const Member& each : members) {
    if (auto core = each.core.lock()) living.push_back(std::move(core));
  }
  return living;
}

/// A function that is called before it may have changed the state, and then all were told of that.
Subscription EditGroup::State::OnState(const RepeatingCallback<void(const bool&)>& callback) {
  if (!callback) return {};
  return callbacks.Add([self = weak_from_this(), callback](const bool& hasTyped) {
    const auto keep = self.lock();
    if (keep != nullptr && keep->told == hasTyped) callback(hasTyped);
  });
}

void EditGroup::State::Tell() {
  const bool now = HaveTyped(Living());
  if (std::exchange(told, now) != now) callbacks.CallAll(now);
}

EditGroup::EditGroup() : state(std::make_shared<State>()) {}
EditGroup::~EditGroup() { state->End(); }

void EditGroup::Add(const EditSession& session) {
  const auto keep = state;
  keep->Add(session.core);
}

void EditGroup::Remove(const EditSession& session) {
  const auto keep = state;
  keep->Remove(session.core);
}

SetResult EditGroup::CommitAll() {
  const auto keep = state;
  return keep->CommitAll();
}

SetResult EditGroup::CheckAll() {
  const auto keep = state;
  return keep->CheckAll();
}

void EditGroup::RevertAll() {
  for (const auto& core : state->Living()) core->Revert();
}

bool EditGroup::HasTyped() const { return State::HaveTyped(state->Living()); }

bool EditGroup::WasRefusedFirst(const EditSession& session) const {
  return state->IsRefused(session.core);
}

Subscription EditGroup::OnState(const RepeatingCallback<void(const bool&)>& callback) {
  return state->OnState(callback);
}

}  // namespace DataBinding

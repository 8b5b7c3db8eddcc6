// SPDX-License-Identifier: Apache-2.0
// This file holds what a session and its group ask of the core.

#include "DataBinding/framework/EditSession.h"

#include <algorithm>
#include <utility>

#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/framework/EditGroup.h"

namespace DataBinding {

using details::EditCore;
using Purpose = EditCore::Purpose;

namespace {

bool HaveTyped(const std::vector<std::shared_ptr<EditCore>>& cores) {
  return std::ranges::any_of(cores, [](const auto& core) { return core->HasTyped(); });
}

}  // namespace

EditSession::EditSession(std::shared_ptr<EditCore> made) : core(std::move(made)) { core->Begin(); }

EditSession::~EditSession() {
  if (core != nullptr) core->End();
}

EditSession& EditSession::operator=(EditSession&& other) noexcept {
  if (this == &other) return *this;
  const auto ended = std::exchange(core, std::move(other.core));
  if (ended != nullptr) ended->End();
  return *this;
}

// Each call keeps the core, since the functions of the application may end the session.

EditState EditSession::State() const noexcept {
  return core == nullptr ? EditState::Absent : core->State();
}

VtrString EditSession::Reason() const { return core == nullptr ? VtrString() : core->Reason(); }

bool EditSession::HasTyped() const noexcept { return core != nullptr && core->HasTyped(); }

Subscription EditSession::OnState(const RepeatingCallback<void(const EditState&)>& callback) {
  return core == nullptr ? Subscription() : core->OnState(callback);
}

void EditSession::Typed() {
  if (const auto keep = core) keep->Typed();
}

SetResult EditSession::Check() { return HasTyped() ? Judge(Purpose::Check) : SetResult(); }
SetResult EditSession::Commit() { return Judge(Purpose::Commit); }
SetResult EditSession::Overwrite() { return Judge(Purpose::Overwrite); }

SetResult EditSession::Judge(Purpose purpose) {
  const auto keep = core;
  return keep == nullptr ? SetResult() : keep->Judge(purpose);
}

void EditSession::Revert() {
  if (const auto keep = core) keep->Revert();
}

void EditSession::WhenAbsent(RepeatingCallback<void()> absent) {
  if (const auto keep = core) keep->WhenAbsent(std::move(absent));
}

void EditSession::WhenAskedAgain(RepeatingCallback<void(const SetResult&)> askedAgain) {
  if (core != nullptr) core->WhenAskedAgain(std::move(askedAgain));
}

void EditGroup::Add(const EditSession& session) {
  std::erase_if(cores, [](const auto& core) { return core.expired(); });
  cores.push_back(session.core);
}

/// A validator may accept an edit once another one is filed. So the refused ones are committed
/// again as long as that goes on. The group may end meanwhile.
SetResult EditGroup::CommitAll() {
  const auto living = Living();
  FirstFailure failure;
  SetResult first;
  bool goesOn = true;
  for (std::size_t round = 0; goesOn && round < living.size(); ++round) {
    first = {};
    goesOn = false;
    for (const auto& core : living) {
      if (!core->HasTyped()) continue;
      SetResult result;
      failure.Try([&] { result = core->Judge(Purpose::Commit); });
      goesOn = goesOn || !core->HasTyped();
      if (first.IsAccepted() && !result.IsAccepted()) first = std::move(result);
    }
    goesOn = goesOn && !first.IsAccepted();
  }
  failure.Rethrow();
  if (!first.IsAccepted() || !HaveTyped(living)) return first;
  return {false, PropertyError::Refused, L"Not all of what was typed is committed yet."};
}

void EditGroup::RevertAll() {
  for (const auto& core : Living()) core->Revert();
}

bool EditGroup::HasTyped() const { return HaveTyped(Living()); }

/// The functions of one edit may end others, and add some.
std::vector<std::shared_ptr<EditCore>> EditGroup::Living() const {
  std::vector<std::shared_ptr<EditCore>> living;
  living.reserve(cores.size());
  for (const auto& each : cores) {
    if (auto core = each.lock()) living.push_back(std::move(core));
  }
  return living;
}

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/EditSession.h"

#include <utility>

namespace DataBinding {

using details::EditCore;
using Purpose = EditCore::Purpose;

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

}  // namespace DataBinding

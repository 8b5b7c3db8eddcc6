// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/details/EditCore.h"

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/details/FirstFailure.h"

namespace DataBinding::details {

using Framework::BindChange;

namespace {

SetResult Refuse(PropertyError error, const VtrString& reason) {
  return {false, error, reason, reason};
}

}  // namespace

EditCore::~EditCore() = default;

void EditCore::Begin() {
  subscription = base->SubscribeToChanges([self = weak_from_this()](BindChange change) {
    if (const auto keep = self.lock()) keep->Follow(change);
  });
  Tell();
  told = StateNow();
}

void EditCore::End() {
  base = nullptr;
  subscription.Cancel();
  checks.Cancel();
}

EditState EditCore::State() const noexcept { return IsJoined() ? told : EditState::Absent; }

/// A change that the edit itself makes is looked at when it is set.
void EditCore::Follow(BindChange change) {
  if (step == Step::Setting) step = Step::SettingAndChanged;
  if (step == Step::SettingAndChanged || !IsJoined()) return;
  ShowOrCollide(change);
  Settle();
}

void EditCore::ShowOrCollide(BindChange change) { isTyped ? Collide(change) : Tell(); }

/// What was typed stays in the widget. A record that comes after an absence may be another one.
void EditCore::Collide(BindChange change) {
  if (change != BindChange::Value) conflict = Conflict::Record;
  if (!base->HasValue()) return TellAbsent();
  if (conflict == Conflict::Record) return;
  conflict = IsPresentAsShown() ? Conflict::None : Conflict::Value;
  if (conflict == Conflict::None || !IsJoined() || !IsPresentAsRead() || !IsJoined()) return;
  ForgetTyped();
  NoteReadAsShown();
}

void EditCore::Typed() {
  if (step != Step::None || !IsJoined()) return;
  {
    const ScopedValue reading(step, Step::Committing);
    widget = widget == Widget::Written ? Widget::Edited : widget;
    if (!Read() || !IsJoined()) return;
  }
  isTyped = conflict != Conflict::None || !IsReadAsShown();
  if (!isTyped) ForgetTyped();
  Settle();
}

void EditCore::Revert() {
  if (step != Step::None || !IsJoined()) return;
  ForgetTyped();
  Tell();
  Settle();
}

void EditCore::WhenAbsent(RepeatingCallback<void()> callback) {
  absent = std::move(callback);
  if (IsJoined() && base->HasValue()) return;
  widget = Widget::Edited;
  TellAbsent();
  Settle();
}

SetResult EditCore::Judge(Purpose purpose) {
  const bool needsTyped = purpose == Purpose::Commit || purpose == Purpose::Overwrite;
  if (step != Step::None || (needsTyped && !isTyped)) return {};
  SetResult result;
  FirstFailure failure;
  failure.Try([&] {
    result = Take(purpose);
    if (needsTyped) NoteRefusal(result);
    checks.Cancel();
    if (result.error != PropertyError::Refused || !IsJoined()) return;
    checks = SubscribeToChecks([self = weak_from_this()] {
      if (const auto keep = self.lock()) keep->AskAgain();
    });
  });
  failure.Try([this] { Settle(); });
  failure.Rethrow();
  return result;
}

/// Reads, converts and validates what the widget holds, and finishes with it.
SetResult EditCore::Take(Purpose purpose) {
  const ScopedValue committing(step, Step::Committing);
  if (widget == Widget::Written) widget = Widget::Edited;
  if (!IsJoined()) return Gone();
  if (!Read()) return Refuse(PropertyError::Refused, L"The widget is gone.");
  if (!IsJoined()) return Gone();
  if (conflict == Conflict::None && IsReadAsShown() && base->HasValue()) {
    if (purpose != Purpose::Check) ForgetTyped();
    return {};
  }
  SetResult parsed = Parse();
  if (!IsJoined()) return Gone();
  if (!parsed.IsAccepted()) return parsed;
  if (conflict != Conflict::None && purpose != Purpose::Overwrite)
    return Refuse(PropertyError::Conflict, WhyInConflict());
  return purpose == Purpose::Check ? CheckParsed() : Set();
}

/// Sets the edit and shows what has become of it. A bind that throws may have changed all the same.
SetResult EditCore::Set() {
  SetResult result;
  FirstFailure failure;
  step = Step::Setting;
  const bool hasReturned = failure.Try([&] { result = SetParsed(); });
  const bool isChanged = std::exchange(step, Step::Committing) == Step::SettingAndChanged;
  const bool isTaken = hasReturned ? result.IsAccepted() : isChanged;
  if (isTaken) ForgetTyped();
  // A change that waits is shown when it is told.
  if (isTaken && (isChanged || !result.waits)) failure.Try([this] { ShowUnlessSame(); });
  if (!isTaken && isChanged) failure.Try([this] { ShowOrCollide(BindChange::Value); });
  failure.Rethrow();
  return result;
}

void EditCore::NoteRefusal(const SetResult& result) {
  if (result.IsAccepted() || result.error == PropertyError::Conflict) return;
  refusal = result.reason.IsEmpty() ? result.text : result.reason;
}

/// Checks the refused edit once more, since a property has changed that the validator reads.
void EditCore::AskAgain() {
  if (step != Step::None) return;
  const SetResult result = Take(Purpose::Check);
  if (!refusal.IsEmpty()) {
    refusal = {};
    NoteRefusal(result);
  }
  if (IsJoined()) askedAgain(result);
  Settle();
}

SetResult EditCore::Gone() const {
  const wchar_t* const text = base == nullptr ? L"The join is gone." : L"The bind is gone.";
  return {false, PropertyError::NoSource, text};
}

VtrString EditCore::WhyInConflict() const {
  return conflict == Conflict::Record ? L"Another record has come since this was typed."
                                      : L"The value has changed since this was typed.";
}

void EditCore::ForgetTyped() {
  isTyped = false;
  conflict = Conflict::None;
  refusal = {};
  checks.Cancel();
}

/// Shows the value unless the widget holds it already. The source may have made another value of
/// the edit, and since the edit was read the widget may have been told of another value, or of
/// none.
void EditCore::ShowUnlessSame() {
  if (!IsJoined()) return;
  const bool isSame = widget == Widget::Edited && IsPresentAsParsed();
  if (isSame) return NoteReadAsShown();
  if (IsJoined()) Tell();
}

void EditCore::Tell() {
  const ScopedValue telling(step, Step::Telling);
  if (!base->HasValue()) return TellAbsent();
  if (!ShowPresent() || !IsJoined()) return;
  widget = Widget::Written;
  checks.Cancel();
  Write();
}

void EditCore::TellAbsent() {
  const ScopedValue telling(step, Step::Telling);
  ForgetShown();
  checks.Cancel();
  if (std::exchange(widget, Widget::ToldAbsent) != Widget::ToldAbsent) absent();
}

EditState EditCore::StateNow() const {
  if (!base->HasValue()) return EditState::Absent;
  if (conflict != Conflict::None) return EditState::Conflict;
  if (!refusal.IsEmpty()) return EditState::Refused;
  if (isTyped) return EditState::Typed;
  return base->IsReadOnly() ? EditState::ReadOnly : EditState::Clean;
}

/// Tells the state if it has changed, once nothing goes on any more.
void EditCore::Settle() {
  if (step != Step::None || !IsJoined()) return;
  const EditState now = StateNow();
  VtrString reason = conflict == Conflict::None ? refusal : WhyInConflict();
  const bool isSame = std::exchange(told, now) == now && toldReason == reason;
  toldReason = std::move(reason);
  if (!isSame) states.Call(now);
}

}  // namespace DataBinding::details

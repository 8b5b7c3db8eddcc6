// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/details/EditCore.h"

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
  if (IsJoined()) told = StateNow();
}

void EditCore::End() {
  base = nullptr;
  subscription.Cancel();
  checks.Cancel();
  states = CallbackList<EditState>();
}

EditState EditCore::State() const noexcept { return IsJoined() ? told : EditState::Absent; }

/// A function that is called before it may have changed the state, and then all were told of that.
Subscription EditCore::OnState(const RepeatingCallback<void(const EditState&)>& callback) {
  if (!callback) return {};
  return states.Add([self = weak_from_this(), callback](const EditState& state) {
    const auto keep = self.lock();
    if (keep != nullptr && keep->IsJoined() && keep->told == state) callback(state);
  });
}

template <class Operation>
void EditCore::Do(Operation operation) {
  FirstFailure failure;
  failure.Try(operation);
  failure.Try([this] { Settle(); });
  failure.Rethrow();
}

/// A change that the edit itself makes is looked at when it is set.
void EditCore::Follow(BindChange change) {
  if (step == Step::Setting) step = Step::SettingAndChanged;
  if (step == Step::SettingAndChanged || !IsJoined()) return;
  Do([&] { isTyped ? Collide(change) : Tell(); });
}

/// The widget keeps the edit. A record that comes after an absence may be another one.
void EditCore::Collide(BindChange change) {
  const ScopedValue looking(step, Step::Committing);
  if (change != BindChange::Value || base->Record() != record) conflict = Conflict::Record;
  refusal = {};
  if (!base->HasValue()) return TellAbsent();
  isAbsent = false;
  if (conflict == Conflict::Record) return;
  conflict = Conflict::Value;
  const bool isAsBefore = IsPresentAsShown();
  if (isAsBefore) conflict = Conflict::None;
  if (!isAsBefore && IsJoined()) TakeIfPresent();
}

/// Ends the edit where the source has come to have what the widget holds.
void EditCore::TakeIfPresent() {
  if (!Read() || !IsJoined() || !IsPresentAsRead() || !IsJoined()) return;
  ForgetTyped();
  NoteReadAsShown(false);
}

/// An edit that cannot be read, because that throws, is an edit all the same.
void EditCore::Typed() {
  isTypedAnew = step == Step::Setting || step == Step::SettingAndChanged;
  if (step != Step::None || !IsJoined()) return;
  isTyped = true;
  Do([this] {
    const ScopedValue reading(step, Step::Committing);
    if (widget == Widget::Written) widget = Widget::Edited;
    if (conflict == Conflict::Value) return TakeIfPresent();
    if (Read() && IsJoined() && conflict == Conflict::None && IsReadAsShown()) ForgetTyped();
  });
}

void EditCore::Revert() {
  if (step != Step::None) return;
  ForgetTyped();
  if (IsJoined()) Do([this] { Tell(); });
}

void EditCore::WhenAbsent(RepeatingCallback<void()> callback) {
  absent = std::move(callback);
  if (IsJoined() && base->HasValue()) return;
  widget = Widget::Edited;
  Do([this] { TellAbsent(); });
}

SetResult EditCore::Judge(Purpose purpose) {
  const bool needsTyped = purpose == Purpose::Commit || purpose == Purpose::Overwrite;
  if (step != Step::None || (needsTyped && !isTyped)) return {};
  SetResult result;
  Do([&] {
    result = Take(purpose);
    if (needsTyped) NoteRefusal(result);
    checks.Cancel();
    if (result.error != PropertyError::Refused || !IsJoined()) return;
    checks = SubscribeToChecks([self = weak_from_this()] {
      if (const auto keep = self.lock()) keep->AskAgain();
    });
  });
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
  if (!parsed.IsAccepted()) return parsed;
  if (!IsJoined()) return Gone();
  if (IsInConflict() && purpose != Purpose::Overwrite) {
    return Refuse(PropertyError::Conflict, WhyInConflict());
  }
  return purpose == Purpose::Check ? CheckParsed() : Set();
}

/// A join, for which nothing counts as typed, is never in conflict.
bool EditCore::IsInConflict() {
  if (!isTyped || !base->HasValue()) return false;
  if (base->Record() != record) conflict = Conflict::Record;
  return conflict != Conflict::None;
}

/// Sets the edit and shows what has become of it. A bind that throws may have changed all the same.
/// A listener of the bind may run an event loop, in which the user goes on typing: that is the next
/// edit.
SetResult EditCore::Set() {
  SetResult result;
  isTypedAnew = false;
  FirstFailure failure;
  step = Step::Setting;
  const bool hasReturned = failure.Try([&] { result = SetParsed(); });
  const bool isChanged = std::exchange(step, Step::Committing) == Step::SettingAndChanged;
  const bool isTaken =
      hasReturned ? result.IsAccepted() : isChanged && IsJoined() && IsPresentAsParsed();
  if (isTaken) ForgetTyped();
  if (isTaken && isTypedAnew && IsJoined()) {
    NoteReadAsShown(true);
    isTyped = true;
  }
  // A change that waits is shown when it is told.
  if (isTaken && result.waits && !isChanged) {
    NoteReadAsShown(true);
  } else if (isTaken || isChanged) {
    failure.Try([this] { ShowUnlessSame(); });
  }
  failure.Rethrow();
  return result;
}

/// Shows the value unless the widget holds it already. The source may have made another value of
/// the edit, and since the edit was read the widget may have been told of another value, or of
/// none.
void EditCore::ShowUnlessSame() {
  if (!IsJoined()) return;
  if (isTyped) return Collide(BindChange::Value);
  const bool isSame = widget == Widget::Edited && IsPresentAsParsed();
  if (!IsJoined()) return;
  if (!isSame) return Tell();
  NoteReadAsShown(true);
  record = base->Record();
}

void EditCore::NoteRefusal(const SetResult& result) {
  if (result.IsAccepted() || result.error == PropertyError::Conflict) return;
  refusal = result.reason.IsEmpty() ? result.text : result.reason;
  if (refusal.IsEmpty()) refusal = L"The value was refused.";
}

/// Checks the refused edit once more, since a property has changed that the validator reads.
void EditCore::AskAgain() {
  if (step != Step::None || !IsJoined()) return;
  Do([this] {
    const SetResult result = Take(Purpose::Check);
    if (!refusal.IsEmpty()) {
      refusal = {};
      NoteRefusal(result);
    }
    if (IsJoined()) askedAgain(result);
  });
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

void EditCore::Tell() {
  const ScopedValue telling(step, Step::Telling);
  record = base->Record();
  const Present present = ShowPresent();
  if (!IsJoined()) return;
  if (present == Present::Nothing) return TellAbsent();
  isAbsent = false;
  if (present == Present::NoConverter) return;
  widget = Widget::Written;
  checks.Cancel();
  Write();
}

void EditCore::TellAbsent() {
  const ScopedValue telling(step, Step::Telling);
  isAbsent = true;
  ForgetShown();
  checks.Cancel();
  if (std::exchange(widget, Widget::ToldAbsent) != Widget::ToldAbsent) absent();
}

EditState EditCore::StateNow() const {
  if (isAbsent || !base->HasValue()) return EditState::Absent;
  if (conflict != Conflict::None) return EditState::Conflict;
  if (!refusal.IsEmpty()) return EditState::Refused;
  if (isTyped) return EditState::Typed;
  return base->IsReadOnly() ? EditState::ReadOnly : EditState::Clean;
}

/// Tells the state if it has changed, or whether something is typed, once nothing goes on any more.
void EditCore::Settle() {
  if (step != Step::None || !IsJoined()) return;
  const EditState now = StateNow();
  VtrString reason = refusal;
  if (now == EditState::Conflict && refusal.IsEmpty()) reason = WhyInConflict();
  if (now == EditState::Absent && !isTyped) reason = {};
  const bool isStateSame = std::exchange(told, now) == now;
  const bool isTypedSame = std::exchange(toldTyped, isTyped) == isTyped;
  const bool isSame = isStateSame && isTypedSame && toldReason == reason;
  toldReason = std::move(reason);
  if (!isSame) states.CallAll(now);
}

}  // namespace DataBinding::details

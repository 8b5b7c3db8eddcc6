// SPDX-License-Identifier: Apache-2.0
/// TwoWay joins a bind to a widget that shows its value and lets the user edit it.
///
/// The widget is given as a pair of functions. `write` is called at once and on each change of the
/// bind. When the user has finished an edit, the application calls Commit, which calls `read`, and
/// converts, validates and sets its answer. When an edit is refused, the widget stays as it is and
/// the result says why. The join owns the functions and neither bind nor widget. Bind and join may
/// end in any order, also inside the join's own functions, and none of these is called after that.
/// A join is used on one thread, that of the provider tree.
///
///   auto size = TwoWay(bind, [&] { return box.Text(); }, [&](const VtrString& t) { box.Show(t); },
///                      TextConverter<int>());
///   box.onReturn = [&] { hint.Show(size.Commit().text); };
///
/// Check says what Commit would answer, and sets nothing, so that a box can turn red while the user
/// types. What a property refuses may depend on other properties, which it names (Property.h). When
/// one of these changes, the join asks again about the edit that was refused, and tells the outcome
/// to the function of WhenAskedAgain. It leaves the widget as it is, and sets nothing.
#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/ScopedValue.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/details/FirstFailure.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBinding/framework/TextConverter.h"

namespace DataBinding {

namespace details {

/// A ShownForm notes the text, or other form, that stands for the bind's value. It knows the form
/// only where forms can be compared.
template <class W>
class ShownForm {
 public:
  static constexpr bool isKnown = std::copyable<W> && std::equality_comparable<W>;

  void Note([[maybe_unused]] const W& form) {
    if constexpr (isKnown) shown = form;
  }
  void Forget() { shown.reset(); }
  [[nodiscard]] bool Is([[maybe_unused]] const W& form) const {
    if constexpr (isKnown) return shown && *shown == form;
    return false;
  }

 private:
  std::optional<std::conditional_t<isKnown, W, bool>> shown;
};

/// A join shares this state with its subscription. So the state outlasts a function that ends the
/// join.
template <class T, class W>
class TwoWayState : public std::enable_shared_from_this<TwoWayState<T, W>> {
 public:
  TwoWayState(Framework::IDataBind<T>& joined, RepeatingCallback<W()> reader,
              RepeatingCallback<void(const W&)> writer, Converter<T, W> conversion,
              RepeatingCallback<VtrString(const T&)> check)
      : bind(&joined),
        bindLiveness(joined.GetLiveness()),
        read(std::move(reader)),
        write(std::move(writer)),
        converter(std::move(conversion)),
        validate(std::move(check)) {}

  /// Shows the value now, and at each change until the end.
  void Begin(Subscription toChanges) {
    subscription = std::move(toChanges);
    Show();
  }
  /// Called when the join is gone. The widget may be gone too, so none of the functions is called
  /// from now on.
  void End() {
    bind = nullptr;
    subscription.Cancel();
    checks.Cancel();
  }
  /// Shows the bind's value, or that there is none. A change that the join's own edit makes is
  /// looked at when the edit is over.
  void Show() {
    if (step == Step::Setting) step = Step::SettingAndChanged;
    if (step != Step::SettingAndChanged && IsJoined()) Tell(bind->Get());
  }
  void WhenAbsent(RepeatingCallback<void()> callback) {
    absent = std::move(callback);
    if (IsJoined() && bind->HasValue()) return;
    widget = Widget::Edited;
    TellAbsent();
  }
  void WhenAskedAgain(RepeatingCallback<void(const SetResult&)> callback) {
    askedAgain = std::move(callback);
  }
  SetResult Commit() { return Judge(&TwoWayState::Set); }
  SetResult Check() { return Judge(&TwoWayState::CheckOnly); }

 private:
  /// Tells what the join is doing.
  enum class Step {
    None,
    Committing,         ///< it reads, converts and checks an edit
    Setting,            ///< it sets the edit, and shows no change meanwhile
    SettingAndChanged,  ///< it sets the edit, and the bind has changed since
    Telling             ///< it tells the widget a value, or that there is none
  };
  /// Tells what the widget holds.
  enum class Widget {
    Edited,     ///< it holds what it began with, or an edit of the user
    Written,    ///< it holds what was written
    ToldAbsent  ///< it was told that there is no value, and has been told no other since
  };

  /// Returns false once the join or its bind has ended. Any function that is called may have ended
  /// it.
  [[nodiscard]] bool IsJoined() const noexcept { return bind != nullptr && bindLiveness.IsValid(); }
  [[nodiscard]] SetResult Gone() const {
    const wchar_t* const text = bind == nullptr ? L"The join is gone." : L"The bind is gone.";
    return {false, PropertyError::NoSource, text};
  }
  static SetResult Refused(const VtrString& reason) {
    return {false, PropertyError::Refused, reason, reason};
  }
  /// Takes what the widget holds, and asks again about it from now on if it is refused.
  template <class Finish>
  SetResult Judge(Finish finish) {
    if (step != Step::None) return {};
    SetResult result = Take(finish);
    checks.Cancel();
    if (result.error == PropertyError::Refused && IsJoined()) {
      checks = bind->SubscribeToChecks(BindWeak(this->weak_from_this(), &TwoWayState::AskAgain));
    }
    return result;
  }
  /// Reads, converts and validates what the widget holds, and finishes with it.
  template <class Finish>
  SetResult Take(Finish finish) {
    const ScopedValue committing(step, Step::Committing);
    if (widget == Widget::Written) widget = Widget::Edited;
    if (!IsJoined()) return Gone();
    if (read.IsCancelled()) return Refused(L"The widget is gone.");
    const W typed = read();
    if (!IsJoined()) return Gone();
    if (shown.Is(typed) && bind->HasValue()) return {};
    const PropertyValue<T> edited = Parse(typed);
    if (!edited) return Refused(edited.text);
    if (!IsJoined()) return Gone();
    const VtrString reason = ReasonAgainst(*edited, validate);
    if (!reason.IsEmpty()) return Refused(reason);
    return (this->*finish)(*edited, typed);
  }
  [[nodiscard]] SetResult CheckOnly(const T& edited, const W& /*typed*/) {
    return IsJoined() ? bind->Check(edited) : Gone();
  }
  /// Checks the refused edit once more, since a property has changed that the validator reads.
  void AskAgain() {
    if (step != Step::None) return;
    const SetResult result = Take(&TwoWayState::CheckOnly);
    if (IsJoined()) askedAgain(result);
  }
  [[nodiscard]] PropertyValue<T> Parse(const W& typed) const {
    if (!converter.parse.IsCancelled()) return converter.parse(typed);
    return {{}, PropertyError::Refused, L"The converter is gone."};
  }
  /// Sets the edit and shows what has become of it. A bind that throws may have changed all the
  /// same.
  SetResult Set(const T& edited, const W& typed) {
    if (!IsJoined()) return Gone();
    SetResult result;
    bool isAccepted = false;
    FirstFailure failure;
    step = Step::Setting;
    failure.Try([&] {
      result = bind->Set(edited);
      isAccepted = result.IsAccepted();
    });
    const bool isChanged = std::exchange(step, Step::Committing) == Step::SettingAndChanged;
    // A change that waits is shown when it is told.
    isAccepted = isAccepted && !result.waits;
    if (isAccepted || isChanged) failure.Try([&] { ShowUnlessSame(edited, typed); });
    failure.Rethrow();
    return result;
  }
  /// Shows the value unless the widget holds it already. The source may have made another value of
  /// the edit, and since the edit was read the widget may have been told of another value, or of
  /// none.
  void ShowUnlessSame(const T& edited, const W& typed) {
    if (!IsJoined()) return;
    const auto now = bind->Get();
    if constexpr (std::equality_comparable<T>) {
      if (now && *now == edited && widget == Widget::Edited) return shown.Note(typed);
    }
    Tell(now);
  }
  void Tell(const PropertyValue<T>& now) { return now ? Write(*now) : TellAbsent(); }
  void Write(const T& value) {
    const ScopedValue telling(step, Step::Telling);
    if (converter.show.IsCancelled()) return;
    const W form = converter.show(value);
    if (!IsJoined()) return;
    shown.Note(form);
    widget = Widget::Written;
    checks.Cancel();
    write(form);
  }
  void TellAbsent() {
    const ScopedValue telling(step, Step::Telling);
    shown.Forget();
    checks.Cancel();
    if (std::exchange(widget, Widget::ToldAbsent) != Widget::ToldAbsent) absent();
  }

  Framework::IDataBind<T>* bind;
  WeakReference bindLiveness;
  Subscription subscription;
  /// Is active from a refused edit until the next edit or value.
  Subscription checks;
  RepeatingCallback<W()> read;
  RepeatingCallback<void(const W&)> write;
  RepeatingCallback<void()> absent;
  RepeatingCallback<void(const SetResult&)> askedAgain;
  Converter<T, W> converter;
  RepeatingCallback<VtrString(const T&)> validate;
  ShownForm<W> shown;
  Step step = Step::None;
  Widget widget = Widget::Edited;
};

}  // namespace details

/// A TwoWayJoin keeps bind and widget joined while it lives. It must outlive the widget's handlers
/// that use it: declare it after what it writes, and take such a handler off before the join ends.
template <class T, class W>
class [[nodiscard]] TwoWayJoin {
 public:
  /// Does what TwoWay does.
  TwoWayJoin(Framework::IDataBind<T>& bind, RepeatingCallback<W()> read,
             RepeatingCallback<void(const W&)> write, Converter<T, W> converter,
             RepeatingCallback<VtrString(const T&)> validate)
      : state(std::make_shared<details::TwoWayState<T, W>>(
            bind, std::move(read), std::move(write), std::move(converter), std::move(validate))),
        ending([shared = state] { shared->End(); }) {
    state->Begin(bind.SubscribeToChanges([shared = state] { shared->Show(); }));
  }

  /// Calls the function when the bind has no value any more, and now if it has none, so that a
  /// widget can grey out; the next `write` says that there is one again. The join does not tell of
  /// the bind's own end. The function takes the place of the former one.
  void WhenAbsent(RepeatingCallback<void()> absent) {
    const auto keep = state;
    if (keep != nullptr) keep->WhenAbsent(std::move(absent));
  }

  /// Sets what the widget holds and says whether the value changed. On success the text is empty,
  /// and `changed` is false where there was nothing to change. `write` is not called for the edit,
  /// unless the data source made another value of it; values without == count as another value each
  /// time. Where the widget already holds what stands for the value, nothing is converted or set,
  /// so that a user who only passes through loses no digits.
  ///
  /// Does nothing inside `write`, inside the function of WhenAbsent, inside a commit, and on a join
  /// that was moved from, so that widgets which announce programmatic changes as edits do no harm.
  /// Stops as soon as one of the functions has ended the join or the bind. Refuses the edit where
  /// it needs a function that was made by BindWeak and has lost its object.
  SetResult Commit() {
    const auto keep = state;
    return keep == nullptr ? SetResult() : keep->Commit();
  }
  /// Says what Commit would answer, and sets nothing: the widget is read, and what it holds is
  /// converted and validated, also by the property. Does nothing where Commit does nothing.
  [[nodiscard]] SetResult Check() {
    const auto keep = state;
    return keep == nullptr ? SetResult() : keep->Check();
  }
  /// Calls the function with the outcome when the join has asked again about a refused edit. That
  /// happens each time that a property changes which the validator of the bind's property reads,
  /// from the Commit or Check that was refused until the next one, or until the widget is written
  /// or told that there is no value. The function takes the place of the former one, and may
  /// commit.
  void WhenAskedAgain(RepeatingCallback<void(const SetResult&)> askedAgain) {
    const auto keep = state;
    if (keep != nullptr) keep->WhenAskedAgain(std::move(askedAgain));
  }

 private:
  std::shared_ptr<details::TwoWayState<T, W>> state;
  Subscription ending;
};

/// Joins a bind of values of type T to a widget that shows them as the converter says. The
/// validator answers why an edit is refused, or an empty text to accept it. A validator that was
/// made by BindWeak refuses every edit once its object is gone.
template <class T, class Read, class Write, class W = std::invoke_result_t<Read&>>
[[nodiscard]] TwoWayJoin<T, W> TwoWay(
    Framework::IDataBind<T>& bind, Read read, Write write, Converter<T, W> converter,
    std::type_identity_t<RepeatingCallback<VtrString(const T&)>> validate = {}) {
  return {bind, std::move(read), std::move(write), std::move(converter), std::move(validate)};
}

/// Does the same for a widget that shows the value as it is.
template <class T, class Read, class Write>
[[nodiscard]] TwoWayJoin<T, T> TwoWay(Framework::IDataBind<T>& bind, Read read, Write write) {
  return TwoWay(bind, std::move(read), std::move(write), SameValue<T>());
}

}  // namespace DataBinding

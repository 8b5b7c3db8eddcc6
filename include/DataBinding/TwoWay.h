/// TwoWay: joins a bind to a widget that shows its value and lets the user edit it.
///
/// The widget is a pair of functions. `write` is called at once and on each change of the bind;
/// when the user has finished an edit, the application calls Commit, which converts, validates and
/// sets what `read` gives. A refused edit leaves the widget alone and says why. The join owns the
/// functions and neither bind nor widget; bind and join may end in any order, the join even inside
/// its own functions. One thread, that of the provider tree.
///
///   auto size = TwoWay(bind, [&] { return box.Text(); }, [&](const VtrString& t) { box.Show(t); },
///                      TextConverter<int>());
///   box.onReturn = [&] { hint.Show(size.Commit().text); };
#pragma once

#include <concepts>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#include "DataBinding/IDataBind.h"
#include "DataBinding/TextConverter.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/FirstFailure.h"
#include "DataBinding/foundation/Meanwhile.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

namespace details {

/// The text, or other form, that stands for the bind's value. Known where forms can be compared.
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

/// What a join shares with its subscription, so that it outlasts the functions that end the join.
template <class T, class W>
class TwoWayState {
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

  /// Shows the bind's value, or that there is none. An edit of ours is looked at when it is over.
  void Show() {
    isChanged = true;
    if (isSetting || !bindLiveness.IsValid()) return;
    const auto value = bind->Get();
    return value ? Write(*value) : TellAbsent();
  }
  void WhenAbsent(RepeatingCallback<void()> callback) {
    absent = std::move(callback);
    if (bindLiveness.IsValid() && bind->HasValue()) return;
    isAbsent = true;
    absent();
  }
  SetResult Commit() {
    if (isWriting || isCommitting) return {};
    const Meanwhile committing(isCommitting, true);
    isChanged = isWritten = false;
    const W typed = read();
    if (shown.Is(typed) && bindLiveness.IsValid() && bind->HasValue()) return {};
    const PropertyValue<T> edited = converter.parse(typed);
    if (!edited) return Refused(edited.text);
    const VtrString reason = validate ? validate(*edited) : VtrString();
    if (!reason.IsEmpty()) return Refused(reason);
    return Set(*edited, typed);
  }

 private:
  static SetResult Refused(const VtrString& reason) {
    return {false, PropertyError::Refused, reason, reason};
  }
  /// A bind that throws may have changed all the same.
  SetResult Set(const T& edited, const W& typed) {
    if (!bindLiveness.IsValid()) return {false, PropertyError::NoSource, L"The bind is gone."};
    SetResult result;
    bool isAccepted = false;
    FirstFailure failure;
    failure.Try([&] {
      const Meanwhile setting(isSetting, true);
      result = bind->Set(edited);
      isAccepted = result.IsAccepted();
    });
    if (isAccepted || isChanged) failure.Try([&] { ShowUnlessSame(edited, typed); });
    failure.Rethrow();
    return result;
  }
  void Write(const T& value) {
    const Meanwhile writing(isWriting, true);
    isAbsent = false;
    const W form = converter.show(value);
    shown.Note(form);
    isWritten = true;
    write(form);
  }
  void TellAbsent() {
    shown.Forget();
    if (std::exchange(isAbsent, true)) return;
    absent();
  }
  /// The source may have made something else of the value, and the widget may have been given
  /// another one since it was read.
  void ShowUnlessSame(const T& edited, const W& typed) {
    if (!bindLiveness.IsValid()) return;
    const auto now = bind->Get();
    if (!now) return TellAbsent();
    if constexpr (std::equality_comparable<T>) {
      if (!isWritten && *now == edited) return shown.Note(typed);
    }
    Write(*now);
  }

  Framework::IDataBind<T>* bind;
  WeakReference bindLiveness;
  RepeatingCallback<W()> read;
  RepeatingCallback<void(const W&)> write;
  RepeatingCallback<void()> absent;
  Converter<T, W> converter;
  RepeatingCallback<VtrString(const T&)> validate;
  ShownForm<W> shown;
  bool isCommitting = false;
  bool isSetting = false;
  bool isWriting = false;
  /// What happened since the commit began.
  bool isChanged = false;
  bool isWritten = false;
  bool isAbsent = false;
};

}  // namespace details

/// Keeps bind and widget joined while it lives. It must outlive the widget's handlers that use it:
/// declare it after what it writes, and take such a handler off before.
template <class T, class W>
class [[nodiscard]] TwoWayJoin {
 public:
  /// As TwoWay.
  TwoWayJoin(Framework::IDataBind<T>& bind, RepeatingCallback<W()> read,
             RepeatingCallback<void(const W&)> write, Converter<T, W> converter,
             RepeatingCallback<VtrString(const T&)> validate)
      : state(std::make_shared<details::TwoWayState<T, W>>(
            bind, std::move(read), std::move(write), std::move(converter), std::move(validate))),
        subscription(bind.SubscribeToChanges([shared = state] { shared->Show(); })) {
    state->Show();
  }

  /// Calls the function when the bind has no value any more, and now if it has none, so that a
  /// widget can grey out; the next `write` says that there is one again. The bind's own end is not
  /// told. Takes the place of the former function.
  void WhenAbsent(RepeatingCallback<void()> absent) {
    const auto keep = state;
    if (keep != nullptr) keep->WhenAbsent(std::move(absent));
  }

  /// Sets what the widget holds and says whether the value changed. On success the text is empty,
  /// and `changed` false where there was nothing to change. `write` is not called for it, unless
  /// the data source made another value of it; values without == count as another each time.
  /// Where the widget holds what stands for the value already, nothing is converted or set, so that
  /// who only passes through loses no digits. Does nothing inside `write`, inside a commit, and on
  /// a join that was moved from, so that widgets which announce programmatic changes as edits do no
  /// harm.
  SetResult Commit() {
    const auto keep = state;
    return keep == nullptr ? SetResult() : keep->Commit();
  }

 private:
  std::shared_ptr<details::TwoWayState<T, W>> state;
  Subscription subscription;
};

/// Joins a bind of values of type T to a widget that shows them as the converter says. What the
/// validator answers is why an edit is refused; an empty text accepts it.
template <class T, class Read, class Write, class W = std::invoke_result_t<Read&>>
[[nodiscard]] TwoWayJoin<T, W> TwoWay(
    Framework::IDataBind<T>& bind, Read read, Write write, Converter<T, W> converter,
    std::type_identity_t<RepeatingCallback<VtrString(const T&)>> validate = {}) {
  return {bind, std::move(read), std::move(write), std::move(converter), std::move(validate)};
}

/// The same for a widget that shows the value as it is.
template <class T, class Read, class Write>
[[nodiscard]] TwoWayJoin<T, T> TwoWay(Framework::IDataBind<T>& bind, Read read, Write write) {
  return TwoWay(bind, std::move(read), std::move(write), SameValue<T>());
}

}  // namespace DataBinding

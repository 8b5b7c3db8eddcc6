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
#include <type_traits>
#include <utility>

#include "DataBinding/IDataBind.h"
#include "DataBinding/TextConverter.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"

namespace DataBinding {

namespace details {

/// Keeps a flag set during a scope.
class Raised {
 public:
  explicit Raised(bool& raisedFlag) noexcept : flag(raisedFlag), before(raisedFlag) { flag = true; }
  Raised(const Raised&) = delete;
  Raised& operator=(const Raised&) = delete;
  ~Raised() { flag = before; }

 private:
  bool& flag;
  bool before;
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

  /// Shows the bind's value, if it has one. An edit of ours is looked at when it is over.
  void Show() {
    if (isCommitting || !bindLiveness.IsValid()) return;
    if (const auto value = bind->Get()) Write(*value);
  }
  SetResult Commit() {
    if (isWriting || isCommitting) return {};
    PropertyValue<T> edited = converter.parse(read());
    if (!edited) return Refused(edited.text);
    const VtrString reason = validate ? validate(*edited) : VtrString();
    if (!reason.IsEmpty()) return Refused(reason);
    if (!bindLiveness.IsValid()) return {false, PropertyError::NoSource, L"The bind is gone."};
    SetResult result = Set(*edited);
    if (result.IsAccepted()) ShowUnlessSame(*edited);
    return result;
  }

 private:
  static SetResult Refused(const VtrString& reason) {
    return {false, PropertyError::Refused, reason};
  }
  SetResult Set(const T& value) {
    const Raised committing(isCommitting);
    return bind->Set(value);
  }
  void Write(const T& value) {
    const Raised writing(isWriting);
    write(converter.show(value));
  }
  /// The source may have made something else of the value.
  void ShowUnlessSame(const T& committed) {
    if (!bindLiveness.IsValid()) return;
    const auto now = bind->Get();
    if (!now) return;
    if constexpr (std::equality_comparable<T>) {
      if (*now == committed) return;
    }
    Write(*now);
  }

  Framework::IDataBind<T>* bind;
  WeakReference bindLiveness;
  RepeatingCallback<W()> read;
  RepeatingCallback<void(const W&)> write;
  Converter<T, W> converter;
  RepeatingCallback<VtrString(const T&)> validate;
  bool isCommitting = false;
  bool isWriting = false;
};

}  // namespace details

/// Keeps bind and widget joined while it lives.
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

  /// Sets what the widget holds and says whether the value changed. `write` is not called for it,
  /// unless the data source made another value of it; values without == count as another each time.
  /// Does nothing inside `write`, inside a commit, and on a join that was moved from, so that
  /// widgets which announce programmatic changes as edits do no harm.
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

// SPDX-License-Identifier: Apache-2.0
/// TwoWay joins a bind to a widget that shows its value and lets the user edit it.
///
/// The widget is given as a pair of functions. `write` is called at once and on each change of the
/// bind. When the user has finished an edit, the application calls Commit, which calls `read`, and
/// converts, validates and sets its answer. When an edit is refused, the widget stays as it is and
/// the result says why. A join does not know what is being typed, so a change of the source
/// replaces it; an EditSession keeps it. The join owns the functions and neither bind nor widget.
/// Bind and join may end in any order, also inside the join's own functions, and none of these is
/// called after that. A join is used on one thread, that of the provider tree.
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

#include <type_traits>
#include <utility>

#include "DataBinding/foundation/Callback.h"
#include "DataBinding/framework/EditSession.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBinding/framework/TextConverter.h"

namespace DataBinding {

/// A TwoWayJoin keeps bind and widget joined while it lives. It must outlive the widget's handlers
/// that use it: declare it after what it writes, and take such a handler off before the join ends.
class [[nodiscard]] TwoWayJoin {
 public:
  /// TwoWay makes it of the session of the widget.
  explicit TwoWayJoin(EditSession ofWidget) noexcept : session(std::move(ofWidget)) {}

  /// Calls the function when the bind has no value any more, and now if it has none, so that a
  /// widget can grey out; the next `write` says that there is one again. The join does not tell of
  /// the bind's own end. The function takes the place of the former one.
  void WhenAbsent(RepeatingCallback<void()> absent) { session.WhenAbsent(std::move(absent)); }

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
  SetResult Commit() { return session.Judge(details::EditCore::Purpose::CommitHeld); }
  /// Says what Commit would answer, and sets nothing: the widget is read, and what it holds is
  /// converted and validated, also by the property. Does nothing where Commit does nothing.
  [[nodiscard]] SetResult Check() { return session.Judge(details::EditCore::Purpose::Check); }
  /// Calls the function with the outcome when the join has asked again about a refused edit. That
  /// happens each time that a property changes which the validator of the bind's property reads,
  /// from the Commit or Check that was refused until the next one, or until the widget is written
  /// or told that there is no value. The function takes the place of the former one, and may
  /// commit.
  void WhenAskedAgain(RepeatingCallback<void(const SetResult&)> askedAgain) {
    session.WhenAskedAgain(std::move(askedAgain));
  }

 private:
  EditSession session;
};

/// Joins a bind of values of type T to a widget that shows them as the converter says. The
/// validator answers why an edit is refused, or an empty text to accept it. A validator that was
/// made by BindWeak refuses every edit once its object is gone.
template <class T, class Read, class Write, class W = std::invoke_result_t<Read&>>
[[nodiscard]] TwoWayJoin TwoWay(
    Framework::IDataBind<T>& bind, Read read, Write write, Converter<T, W> converter,
    std::type_identity_t<RepeatingCallback<VtrString(const T&)>> validate = {}) {
  return TwoWayJoin(EditSession(bind, std::move(read), std::move(write), std::move(converter),
                                std::move(validate)));
}

/// Does the same for a widget that shows the value as it is.
template <class T, class Read, class Write>
[[nodiscard]] TwoWayJoin TwoWay(Framework::IDataBind<T>& bind, Read read, Write write) {
  return TwoWay(bind, std::move(read), std::move(write), SameValue<T>());
}

}  // namespace DataBinding

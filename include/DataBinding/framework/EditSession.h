// SPDX-License-Identifier: Apache-2.0
/// An EditSession joins a bind to a widget in which the user edits its value, and loses nothing of
/// what the user has typed.
///
/// The widget is given as a pair of functions. `write` shows a value in it: at once, and on each
/// change of the bind while nothing is typed. The widget says by Typed that the user has changed
/// what it holds. From then on the session leaves the widget alone until Commit, Overwrite or
/// Revert, and `read` is asked what was typed. Call Typed where the user types, and not where the
/// program changes the widget; inside `write` it does nothing.
///
/// - A change of the source meanwhile is a Conflict, unless it brings what was typed.
/// - When another record comes, that is a Conflict as well, so that no edit is filed into another
///   record than the one that it was typed for. Commit refuses it, Overwrite files it all the same,
///   and Revert shows the new value.
/// - Nothing is set unless something was typed. So a widget that shows a value only roughly, such
///   as a slider from 0 to 10 for a 99, does not change it.
///
/// The session owns the functions and neither bind nor widget. Bind and session may end in any
/// order, also inside each of the functions, and none of these is called after that. It files
/// nothing when it ends. A session is used on one thread, that of the provider tree.
///
///   EditSession size(bind, [&] { return box.Text(); }, [&](const VtrString& t) { box.Show(t); },
///                    TextConverter<int>());
///   box.onType = [&] { size.Typed(); };
///   box.onReturn = [&] { size.Commit(); };
///   box.onEscape = [&] { size.Revert(); };
///   const Subscription state = size.OnState([&](EditState) { hint.Show(size.Reason()); });
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/framework/EditState.h"
#include "DataBinding/framework/IDataBind.h"
#include "DataBinding/framework/TextConverter.h"
#include "DataBinding/framework/details/TypedEdit.h"

namespace DataBinding {

class DATABINDING_API EditSession {
 public:
  /// Joins a bind of values of type T to a widget that shows them as the converter says. The
  /// validator answers why an edit is refused, or an empty text to accept it. A validator that was
  /// made by BindWeak refuses every edit once its object is gone.
  template <class T, class Read, class Write, class W = std::invoke_result_t<Read&>>
  EditSession(Framework::IDataBind<T>& bind, Read read, Write write, Converter<T, W> converter,
              std::type_identity_t<RepeatingCallback<VtrString(const T&)>> validate = {})
      : EditSession(std::shared_ptr<details::EditCore>(new details::TypedEdit<T, W>(
            bind, std::move(read), std::move(write), std::move(converter), std::move(validate)))) {}
  /// Does the same for a widget that shows the value as it is.
  template <class T, class Read, class Write>
  EditSession(Framework::IDataBind<T>& bind, Read read, Write write)
      : EditSession(bind, std::move(read), std::move(write), SameValue<T>()) {}
  /// A session that was moved from is without a bind: Absent, and all that is done with it does
  /// nothing.
  ///@{
  EditSession(EditSession&& other) noexcept = default;
  EditSession& operator=(EditSession&& other) noexcept;
  ///@}
  ~EditSession();

  /// These say how the edit stands, as the functions of OnState were told last. Once the bind has
  /// ended, which nobody is told, the state is Absent and there is no reason.
  ///@{
  [[nodiscard]] EditState State() const noexcept;
  /// Says to the user why the edit was refused, or what it is in conflict with, and otherwise
  /// nothing.
  [[nodiscard]] VtrString Reason() const;
  ///@}
  /// Returns true while the widget holds something that was typed and is neither filed nor
  /// reverted, and the bind has not ended.
  [[nodiscard]] bool HasTyped() const noexcept;
  /// Calls the function when the state, its reason or HasTyped has changed, until the subscription
  /// or the session ends. So it may be called with Absent again. The function may do anything, also
  /// end the session. Where it changes the state, all are told of that, and those behind it do not
  /// hear of the former state. What it throws leaves the operation in the end.
  Subscription OnState(const RepeatingCallback<void(const EditState&)>& callback);

  /// The user has changed what the widget holds. What equals the form that was written last is no
  /// edit.
  void Typed();
  /// Says what Commit would answer, and sets nothing: where something was typed, the widget is
  /// read, and what it holds is converted and validated, also by the property.
  [[nodiscard]] SetResult Check();
  /// Sets what was typed and says whether the value changed. Where nothing was typed, nothing is
  /// read or set. On success the text is empty. `write` is not called for the edit, unless the data
  /// source made another value of it; values without == count as another value each time.
  ///
  /// An edit that is refused stays in the widget, and the state says so until a later one is
  /// accepted, until it is reverted or in conflict, or until the widget holds the value again. An
  /// edit in conflict is refused with PropertyError::Conflict, also where the bind shows another
  /// record and has not told so yet.
  ///
  /// Does nothing inside `write`, inside the function of WhenAbsent, and inside another Commit or
  /// Check. Stops as soon as one of the functions has ended the session or the bind. Refuses the
  /// edit where it needs a function that was made by BindWeak and has lost its object.
  SetResult Commit();
  /// Does the same, and files the edit also where it is in conflict.
  SetResult Overwrite();
  /// Forgets what was typed and shows the present value. Does nothing where Commit does nothing.
  void Revert();

  /// Calls the function when the bind has no value any more, and now if it has none, so that a
  /// widget can grey out; the next `write` says that there is one again. The session does not tell
  /// of the bind's own end. The function takes the place of the former one.
  void WhenAbsent(RepeatingCallback<void()> absent);
  /// Calls the function with the outcome when the session has asked again about a refused edit.
  /// That happens each time that a property changes which the validator of the bind's property
  /// reads, from the Commit or Check that was refused until the next one, or until the widget is
  /// written or told that there is no value. An edit that would be accepted now is Typed again. The
  /// function takes the place of the former one, and may commit.
  void WhenAskedAgain(RepeatingCallback<void(const SetResult&)> askedAgain);

 private:
  friend class EditGroup;
  friend class TwoWayJoin;
  explicit EditSession(std::shared_ptr<details::EditCore> made);
  SetResult Judge(details::EditCore::Purpose purpose);

  std::shared_ptr<details::EditCore> core;
};

}  // namespace DataBinding

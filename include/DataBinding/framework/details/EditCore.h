// SPDX-License-Identifier: Apache-2.0
/// An EditCore is the part of an edit session that does not depend on the types of value and
/// widget.
///
/// 1. A session, the callbacks of its subscriptions and each of its calls share the core. So it
///    outlasts a function that ends the session.
/// 2. Each function of the application may end the session or the bind. After each call of one,
///    IsJoined is asked before the core goes on.
/// 3. One operation goes on at a time. What is called inside it does nothing, apart from changes of
///    the bind, which are shown where they come.
/// 4. The state is told at the end of an operation, when others may begin.
/// 5. An edit belongs to the record that the widget shows. The bind is asked for its record before
/// an
///    edit is set, since it may show another one that the session has not been told of yet.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/framework/BindChange.h"
#include "DataBinding/framework/EditState.h"
#include "DataBinding/framework/IBaseDataBind.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding::details {

class DATABINDING_API EditCore : public std::enable_shared_from_this<EditCore> {
 public:
  enum class Purpose {
    Check,       ///< to say what a commit would answer
    Commit,      ///< to set what was typed
    CommitHeld,  ///< to set whatever the widget holds, which is forgotten where it is refused
    Overwrite    ///< to set what was typed, also in conflict
  };

  EditCore(const EditCore&) = delete;
  EditCore& operator=(const EditCore&) = delete;
  virtual ~EditCore();

  /// Shows the value now, and at each change until the end.
  void Begin();
  /// The session is gone. The widget may be gone too, so none of the functions is called from now
  /// on.
  void End();

  /// These are the operations of the session.
  ///@{
  [[nodiscard]] EditState State() const noexcept;
  [[nodiscard]] VtrString Reason() const { return IsJoined() ? toldReason : VtrString(); }
  [[nodiscard]] bool HasTyped() const noexcept { return isTyped && IsJoined(); }
  /// Returns true while an operation goes on, so that no other one is done.
  [[nodiscard]] bool IsBusy() const noexcept { return step != Step::None; }
  Subscription OnState(const RepeatingCallback<void(const EditState&)>& callback);
  void Typed();
  /// Reads the widget for a purpose, and asks again about what is refused from then on.
  SetResult Judge(Purpose purpose);
  void Revert();
  void WhenAbsent(RepeatingCallback<void()> callback);
  void WhenAskedAgain(RepeatingCallback<void(const SetResult&)> callback) {
    askedAgain = std::move(callback);
  }
  ///@}

 protected:
  EditCore(Framework::IBaseDataBind& joined, WeakReference liveness)
      : base(&joined), bindLiveness(std::move(liveness)) {}

  /// Returns false once the session or its bind has ended.
  [[nodiscard]] bool IsJoined() const noexcept { return base != nullptr && bindLiveness.IsValid(); }

  /// Reads the widget. Returns false where the widget is gone.
  virtual bool Read() = 0;
  /// Makes a value of what was read, and validates it.
  [[nodiscard]] virtual SetResult Parse() = 0;
  /// These ask and set the bind.
  ///@{
  [[nodiscard]] virtual SetResult CheckParsed() = 0;
  [[nodiscard]] virtual SetResult SetParsed() = 0;
  virtual Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) = 0;
  ///@}
  /// Tells whether what was read is what the widget was shown last.
  [[nodiscard]] virtual bool IsReadAsShown() const = 0;
  /// Tells whether the present value is shown as the last one, or as what was read.
  ///@{
  [[nodiscard]] virtual bool IsPresentAsShown() = 0;
  [[nodiscard]] virtual bool IsPresentAsRead() = 0;
  ///@}
  /// Tells whether the present value is the one that Parse has made.
  [[nodiscard]] virtual bool IsPresentAsParsed() = 0;
  /// Takes what was read for what the widget was shown last; the value is the one that Parse has
  /// made, or is not known.
  virtual void NoteReadAsShown(bool isParsed) = 0;
  virtual void ForgetShown() = 0;
  /// Tells what there is to show.
  enum class Present { Nothing, NoConverter, Value };
  /// Converts the present value for Write, which shows it.
  ///@{
  [[nodiscard]] virtual Present ShowPresent() = 0;
  virtual void Write() = 0;
  ///@}

 private:
  /// Tells what the core is doing.
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
  /// Tells what an edit is in conflict with.
  enum class Conflict { None, Value, Record };

  void Follow(Framework::BindChange change);
  void Collide(Framework::BindChange change);
  void TakeIfPresent();
  SetResult Take(Purpose purpose);
  SetResult Set();
  void NoteRefusal(const SetResult& result);
  void AskAgain();
  [[nodiscard]] SetResult Gone() const;
  [[nodiscard]] VtrString WhyInConflict() const;
  [[nodiscard]] bool IsInConflict();
  void ForgetTyped();
  void ShowUnlessSame();
  void Tell();
  void TellAbsent();
  [[nodiscard]] EditState StateNow() const;
  void Settle();
  /// Does a step of an operation and tells the state after it, also where the step throws.
  template <class Operation>
  void Do(Operation operation);

  Framework::IBaseDataBind* base;
  WeakReference bindLiveness;
  Subscription subscription;
  Subscription checks;  // active from a refused edit until the next edit or value
  RepeatingCallback<void()> absent;
  RepeatingCallback<void(const SetResult&)> askedAgain;
  CallbackList<EditState> states;
  VtrString refusal;  // why the edit was refused
  VtrString toldReason;
  EditState told = EditState::Absent;
  Step step = Step::None;
  Widget widget = Widget::Edited;
  Conflict conflict = Conflict::None;
  std::uint64_t record = 0;  // the one that the widget shows, or was told to be absent
  bool isAbsent = true;
  bool isTyped = false;
  bool isTypedAnew = false;  // while an edit is set
  bool toldTyped = false;
};

}  // namespace DataBinding::details

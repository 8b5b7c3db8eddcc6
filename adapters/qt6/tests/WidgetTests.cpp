// SPDX-License-Identifier: Apache-2.0
// These tests hold for each row of the table in WidgetKinds.h.

#include <gtest/gtest.h>

#include "DataBinding/framework/AnyBind.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Things.h"
#include "WidgetKinds.h"

namespace DataBinding::Qt6::Testing {
namespace {

/// A widget of each kind in turn, which shows the first value.
class EachWidget : public BoundWindow, public testing::WithParamInterface<WidgetKind> {
 protected:
  void Bind(const BindOptions& options = {}, const VtrString& property = Kind().property) {
    source.Write(First());
    binding = &Kind().bind(&window, property, options);
    widget = binding->Widget();
    ASSERT_NE(widget, nullptr);
    thing->changes = 0;
    widget->setFocus();
  }
  /// Binds the widget so that what is entered stays typed.
  void BindAndEnter() {
    Bind({.commitOn = CommitOn::Delay, .delay = std::chrono::hours(1)});
    Kind().enter(widget);
    ASSERT_EQ(binding->State(), EditState::Typed);
  }
  void EnterAndLeave() {
    Kind().enter(widget);
    elsewhere.setFocus();
  }
  static const WidgetKind& Kind() { return GetParam(); }
  static const Value& First() { return Kind().values[0]; }
  static const Value& Second() { return Kind().values[1]; }
  static const Value& Third() { return Kind().values[2]; }
  [[nodiscard]] Value Now() const { return *source.Read(); }
  [[nodiscard]] QString Shown() const { return Kind().shown(widget); }
  /// What the widget shows for a value.
  static QString Form(const Value& value) { return ToQString(value.ToText()); }

  Framework::AnyBind source{scope.get(), L"Thing", Kind().property};
  Binding* binding = nullptr;
  QWidget* widget = nullptr;
};

TEST_P(EachWidget, ShowsTheValueAndItsChanges) {
  Bind();
  EXPECT_EQ(Shown(), Form(First()));
  source.Write(Third());
  EXPECT_EQ(Shown(), Form(Third()));
  EXPECT_EQ(binding->State(), EditState::Clean);
}

TEST_P(EachWidget, FilesWhatTheUserEntersOnce) {
  Bind();
  EnterAndLeave();

  EXPECT_EQ(Now(), Second());
  EXPECT_EQ(thing->changes, 1);
  EXPECT_EQ(binding->State(), EditState::Clean);
}

TEST_P(EachWidget, KeepsARefusedEditAndSaysWhy) {
  Bind({.reasonIn = &hint});
  thing->refuses = true;
  widget->setToolTip("tip");
  EnterAndLeave();

  EXPECT_EQ(Now(), First());
  EXPECT_EQ(Shown(), Form(Second()));
  EXPECT_EQ(binding->State(), EditState::Refused);
  EXPECT_TRUE(Shows(*widget, "refused"));
  EXPECT_EQ(widget->accessibleDescription(), "is <b>refused</b>");
  EXPECT_EQ(widget->toolTip(), "is &lt;b&gt;refused&lt;/b&gt;");
  EXPECT_EQ(hint.text(), widget->toolTip());

  thing->refuses = false;
  EXPECT_TRUE(EditsOf(&window).CommitAll().IsAccepted());

  EXPECT_EQ(Now(), Second());
  EXPECT_FALSE(Shows(*widget, "refused"));
  EXPECT_EQ(widget->toolTip(), "tip");
  EXPECT_EQ(widget->accessibleDescription() + hint.text(), "");
}

TEST_P(EachWidget, RevertsByEscape) {
  BindAndEnter();
  QTest::keyClick(widget, Qt::Key_Escape);

  EXPECT_EQ(Shown(), Form(First()));
  EXPECT_EQ(binding->State(), EditState::Clean);
  EXPECT_EQ(thing->changes, 0);
}

TEST_P(EachWidget, IsDisabledWhileThereIsNoSource) {
  Bind();
  RemoveThing();
  EXPECT_TRUE(widget->isEnabled()) << "another source may come at once";
  QApplication::processEvents();
  EXPECT_FALSE(widget->isEnabled());

  thing = AddThing(scope);
  source.Write(Third());
  QApplication::processEvents();

  EXPECT_TRUE(widget->isEnabled());
  EXPECT_EQ(Shown(), Form(Third()));
}

TEST_P(EachWidget, DoesNotEditAReadOnlyProperty) {
  Bind({}, VtrString(L"Fixed") + Kind().property);
  const QString before = Shown();
  EnterAndLeave();

  EXPECT_EQ(binding->State(), EditState::ReadOnly);
  EXPECT_EQ(Shown(), before);
  EXPECT_EQ(thing->changes, 0);
}

TEST_P(EachWidget, IsInConflictWhenTheSourceChangesMeanwhile) {
  BindAndEnter();
  source.Write(Third());
  if (Third() == First()) {
    EXPECT_EQ(binding->State(), EditState::Typed) << "which is the value as before";
    return;
  }
  EXPECT_EQ(binding->State(), EditState::Conflict);
  EXPECT_EQ(Shown(), Form(Second()));
  EXPECT_TRUE(Shows(*widget, "conflict"));
  EXPECT_EQ(binding->Commit().error, PropertyError::Conflict);
  EXPECT_EQ(Now(), Third());

  EXPECT_TRUE(binding->Overwrite().IsAccepted());
  EXPECT_EQ(Now(), Second());
}

TEST_P(EachWidget, KeepsWhatWasTypedForAnotherRecord) {
  BindAndEnter();
  RemoveThing();
  thing = AddThing(scope);
  source.Write(First());
  QApplication::processEvents();
  EXPECT_EQ(Shown(), Form(Second()));
  EXPECT_TRUE(widget->hasFocus());
  EXPECT_EQ(EditsOf(&window).CommitAll().error, PropertyError::Conflict);
  EXPECT_EQ(Now(), First());

  binding->Revert();
  EXPECT_EQ(Shown(), Form(First()));
}

TEST_P(EachWidget, FilesNothingThatAProgramChanges) {
  Bind({.commitOn = CommitOn::Typing});
  for (int i = 0; i < 100; ++i) source.Write(i % 2 == 0 ? Second() : First());
  EXPECT_EQ(thing->changes, 100);

  Kind().change(widget);
  elsewhere.setFocus();

  EXPECT_EQ(Now(), First());
  EXPECT_EQ(thing->changes, 100);
}

TEST_P(EachWidget, MayEndWithinItsOwnCommit) {
  BindAndEnter();
  thing->onChange = [this] {
    delete std::exchange(widget, nullptr);
    RemoveThing();
  };

  EXPECT_TRUE(EditsOf(&window).CommitAll().IsAccepted());
}

TEST_P(EachWidget, FilesNothingWhenItsWindowEnds) {
  source.Write(First());
  auto* dialogue = new QWidget(&window, Qt::Dialog);
  Kind().bind(dialogue, Kind().property, {});
  dialogue->show();
  QApplication::setActiveWindow(dialogue);
  QWidget* const inside = EditsOf(dialogue).Bindings().front()->Widget();
  inside->setFocus();
  thing->refuses = true;
  Kind().enter(inside);
  thing->refuses = false;
  ASSERT_TRUE(EditsOf(dialogue).HasTyped());
  thing->changes = 0;

  delete dialogue;

  EXPECT_EQ(thing->changes, 0);
}

INSTANTIATE_TEST_SUITE_P(Kinds, EachWidget, testing::ValuesIn(widgetKinds),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
}  // namespace DataBinding::Qt6::Testing

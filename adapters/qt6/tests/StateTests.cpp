// SPDX-License-Identifier: Apache-2.0
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QMenu>
#include <QPushButton>
#include <memory>
#include <utility>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/EventHold.h"
#include "DataBinding/appevents/IdlePass.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBindingQt6/widgets/BindChoices.h"
#include "DataBindingQt6/widgets/BindCommand.h"
#include "DataBindingQt6/widgets/BindState.h"
#include "DataBindingQt6/widgets/Explain.h"
#include "Things.h"

namespace DataBinding::Qt6::Testing {
namespace {

using QtState = BoundWindow;

TEST_F(QtState, IsWrittenByPropertiesOfAnyType) {
  auto* box = new QWidget(&window);
  QAction action(box);
  BindEnabled(box, L"Thing", L"Flag");
  BindVisible(&action, L"Thing", L"Number");
  BindTitle(&window, L"Thing", L"Real");
  BindToolTip(box, L"Thing", L"Text");
  EXPECT_FALSE(box->isEnabled() || action.isVisible());

  thing->Flag.Set(true);
  thing->Number.Set(-1);
  thing->Real.Set(0.5);
  thing->Text.Set(L"<b>a");
  EXPECT_TRUE(box->isEnabled() && action.isVisible());
  EXPECT_EQ(window.windowTitle(), "0.5");
  EXPECT_TRUE(box->toolTip().contains("&lt;"));
  SetScope(&window, nullptr);

  EXPECT_FALSE(box->isEnabled() || action.isVisible());
  EXPECT_EQ(window.windowTitle(), "");
}

TEST_F(QtState, IsJoinedOnce) {
  auto* box = new QWidget(&window);
  BindEnabled(box, L"Thing", L"Flag");
  BindEnabled(box, L"Thing", L"Number");

  thing->Number.Set(1);
  thing->Flag.Set(true);
  thing->Flag.Set(false);

  EXPECT_TRUE(box->isEnabled());
}

TEST_F(QtState, EnablesABoundWidgetWhereItsBindingDoesSo) {
  auto* box = new QCheckBox(&window);
  BindEnabled(box, L"Thing", L"Number");
  Bind(box, L"Thing", L"FixedFlag");

  thing->Number.Set(1);
  EXPECT_FALSE(box->isEnabled()) << "since the flag is read-only";
  thing->Number.Set(0);
  Bind(box, L"Thing", L"Flag");
  EXPECT_FALSE(box->isEnabled());
  thing->Number.Set(1);
  EXPECT_TRUE(box->isEnabled());
}

TEST_F(QtState, IsExplainedWhereNothingIsFound) {
  auto* edit = new QLineEdit(&window);
  auto* box = new QComboBox(&window);
  auto* action = new QAction(&window);
  edit->setToolTip("tip");
  edit->setObjectName("name");
  Bind(edit, L"Thing", L"Txt");
  Bind(box, L"Thing", L"Flag");
  BindChoices(box, L"Thing", L"Cities", L"Name");
  BindTitle(&window, L"Thing", L"Title", L"Context");
  Bind(action, L"QtState.Print", {.context = L"Context"});
  const QStringList lines = Explain(&window);
  ASSERT_EQ(lines.size(), 5);
  EXPECT_EQ("name: " + edit->toolTip(), lines[0]);
  EXPECT_EQ(box->toolTip().count("\n"), 1);
  EXPECT_EQ(Binding::Of(box)->Status().state, Framework::BindStatus::State::WrongType);

  Bind(edit, L"Thing", L"Text");
  EXPECT_EQ(Explain(&window).size(), 4);
  EXPECT_EQ(edit->toolTip(), "tip");
}

class QtCommand : public BoundWindow {
 protected:
  /// Returns how often the event was raised since the last time.
  int Raised() {
    idle.Run();
    return std::exchange(raised, 0);
  }

  int raised = 0;
  IdlePass idle{[] {}};
  Subscription seen =
      AppEvent<IDataContext*>(VtrString(L"QtCommand.Save")).Subscribe([this](auto*) { ++raised; });
  QPushButton* button = new QPushButton(&window);
};

TEST_F(QtCommand, IsEnabledWhileItsEventCanBeRaised) {
  QAction action(&window);
  Bind(&action, L"QtCommand.Save");
  EXPECT_TRUE(action.isEnabled());

  {
    const EventHold busy(L"QtCommand.Save");
    EXPECT_FALSE(action.isEnabled());
    action.trigger();
  }
  EXPECT_EQ(Raised(), 0);
  action.trigger();
  EXPECT_EQ(Raised(), 1);
  BindEnabled(&action, L"Thing", L"Flag");
  {
    const EventHold busy(L"QtCommand.Save");
    thing->Flag.Set(true);
    EXPECT_FALSE(action.isEnabled()) << "the event cannot be raised";
  }
  EXPECT_TRUE(action.isEnabled());
  SetScope(&window, nullptr);

  EXPECT_FALSE(action.isEnabled());
}

TEST_F(QtCommand, TellsThatItsEventHasAnotherSignature) {
  VtrString told;
  SetListenerFailureHandler([&](const auto& failure) { told = ExceptionText(failure.exception); });
  Bind(button, L"QtCommand.Other");
  const auto other = AppEvent<>(VtrString(L"QtCommand.Other")).Subscribe([this] { ++raised; });

  button->click();
  SetListenerFailureHandler({});

  EXPECT_FALSE(button->isEnabled());
  EXPECT_FALSE(told.IsEmpty());
}

TEST_F(QtCommand, FilesWhatWasTypedOrIsNotCarriedOut) {
  auto* edit = new QLineEdit(&window);
  edit->show();
  Bind(edit, L"Thing", L"Text");
  Bind(button, L"QtCommand.Save");
  QTest::keyClicks(edit, "typed");

  thing->refuses = true;
  button->click();
  EXPECT_EQ(Raised(), 0);
  EXPECT_TRUE(edit->hasFocus());
  thing->refuses = false;
  QMenu menu(&window);
  QAction* const inMenu = menu.addAction("Save");
  Bind(inMenu, L"QtCommand.Save");
  inMenu->trigger();
  EXPECT_EQ(Raised(), 1);
  EXPECT_EQ(*thing->Text, L"typed");

  Bind(button, L"QtCommand.Save", {.commitsEdits = false});
  QTest::keyClicks(edit, "!");
  button->click();
  EXPECT_EQ(Raised(), 1);
  EXPECT_EQ(*thing->Text, L"typed");

  scope->DeleteLocalDataSourceInstance(L"Thing");
  EXPECT_FALSE(EditsOf(&window).CommitAll().IsAccepted());
  EXPECT_TRUE(edit->property("refused").toBool() && !edit->toolTip().isEmpty());
}

TEST_F(QtCommand, MayEndItsButtonByAnEditThatItFiles) {
  auto* edit = new QLineEdit(&window);
  Bind(edit, L"Thing", L"Text");
  auto action = std::make_unique<QAction>(&window);
  Bind(action.get(), L"QtCommand.Save");
  QTest::keyClicks(edit, "typed");
  thing->onChange = [&] { action.reset(); };

  action->trigger();

  EXPECT_EQ(Raised(), 0);
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing

// SPDX-License-Identifier: Apache-2.0
// These tests concern single kinds of widgets, and windows that hold bound widgets.
#include "DataBindingQt6/widgets/Bind.h"

#include <QAction>
#include <QCalendarWidget>
#include <QComboBox>
#include <QDateEdit>
#include <QDoubleSpinBox>
#include <QLCDNumber>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QSpinBox>
#include <QTabWidget>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/lists/List.h"
#include "DataBinding/lists/SourceList.h"
#include "DataBindingQt6/loop/QtIdlePass.h"
#include "DataBindingQt6/models/ListModel.h"
#include "DataBindingQt6/models/ScopeTreeModel.h"
#include "DataBindingQt6/widgets/BindChoices.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Things.h"

namespace DataBinding::Qt6::Testing {
namespace {

class Bindings : public BoundWindow {
 protected:
  /// Makes a widget in the window, in which the user is.
  template <class W>
  W& Make() {
    auto* const made = new W(&window);
    made->show();
    made->setFocus();
    return *made;
  }
  static void Turn(QWidget& widget) {
    QWheelEvent wheel({5, 5}, widget.mapToGlobal(QPointF(5, 5)), {}, {0, 120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &wheel);
  }
};

TEST_F(Bindings, OnlyShowWhereTheUserDoesNotEdit) {
  thing->Number.Set(7);
  auto& label = Make<QLabel>();
  auto& number = Make<QLCDNumber>();
  auto& bar = Make<QProgressBar>();
  Bind(&label, L"Thing", L"FixedReal");
  Bind(&number, L"Thing", L"Number");
  Bind(&bar, L"Thing", L"Number");
  thing->Number.Set(1000);
  EXPECT_EQ(label.text(), "1");
  EXPECT_TRUE(label.isEnabled());
  EXPECT_EQ(number.intValue(), 1000);
  EXPECT_EQ(bar.value(), 100) << "its end";

  RemoveThing();

  EXPECT_EQ(label.text(), "");
  EXPECT_EQ(bar.value(), -1);
}

TEST_F(Bindings, WriteALabelOnceAPass) {
  QtIdlePass pass;
  auto& label = Make<QLabel>();
  Bind(&label, L"Thing", L"Number");
  for (int i = 0; i < 9; ++i) thing->Number.Set(i);
  EXPECT_EQ(label.text(), "0");

  EXPECT_TRUE(QTest::qWaitFor([&] { return label.text() == "8"; }));
}

TEST_F(Bindings, FileATextWhenTheFocusMovesOnAndNotWhenItComesBack) {
  auto& edit = Make<QLineEdit>();
  Binding& binding = Bind(&edit, L"Thing", L"Text");
  QTest::keyClicks(&edit, "ab");
  for (const auto reason : {Qt::ActiveWindowFocusReason, Qt::PopupFocusReason}) {
    QFocusEvent out(QEvent::FocusOut, reason);
    QApplication::sendEvent(&edit, &out);
    EXPECT_EQ(binding.State(), EditState::Typed);
  }
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(*thing->Text, L"ab");

  thing->Text.Set(L"abc");
  elsewhere.setFocus();
  EXPECT_EQ(*thing->Text, L"abc") << "since nothing was typed";
}

TEST_F(Bindings, KeepCaretAndSelection) {
  auto& edit = Make<QLineEdit>();
  auto& area = Make<QPlainTextEdit>();
  thing->Text.Set(L"abcdef");
  Bind(&edit, L"Thing", L"Text");
  Bind(&area, L"Thing", L"Text");
  edit.setSelection(4, -2);
  QTextCursor cursor = area.textCursor();
  cursor.setPosition(2);
  area.setTextCursor(cursor);

  thing->Text.Set(L"ABCDEFG");

  EXPECT_EQ(edit.selectedText(), "CD");
  EXPECT_EQ(edit.cursorPosition(), 2);
  EXPECT_EQ(area.textCursor().position(), 2);
}

TEST_F(Bindings, OfEnterAndEscapeTakeOnlyWhatIsTheirs) {
  auto& edit = Make<QLineEdit>();
  QAction undo(&window);
  undo.setShortcut(Qt::Key_Escape);
  window.addAction(&undo);
  QSignalSpy undone(&undo, &QAction::triggered);
  QSignalSpy entered(&edit, &QLineEdit::returnPressed);
  Bind(&edit, L"Thing", L"Number");
  QTest::keyClicks(&edit, "x");
  QTest::keyClick(&edit, Qt::Key_Return);
  EXPECT_EQ(entered.count(), 0) << "a refused edit presses no button";
  QTest::keyClick(window.windowHandle(), Qt::Key_Escape);
  EXPECT_EQ(edit.text(), "0");
  EXPECT_EQ(undone.count(), 0);

  QTest::keyClick(&edit, Qt::Key_Return);
  QTest::keyClick(window.windowHandle(), Qt::Key_Escape);

  EXPECT_EQ(entered.count(), 1);
  EXPECT_EQ(undone.count(), 1);
}

TEST_F(Bindings, TakeATurnOfTheWheelForAnEdit) {
  auto& slider = Make<QSlider>();
  auto& box = Make<QSpinBox>();
  auto& combo = Make<QComboBox>();
  combo.addItems({"zero", "one"});
  Bind(&slider, L"Thing", L"Number");
  Turn(slider);
  EXPECT_EQ(*thing->Number, slider.value());
  EXPECT_GT(*thing->Number, 0);
  Bind(&box, L"Thing", L"Number");
  const int before = *thing->Number;
  Turn(box);
  EXPECT_EQ(*thing->Number, before + 1);
  thing->Number.Set(1);
  Bind(&combo, L"Thing", L"Number");

  Turn(combo);

  EXPECT_EQ(*thing->Number, 0);
}

TEST_F(Bindings, NeverWriteBackWhatAWidgetCannotShow) {
  thing->Number.Set(99);
  auto& slider = Make<QSlider>();
  auto& box = Make<QSpinBox>();
  slider.setRange(0, 10);
  Bind(&slider, L"Thing", L"Number");
  Bind(&box, L"Thing", L"Number");
  box.setRange(0, 20);
  QTest::keyClick(&slider, Qt::Key_Up);
  elsewhere.setFocus();
  EXPECT_EQ(*thing->Number, 99);

  QTest::keyClick(&slider, Qt::Key_Down);
  EXPECT_EQ(*thing->Number, 9);
  QTest::keyClick(&slider, Qt::Key_Up);
  EXPECT_EQ(*thing->Number, 10) << "which the user has chosen now";
  EXPECT_EQ(box.value(), 10);
}

TEST_F(Bindings, OfDifferentRoundingSettleAtOnce) {
  auto& fine = Make<QDoubleSpinBox>();
  auto& rough = Make<QSlider>();
  Bind(&fine, L"Thing", L"Real");
  Bind(&rough, L"Thing", L"Real");
  for (int i = 0; i < 1000; ++i) {
    const int before = thing->changes;
    QWidget& edited = i % 3 == 0 ? static_cast<QWidget&>(rough) : fine;
    QTest::keyClick(&edited, i % 7 < 4 ? Qt::Key_Up : Qt::Key_Down);
    thing->Real.Set(*thing->Real + 0.123);
    ASSERT_LE(thing->changes, before + 2);
  }
  QApplication::processEvents();

  EXPECT_NEAR(fine.value(), *thing->Real, 0.005);
}

TEST_F(Bindings, WaitForTheMouseButtonOrForAPause) {
  auto& slider = Make<QSlider>();
  slider.setRange(0, 10);
  Bind(&slider, L"Thing", L"Number", {.commitOn = CommitOn::Release});
  slider.resize(20, 200);
  QTest::mousePress(&slider, Qt::LeftButton, {}, {10, 190});
  QTest::keyClick(&slider, Qt::Key_Up);
  EXPECT_EQ(thing->changes, 0);
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, {10, 190});
  EXPECT_EQ(*thing->Number, slider.value());
  EXPECT_EQ(thing->changes, 1);

  auto& edit = Make<QLineEdit>();
  Bind(&edit, L"Thing", L"Text",
       {.commitOn = CommitOn::Delay, .delay = std::chrono::milliseconds(1)});
  QTest::keyClicks(&edit, "ab");
  EXPECT_TRUE(QTest::qWaitFor([&] { return *thing->Text == L"ab"; }));
}

TEST_F(Bindings, OfSpinBoxesTakeWhatIsCorrectedWhenTheUserLeaves) {
  auto& box = Make<QSpinBox>();
  box.setRange(10, 99);
  box.setCorrectionMode(QAbstractSpinBox::CorrectToNearestValue);
  thing->Number.Set(50);
  Bind(&box, L"Thing", L"Number");
  box.selectAll();
  QTest::keyClicks(&box, "5");
  elsewhere.setFocus();
  EXPECT_EQ(*thing->Number, 10);

  box.setKeyboardTracking(false);
  box.setFocus();
  box.selectAll();
  QTest::keyClicks(&box, "77");
  EXPECT_TRUE(EditsOf(&window).CommitAll().IsAccepted());
  EXPECT_EQ(*thing->Number, 77);
}

TEST_F(Bindings, OfDatesFollowTheCalendarAndLeaveNoFormerDate) {
  auto& edit = Make<QDateEdit>();
  edit.setCalendarPopup(true);
  thing->Text.Set(L"2026-01-05");
  Bind(&edit, L"Thing", L"Text");
  QTest::mousePress(&edit, Qt::LeftButton, {}, {edit.width() - 5, edit.height() / 2});
  auto* const calendar = edit.calendarWidget();
  Q_EMIT calendar->activated(QDate(2026, 1, 7));
  EXPECT_EQ(*thing->Text, L"2026-01-07");

  thing->Text.Set(L"no date");

  EXPECT_EQ(edit.date(), edit.minimumDate());
  elsewhere.setFocus();
  EXPECT_EQ(*thing->Text, L"no date");
}

struct City {
  int number;
  VtrString name;
};
constexpr auto FieldsOf(const City*) {
  return Fields(Key(L"Number", &City::number), Field(L"Name", &City::name));
}

int Throw() { throw 1; }
struct Broken : NamedDataSource {
  Broken() : NamedDataSource(L"Broken") {}
  ComputedProperty<int> Bad{this, L"Bad", &Throw};
};
constexpr auto FieldsOf(const Broken*) { return Fields(Field(L"Bad", &Broken::Bad)); }

class Places : public NamedDataSource {
 public:
  Places() : NamedDataSource(L"Places") {}
  List<City> Cities{this, L"Cities"};
  SourceList<Broken> Ruins{this, L"Ruins"};
};

TEST_F(Bindings, FillAComboBoxFromAList) {
  auto& places = Emplace<Places>(*scope);
  places.Cities.Assign({{1, L"Ulm"}, {2, L"Bonn"}});
  thing->Text.Set(L"Bonn");
  auto& box = Make<QComboBox>();
  BindChoices(&box, L"Places", L"Cities", L"Name");
  Bind(&box, L"Thing", L"Text");
  EXPECT_EQ(box.currentText(), "Bonn");

  thing->Text.Set(L"Kiel");
  EXPECT_EQ(box.currentIndex(), -1);
  places.Cities.Assign({{3, L"Kiel"}, {1, L"Ulm"}});
  EXPECT_TRUE(QTest::qWaitFor([&] { return box.currentIndex() == 0; }, 500));

  EXPECT_EQ(box.count(), 2);
  EXPECT_EQ(box.currentText(), "Kiel");
  EXPECT_EQ(*thing->Text, L"Kiel");
}

TEST_F(Bindings, LetNothingIntoQtThatAGetterThrows) {
  int failures = 0;
  SetListenerFailureHandler([&](const ListenerFailure&) { ++failures; });
  const ScopeTreeModel tree(*scope, L"", {{L"Broken", L"Bad"}});
  const DataSourceProvider inner(scope.get(), L"", nullptr);
  Emplace<Broken>(*scope);
  auto& places = Emplace<Places>(*scope);
  places.Ruins.Emplace();
  const ListModel rows(places.Ruins);
  auto& box = Make<QComboBox>();
  Bind(&Make<QLineEdit>(), L"Thing", L"Text");
  QTest::keyClicks(window.focusWidget(), "typed");
  thing->onChange = &Throw;
  EXPECT_FALSE(EditsOf(&window).CommitAll().IsAccepted());
  EXPECT_ANY_THROW(Bind(&Make<QLabel>(), L"Broken", L"Bad"));
  EXPECT_EQ(EditsOf(&window).Bindings().size(), 1);

  BindChoices(&box, L"Places", L"Ruins", L"Bad");

  EXPECT_EQ(box.itemText(0), "");
  EXPECT_FALSE(rows.index(0, 0).data().isValid());
  EXPECT_EQ(tree.index(0, 0).data().toString(), "");
  EXPECT_EQ(failures, 4);
  SetListenerFailureHandler(nullptr);
}

TEST_F(Bindings, TellWhetherAWindowHoldsAnythingTyped) {
  auto& edit = Make<QLineEdit>();
  auto& tabs = Make<QTabWidget>();
  auto* const inner = new QLineEdit;
  tabs.addTab(inner, "inner");
  tabs.addTab(new QWidget, "other");
  Bind(&edit, L"Thing", L"Text");
  Bind(inner, L"Thing", L"Number");
  QSignalSpy told(&EditsOf(&window), &WindowEdits::hasTypedChanged);
  QTest::keyClicks(inner, "x");
  QTest::keyClicks(&edit, "ab");
  tabs.setCurrentIndex(1);
  EXPECT_FALSE(EditsOf(&window).CommitAll().IsAccepted());
  EXPECT_TRUE(inner->hasFocus()) << "the one that was refused";
  EXPECT_EQ(*thing->Text, L"ab");
  EXPECT_TRUE(EditsOf(&tabs).HasTyped());

  delete &tabs;
  QApplication::processEvents();

  EXPECT_EQ(told, (QList<QList<QVariant>>{{true}, {false}}));
}

TEST_F(Bindings, LeaveTheApplicationItsOwnStates) {
  auto& edit = Make<QLineEdit>();
  edit.setReadOnly(true);
  edit.setEnabled(false);
  Bind(&edit, L"Thing", L"FixedText");
  Bind(&edit, L"Thing", L"Text");
  RemoveThing();
  QApplication::processEvents();
  thing = AddThing(scope);

  EXPECT_TRUE(edit.isReadOnly());
  EXPECT_FALSE(edit.isEnabled());
}

TEST_F(Bindings, OfNoWidgetDoNothing) {
  Binding& none = Bind(static_cast<QLineEdit*>(nullptr), L"Thing", L"Text");

  EXPECT_EQ(none.State(), EditState::Absent);
  EXPECT_TRUE(none.Commit().IsAccepted());
  EXPECT_FALSE(EditsOf(nullptr).HasTyped());
}

/// The orders in which source, scope, widget and window end.
TEST_F(Bindings, EndInAnyOrder) {
  for (const std::string order :
       {"source scope widget window", "window scope", "scope widget", "widget source window"}) {
    DataSourceProviderPtr ends(new DataSourceProvider(nullptr, L"", nullptr));
    AddThing(ends);
    auto frame = std::make_unique<QWidget>();
    auto edit = std::make_unique<QLineEdit>(frame.get());
    SetScope(frame.get(), ends.get());
    Bind(edit.get(), L"Thing", L"Text");
    QTest::keyClicks(edit.get(), "typed");
    for (const QString& end : QString::fromStdString(order).split(' ')) {
      if (end == "source") ends->DeleteLocalDataSourceInstance(L"Thing");
      if (end == "scope") ends = nullptr;
      if (end == "widget") edit.reset();
      if (end == "window") static_cast<void>(edit.release()), frame.reset();
      QApplication::processEvents();
    }
    static_cast<void>(edit.release());
  }
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing

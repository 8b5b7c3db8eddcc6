// SPDX-License-Identifier: Apache-2.0
// These tests follow a text from the first key until it is filed, reverted or undone.
#include <QAbstractItemView>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <gtest/gtest.h>

#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/widgets/Bind.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "Things.h"

namespace DataBinding::Qt6::Testing {
namespace {

class Typing : public BoundWindow {
 protected:
  static void Enter(QWidget& widget) {
    widget.show();
    widget.setFocus();
  }
};

TEST_F(Typing, LeavesATextAloneThatIsFiledWhileItIsTyped) {
  QLineEdit edit(&window);
  Enter(edit);
  Bind(&edit, L"Thing", L"Real", {.commitOn = CommitOn::Typing});
  edit.selectAll();

  QTest::keyClicks(&edit, "1.");
  EXPECT_EQ(*thing->Real, 1.0);
  QTest::keyClicks(&edit, "50");

  EXPECT_EQ(*thing->Real, 1.5);
  EXPECT_EQ(edit.text(), "1.50");
  elsewhere.setFocus();
  EXPECT_EQ(edit.text(), "1.5") << "as the property has it";
}

TEST_F(Typing, LeavesAComboBoxAloneWhoseTextIsTrimmed) {
  QComboBox box(&window);
  box.setEditable(true);
  Enter(box);
  Bind(&box, L"Thing", L"Text", {.commitOn = CommitOn::Typing});
  thing->onChange = [&] { thing->Text.Set(ToVtrString(ToQString(*thing->Text).trimmed())); };

  QTest::keyClicks(&box, "New York");

  EXPECT_EQ(*thing->Text, L"New York");
}

TEST_F(Typing, FilesWhatACompleterHasChosen) {
  QLineEdit edit(&window);
  QCompleter completer(QStringList{"Berlin"});
  edit.setCompleter(&completer);
  Enter(edit);
  Bind(&edit, L"Thing", L"Text", {.commitOn = CommitOn::Typing});
  QTest::keyClicks(&edit, "B");

  QTest::keyClick(completer.popup(), Qt::Key_Down);
  QTest::keyClick(completer.popup(), Qt::Key_Return);
  QApplication::processEvents();

  EXPECT_EQ(*thing->Text, L"Berlin");
}

TEST_F(Typing, ShowsTheReasonsOfTwoWidgetsInOneLabel) {
  QLineEdit edit(&window);
  QLineEdit other(&window);
  Bind(&edit, L"Thing", L"Text", {.reasonIn = &hint});
  Bind(&other, L"Thing", L"Text", {.reasonIn = &hint});
  thing->refuses = true;
  for (QLineEdit* each : {&edit, &other}) QTest::keyClicks(each, "x");
  EXPECT_FALSE(EditsOf(&window).CommitAll().IsAccepted());

  Binding::Of(&edit)->Revert();
  EXPECT_NE(hint.text(), "");
  Binding::Of(&other)->Revert();
  EXPECT_EQ(hint.text(), "");
}

TEST_F(Typing, FilesTheUndoOfATextThatWasFiled) {
  QPlainTextEdit edit(&window);
  Enter(edit);
  Bind(&edit, L"Thing", L"Text");
  QTest::keyClicks(&edit, "ab");
  elsewhere.setFocus();
  ASSERT_EQ(*thing->Text, L"ab");

  edit.setFocus();
  edit.undo();
  elsewhere.setFocus();

  EXPECT_EQ(ToQString(*thing->Text), edit.toPlainText());
  EXPECT_NE(*thing->Text, L"ab");
}

TEST_F(Typing, IsRevertedWhereTheSourceHasGone) {
  QLineEdit edit(&window);
  Enter(edit);
  Bind(&edit, L"Thing", L"Text");
  QTest::keyClicks(&edit, "typed");
  RemoveThing();
  QApplication::processEvents();
  EXPECT_TRUE(EditsOf(&window).HasTyped());

  QTest::keyClick(&edit, Qt::Key_Escape);

  EXPECT_FALSE(EditsOf(&window).HasTyped());
  EXPECT_FALSE(edit.isEnabled());
  EXPECT_TRUE(EditsOf(&window).CommitAll().IsAccepted());
}

}  // namespace
}  // namespace DataBinding::Qt6::Testing

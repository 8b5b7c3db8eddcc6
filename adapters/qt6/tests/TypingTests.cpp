// SPDX-License-Identifier: Apache-2.0
// These tests follow a text from the first key until it is filed, reverted or undone.
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

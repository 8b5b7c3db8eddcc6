// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/values/Text.h"

#include <gtest/gtest.h>

namespace DataBinding::Qt6 {
namespace {

TEST(QtText, IsTheSameThereAndBack) {
  for (const wchar_t* text : {L"", L"plain", L"\u00e4\u20ac", L"\U0001F600 beyond", L"a\uFFFDb"}) {
    EXPECT_EQ(ToVtrString(ToQString(text)), text);
  }
}

TEST(QtText, KeepsCharactersOfTwoUnits) {
  const QString pair = ToQString(L"x\U0001F600");

  ASSERT_EQ(pair.size(), 3);
  EXPECT_TRUE(pair[1].isHighSurrogate());
}

TEST(QtText, HalfOfAPairBecomesTheReplacementCharacter) {
  EXPECT_EQ(ToVtrString(QString(QChar(0xD800))), L"\uFFFD");
}

TEST(QtText, IsWrittenToTheLogInQuotes) {
  QString line;
  QDebug(&line).nospace() << VtrString(L"Size");

  EXPECT_EQ(line, "\"Size\"");
}

}  // namespace
}  // namespace DataBinding::Qt6

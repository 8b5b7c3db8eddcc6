// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/foundation/String.h"

#include <climits>
#include <concepts>
#include <functional>
#include <iterator>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "../support/Allocations.h"
#include "DataBinding/foundation/SamplingHash.h"
#include "DataBinding/foundation/StringSplit.h"

namespace DataBinding {
namespace {

using namespace std::string_view_literals;

const wchar_t* const noText = nullptr;

static_assert(!std::convertible_to<VtrString, bool> && !std::constructible_from<bool, VtrString>);
static_assert(!std::convertible_to<VtrString, const volatile void*>);
static_assert(!std::invocable<std::plus<>, VtrString, int>);
static_assert(!std::invocable<std::plus<>, wchar_t, VtrString>);
static_assert(!std::invocable<std::logical_not<>, VtrString>);
static_assert(std::convertible_to<VtrString, const wchar_t*>);
#if defined(__clang__)  // g++ 12 stops at the question
template <class T>
concept Deletable = requires(T text) {
  delete text;
};
static_assert(!Deletable<VtrString>);
#endif

TEST(Strings, CopiesKeepTheirTextWhenTheOriginalChanges) {
  VtrString original = L"Memory";
  const VtrString copy = original;

  original += L"Use";
  original += original;

  EXPECT_STREQ(original, L"MemoryUseMemoryUse");

  const VtrString moved = std::move(original);
  EXPECT_TRUE(original.IsEmpty());

  original = L"<" + copy + VtrStringView(L">>", 1);
  EXPECT_STREQ(original, L"<Memory>");
  EXPECT_STREQ(copy, L"Memory");
}

TEST(Strings, ShareTheirTextWithCopiesWithoutAllocating) {
  const VtrString text = L"A name that is too long for a small buffer";
  const auto before = Testing::Allocations();
  VtrString copy = text;

  copy = VtrString(copy).Mid(0);

  EXPECT_EQ(copy, text);
  EXPECT_EQ(Testing::Allocations(), before);
}

TEST(Strings, MidTakesAnyStart) {
  for (const auto& [start, rest] :
       {std::pair(INT_MIN, L"Memory"), {0, L"Memory"}, {5, L"y"}, {6, L""}, {INT_MAX, L""}}) {
    EXPECT_EQ(VtrString(L"Memory").Mid(start), rest) << start;
  }
}

TEST(Strings, NullPointersAreEmptyTexts) {
  EXPECT_STREQ(VtrString(noText), L"");
  EXPECT_TRUE(VtrStringView(noText, 5).IsEmpty() && VtrStringView(L"abc", -1).IsEmpty());
  EXPECT_STREQ(VtrString(L"text").Format(noText), L"");
  EXPECT_STREQ(VtrString().Format(L"<%s>", noText), L"<>");
  EXPECT_TRUE(String::Split(noText, L',', true, false).empty());
}

TEST(Strings, SurrogatesWithoutAPartnerBecomeReplacementCharacters) {
  const wchar_t noCharacters[] = {static_cast<wchar_t>(0xD800), L'x', static_cast<wchar_t>(0xDFFF)};
  EXPECT_EQ(VtrString(VtrStringView(noCharacters, 3)).ToUtf8(), "\uFFFDx\uFFFD");
}

TEST(Strings, CompareNoCaseFoldsByUnicode) {
  const std::pair<const wchar_t*, const wchar_t*> equal[] = {
      {L"ÄÖÜ", L"äöü"},
      {L"ΌΣΟΣ", L"όσος"},  // both forms of the small sigma
      {L"\u212A", L"k"},   // Kelvin sign
      {L"\u1E9E", L"ß"},
      {L"ЖУК\u0100", L"жук\u0101"},
      {L"\U00010400", L"\U00010428"},
      {L"\uAB70", L"Ꭰ"},
      {L"", noText},
  };

  for (const auto& [left, right] : equal) {
    EXPECT_EQ(VtrString(left).CompareNoCase(right), 0) << VtrString(left);
    EXPECT_EQ(VtrString(right).CompareNoCase(left), 0) << VtrString(left);
  }

  const std::pair<const wchar_t*, const wchar_t*> ordered[] = {
      {L"ss", L"ß"}, {L"i", L"\u0130"}, {L"I", L"ı"}, {L"a", L"B"}, {L"doc", L"DOCS"}, {L"[", L"Z"},
  };

  for (const auto& [less, more] : ordered) {
    EXPECT_LT(VtrString(less).CompareNoCase(more), 0) << VtrString(less).ToUtf8();
    EXPECT_GT(VtrString(more).CompareNoCase(less), 0) << VtrString(less).ToUtf8();
  }
}

TEST(Strings, HashLikeViewsOfTheSameText) {
  EXPECT_EQ(std::hash<VtrString>()(L"abc"), std::hash<VtrStringView>()({L"abcd", 3}));
}

template <class Text>
void CompareWithAppAndZebra(const Text& app, const Text& zebra) {
  const VtrString text = L"app\0le"sv;
  EXPECT_TRUE(text != app && app < text && !(text <= app) && text > zebra);
  EXPECT_TRUE(VtrString(app) == app && app == VtrString(app) && VtrString(app) >= app);
  const std::set<VtrString, std::less<>> names{text, VtrString(app), VtrString(zebra)};
  EXPECT_TRUE(*names.begin() == zebra && names.find(app) == std::next(names.begin()));
}

TEST(Strings, CompareWithAnyWideText) {
  CompareWithAppAndZebra<const wchar_t*>(L"app", L"Zebra");
  CompareWithAppAndZebra<std::wstring>(L"app", L"Zebra");
  CompareWithAppAndZebra<std::wstring_view>(L"app", L"Zebra");
  CompareWithAppAndZebra<VtrStringView>(L"app", L"Zebra");
  CompareWithAppAndZebra<VtrString>(L"app", L"Zebra");
}

TEST(Strings, GoToStreamsOfEitherWidth) {
  std::ostringstream narrow;
  std::wostringstream wide;

  narrow << VtrString(L"Größe") << VtrString() << '.';
  wide << VtrString(L"Größe\0"sv) << L'.';

  EXPECT_EQ(narrow.str(), "Größe.");
  EXPECT_EQ(wide.str(), L"Größe\0."sv);
}

TEST(Strings, FormatPrintsAsPrintfDoes) {
  const auto format = [](const wchar_t* pattern, const auto&... values) {
    return VtrString().Format(pattern, values...).ToUtf8();
  };

  EXPECT_EQ(format(L"%s|%5s|%-5s|%.2s", L"Ä", L"ab", VtrString(L"cd"), L"efg"), "Ä|   ab|cd   |ef");
  EXPECT_EQ(format(L"%lld %hd %zu %td", LLONG_MIN, 70000, SIZE_MAX, std::ptrdiff_t{-1}),
            "-9223372036854775808 70000 18446744073709551615 -1");
  EXPECT_EQ(format(L"%#x %X %x %u", 255, 255U, -1, -1), "0xff FF ffffffff 4294967295");
  EXPECT_EQ(format(L"%.1f", 15.55F), "15.6");
  EXPECT_EQ(format(L"%*d|%-*d|%*d|%.*f", 4, 1, 3, 2, -3, 3, 1, 2.25), "   1|2  |3  |2.2");
  EXPECT_EQ(format(L"100%% %c%3c", L'Ж', L'y'), "100% Ж  y");
}

TEST(Strings, FormatKeepsTheTextWhenItRefuses) {
  VtrString text = L"kept";
  int number = 0;

  EXPECT_THROW(text.Format(L"%n", &number), std::invalid_argument);

  for (const auto* wrong : {L"%s", L"%f", L"%d %d", L"50%", L"%9999999999d"}) {
    EXPECT_THROW(text.Format(wrong, 1), std::invalid_argument) << VtrString(wrong);
  }

  EXPECT_THROW(text.Format(L"%d", L"1"), std::invalid_argument);
  EXPECT_THROW(text.Format(L"%d", 1.5), std::invalid_argument);
  EXPECT_THROW(text.Format(L"%*d", INT_MIN, 1), std::invalid_argument);
  EXPECT_THROW(text.Format(L"%*3d", 1, 1), std::invalid_argument);
  EXPECT_THROW(text.Format(L"%.*3f", -1, 1.5), std::invalid_argument);
  EXPECT_STREQ(text.Format(L"%s,%s", text, text), L"kept,kept");
}

TEST(Strings, SplitTrimsNothingButBlanksAtTheEndsOfAPiece) {
  EXPECT_EQ(String::Split(L"\tA b\r\n, ,\u00A0", L',', false, true),
            (std::vector<VtrString>{L"A b", L"\u00A0"}));
  EXPECT_EQ(String::Split(L" A ,,B", L',', true, false),
            (std::vector<VtrString>{L" A ", L"", L"B"}));
  EXPECT_EQ(String::SplitView(VtrStringView(L"a::b:c", 5), L"::", false, true).at(1), L"b:");
  EXPECT_EQ(String::SplitView(L"a,b", L"", false, true).size(), 1U);
}

TEST(Strings, SamplingHashHasTheValuesThatTablesRelyOn) {
  const std::pair<const wchar_t*, std::uint64_t> cases[] = {
      {L"", 0x42c52834b230ef45},
      {L"A", 0x98137a0ed3ba9f38},
      {L"Properties", 0x5fb7262d1903aad3},                 // ten characters: each is read
      {L"PropertyOne", 0xaebca4ff4546e75b},                // eleven: every second one
      {L"P_o_e_t_O_e", 0xaebca4ff4546e75b},                // alike where it is read
      {L"ConnectionPoolUtilization", 0xc847c9d732ce5f16},  // every third one
      {L"Имя", 0xb9afc15bee48f306},
      {L"温度", 0x877fb6b7de2da5ab},
  };

  for (const auto& [name, hash] : cases) EXPECT_EQ(SamplingHash(name), hash);
}

}  // namespace
}  // namespace DataBinding

#include <limits>
#include <memory>
#include <optional>

#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using Framework::DataBind;

/// A text box and a gauge. Notes what is written to the box.
class TwoWayBinds : public BindTest {
 protected:
  using Join = TwoWayJoin<int, VtrString>;

  Join MakeJoin(DataBind<int>& joined) {
    return TwoWay(
        joined, [this] { return text; },
        [this](const VtrString& shown) {
          text = shown;
          log += text.ToUtf8() + " ";
          if (onWrite) onWrite();
        },
        TextConverter<int>(),
        [](const int& wanted) { return wanted == 13 ? L"brings bad luck" : L""; });
  }
  SetResult Edit(Join& join, const VtrString& typed) {
    text = typed;
    return join.Commit();
  }

  VtrString text;
  std::function<void()> onWrite;
  std::optional<DataBind<int>> bind{std::in_place, child.get(), L"Gauge", L"Level"};
};

TEST_F(TwoWayBinds, ShowTheValueAtOnceAndOnEachChange) {
  auto* gauge = AddGauge(child, 3);
  auto join = MakeJoin(*bind);
  gauge->Level.Set(4);
  Join moved = std::move(join);
  gauge->Level.Set(5);
  child->DeleteLocalDataSourceInstance(L"Gauge");
  AddGauge(child, 6);
  EXPECT_EQ(Notes(), "3 4 5 6");
  EXPECT_TRUE(Edit(moved, L"7").changed);
  EXPECT_TRUE(join.Commit().IsAccepted());
}

TEST_F(TwoWayBinds, CommitSetsTheValueWithoutAnEcho) {
  auto* gauge = AddGauge(child);
  auto join = MakeJoin(*bind);
  auto other = MakeJoin(*bind);
  Notes();
  EXPECT_TRUE(Edit(join, L"007").changed);
  EXPECT_EQ(*gauge->Level, 7);
  EXPECT_EQ(Notes(), "7") << "the other one's";
  EXPECT_FALSE(Edit(join, L"7").changed);
  EXPECT_EQ(Notes(), "");
}

TEST_F(TwoWayBinds, CommitShowsWhatTheSourceMadeOfTheValue) {
  auto* gauge = AddGauge(child);
  auto join = MakeJoin(*bind);
  EXPECT_TRUE(Edit(join, L"250").changed);
  EXPECT_EQ(*gauge->Level, 100);
  EXPECT_EQ(Notes(), "1 100");
  gauge->Level.Set(2);
  EXPECT_EQ(Notes(), "2");
}

TEST_F(TwoWayBinds, RefusedEditsKeepTheTextAndGiveTheReason) {
  AddGauge(child);
  auto join = MakeJoin(*bind);
  Notes();
  struct Case {
    const wchar_t *typed, *reason;
  };
  for (const Case& each :
       {Case{L"12x", L"\"12x\" is not a value of type int."},
        {L"99999999999", L"\"99999999999\" is out of the range of type int."},
        {L"13", L"brings bad luck"},
        {L"-1", L"Property \"Level\" of data source \"Gauge\" refuses the value: is negative"}}) {
    const SetResult refused = Edit(join, each.typed);
    EXPECT_EQ(refused.error, PropertyError::Refused);
    EXPECT_EQ(refused.text, each.reason);
    EXPECT_EQ(text, each.typed);
  }
  EXPECT_EQ(*bind->Get(), 1);
  DataBind<int> limit(child.get(), L"Gauge", L"Limit");
  auto limitJoin = MakeJoin(limit);
  EXPECT_EQ(Edit(limitJoin, L"2").error, PropertyError::ReadOnly);
  child->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(Edit(join, L"2").error, PropertyError::NoSource);
  bind.reset();
  EXPECT_EQ(Edit(join, L"2").text, L"The bind is gone.");
  EXPECT_EQ(Notes(), "100");
}

TEST_F(TwoWayBinds, CommitInsideAWriteDoesNothing) {
  auto* gauge = AddGauge(child);
  std::optional<Join> join(MakeJoin(*bind));
  onWrite = [&] {
    text = L"55";
    EXPECT_FALSE(join->Commit().changed);
  };
  gauge->Level.Set(3);
  EXPECT_EQ(*gauge->Level, 3);
}

TEST_F(TwoWayBinds, JoinAndBindMayEndInsideTheWidgetsFunctions) {
  for (const bool isBindEnded : {false, true}) {
    auto* gauge = AddGauge(child, 50);
    bind.emplace(child.get(), L"Gauge", L"Level");
    auto join = std::make_unique<Join>(MakeJoin(*bind));
    onWrite = [&] {
      if (isBindEnded) bind.reset();
      join.reset();
    };
    gauge->Level.Set(60);
    EXPECT_EQ(join, nullptr);
    onWrite = nullptr;
    gauge->Level.Set(70);
    EXPECT_EQ(Notes(), "50 60");
    child->DeleteLocalDataSourceInstance(L"Gauge");
  }
}

TEST_F(TwoWayBinds, SubscriberMayEndJoinAndBindDuringACommit) {
  AddGauge(child);
  const auto end = bind->SubscribeToChanges([this] { bind.reset(); });
  auto join = MakeJoin(*bind);
  EXPECT_TRUE(Edit(join, L"200").changed);
  EXPECT_EQ(Edit(join, L"3").error, PropertyError::NoSource);
  EXPECT_EQ(Notes(), "1");
}

TEST_F(TwoWayBinds, WidgetOfTheSameTypeNeedsNoConverter) {
  auto* gauge = AddGauge(child);
  DataBind<VtrString> unit(child.get(), L"Gauge", L"Unit");
  auto join = TwoWay(
      unit, [this] { return text; }, [this](const VtrString& shown) { text = shown; });
  EXPECT_EQ(text, L"kg");
  text = L"t";
  EXPECT_TRUE(join.Commit().changed);
  EXPECT_EQ(*gauge->Unit, L"t");
}

TEST(TextConverters, GiveBackWhatTheyShow) {
  const auto expect = [](const auto& value, const wchar_t* text) {
    const auto converter = TextConverter<std::decay_t<decltype(value)>>();
    EXPECT_EQ(converter.show(value), text);
    EXPECT_EQ(*converter.parse(text), value);
  };
  expect(-42, L"-42");
  expect(std::numeric_limits<std::uint64_t>::max(), L"18446744073709551615");
  expect(0.1, L"0.1");
  expect(1e300, L"1e+300");
  expect(true, L"true");
  expect(false, L"false");
  expect(VtrString(L" a "), L" a ");
}

TEST(TextConverters, RefuseWhatIsNotAllOfAValue) {
  for (const auto* text : {L"", L" 1", L"1 ", L"1,5", L"1.5.", L"0x1", L"\x0661", L"one"}) {
    EXPECT_EQ(TextConverter<double>().parse(text).error, PropertyError::Refused);
    EXPECT_FALSE(TextConverter<bool>().parse(text));
  }
  EXPECT_FALSE(TextConverter<int>().parse(L"1.5"));
  EXPECT_FALSE(TextConverter<unsigned>().parse(L"-1"));
  EXPECT_EQ(TextConverter<signed char>().parse(L"128").text,
            L"\"128\" is out of the range of type signed char.");
}

}  // namespace
}  // namespace DataBinding::Testing

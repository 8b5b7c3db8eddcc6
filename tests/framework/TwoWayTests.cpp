// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/TwoWay.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/framework/DataBind.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using Framework::DataBind;

/// A text box and a gauge. Notes what is written to the box.
class TwoWayBinds : public BindTest {
 protected:
  using Join = TwoWayJoin;

  Join MakeJoin(DataBind<int>& joined) {
    return TwoWay(
        joined, [this] { return text; },
        [this](const VtrString& shown) {
          text = shown;
          log += text.ToUtf8() + " ";
          if (onWrite) onWrite();
        },
        TextConverter<int>(),
        [this](const int& wanted) {
          if (onValidate) onValidate();
          return wanted == 13 ? L"brings bad luck" : L"";
        });
  }
  SetResult Edit(Join& join, const VtrString& typed) {
    text = typed;
    return join.Commit();
  }

  VtrString text;
  std::function<void()> onWrite;
  std::function<void()> onValidate;
  std::optional<DataBind<int>> bind{std::in_place, child.get(), L"Gauge", L"Level"};
};

TEST_F(TwoWayBinds, MoveToAnotherJoinWhichGoesOn) {
  auto* gauge = AddGauge(child, 3);
  auto join = MakeJoin(*bind);
  Join moved = std::move(join);

  gauge->Level.Set(4);

  EXPECT_EQ(Notes(), "3 4");
  EXPECT_TRUE(Edit(moved, L"007").changed);
  EXPECT_EQ(text, L"007") << "no echo";
  EXPECT_TRUE(join.Commit().IsAccepted());
}

TEST_F(TwoWayBinds, RefusedEditsKeepTheTextForAReason) {
  AddGauge(child);
  auto join = MakeJoin(*bind);
  Notes();
  struct Case {
    const wchar_t* typed = L"";
    const wchar_t* text = L"";
    const wchar_t* reason = text;
  };

  for (const Case& each :
       {Case{L"12x", L"\"12x\" is not a value of type int."},
        {L"99999999999", L"\"99999999999\" is out of the range of type int."},
        {L"13", L"brings bad luck"},
        {L"-1", L"Property \"Level\" of data source \"Gauge\" refuses the value: is negative",
         L"is negative"}}) {
    const SetResult refused = Edit(join, each.typed);
    EXPECT_EQ(refused.error, PropertyError::Refused);
    EXPECT_EQ(refused.text, each.text);
    EXPECT_EQ(refused.reason, each.reason);
    EXPECT_EQ(text, each.typed);
  }
  EXPECT_EQ(*bind->Get(), 1);
  child->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(Edit(join, L"2").error, PropertyError::NoSource);
  EXPECT_EQ(Notes(), "");
}

TEST_F(TwoWayBinds, CommitInsideTheJoinsFunctionsDoesNothing) {
  auto* gauge = AddGauge(child);
  std::optional<Join> join(MakeJoin(*bind));
  onWrite = onValidate = [&] {
    text = L"55";
    EXPECT_FALSE(join->Commit().changed);
  };

  gauge->Level.Set(3);

  EXPECT_EQ(*gauge->Level, 3);
  EXPECT_TRUE(Edit(*join, L"4").changed);
  EXPECT_EQ(*gauge->Level, 4);

  join->WhenAbsent([&] { EXPECT_TRUE(join->Commit().IsAccepted()); });
  child->DeleteLocalDataSourceInstance(L"Gauge");
}

/// The functions note themselves: r(ead), p(arse), v(alidate), s(how), w(rite); c is a change.
TEST_F(TwoWayBinds, CommitCallsNoneOfTheFunctionsOnceOneHasEndedTheJoin) {
  auto* gauge = AddGauge(child);
  std::optional<TwoWayJoin> join;
  char ending = 0;
  const auto note = [&](char function) {
    log += function;
    if (function == ending) join.reset();
  };
  const auto watch = gauge->Register([&] { note('c'); }, L"Level");
  const Converter<int, int> converter{[&](const int& level) { return note('s'), level; },
                                      [&](const int& typed) {
                                        note('p');
                                        return SameValue<int>().parse(typed);
                                      }};

  for (const auto* each : {"r", "p", "v", "c", "s"}) {
    join.emplace(TwoWay(
        *bind, [&] { return note('r'), 250; }, [&](int) { note('w'); }, converter,
        [&](const int&) { return note('v'), VtrString(); }));
    ending = *each;
    EXPECT_EQ(join->Commit().text, ending == 'c' || ending == 's' ? L"" : L"The join is gone.");
    log += ' ';
  }

  EXPECT_EQ(log, "swr swrp swrpv swrpvcc swrpvccs ");
}

TEST_F(TwoWayBinds, CommitRefusesWhatNeedsAnObjectThatIsGone) {
  struct Box : SupportsWeakPtr<Box> {
    int Read() { return 7; }
    int Show(const int& level) { return level; }
    PropertyValue<int> Parse(const int& typed) { return SameValue<int>().parse(typed); }
    VtrString Check(const int& /*level*/) { return {}; }
  };
  auto* gauge = AddGauge(child);
  int writes = 0;
  const auto write = [&](const int&) { ++writes; };
  const auto read = [] { return 7; };
  auto box = std::make_unique<Box>();
  const auto weak = box->AsWeakPtr();
  std::array joins{
      TwoWay(*bind, BindWeak(weak, &Box::Read), write),
      TwoWay(*bind, read, write, {SameValue<int>().show, BindWeak(weak, &Box::Parse)}),
      TwoWay(*bind, read, write, SameValue<int>(), BindWeak(weak, &Box::Check)),
      TwoWay(*bind, read, write, {BindWeak(weak, &Box::Show), SameValue<int>().parse})};

  box.reset();

  for (std::size_t i = 0; i < 3; ++i) EXPECT_FALSE(joins[i].Commit().reason.IsEmpty());
  EXPECT_EQ(*gauge->Level, 1);

  gauge->Level.Set(2);
  EXPECT_EQ(writes, 7) << "nothing for the one that cannot convert any more";
}

TEST_F(TwoWayBinds, CommitShowsWhatTheSourceMadeOfTheValueAlsoWhenItThrows) {
  AddGauge(child);
  auto join = MakeJoin(*bind);

  EXPECT_TRUE(Edit(join, L"250").changed);
  EXPECT_EQ(text, L"100");

  bind->Set(99);
  EXPECT_THROW(static_cast<void>(Edit(join, L"1000")), int);
  EXPECT_EQ(text, L"100");
}

TEST_F(TwoWayBinds, CommitOfWhatIsShownSetsNothing) {
  auto* gauge = AddGauge(child, 57);
  int tens = 0;
  auto join = TwoWay(
      *bind, [&] { return tens; }, [&](const int& shown) { tens = shown; },
      Converter<int, int>{[](const int& level) { return level / 10; },
                          [](const int& shown) {
                            return PropertyValue<int>{shown * 10, PropertyError::None, {}};
                          }});

  EXPECT_TRUE(join.Commit().IsAccepted());
  EXPECT_EQ(*gauge->Level, 57);

  for (const int typed : {6, 5}) {
    tens = typed;
    EXPECT_TRUE(join.Commit().changed) << "5 was shown once, but is not the value any more";
  }
}

TEST_F(TwoWayBinds, AbsenceIsToldWheneverThereIsNoValue) {
  auto join = MakeJoin(*bind);
  join.WhenAbsent([this] { log += "- "; });
  auto* gauge = AddGauge(child);
  const auto end =
      gauge->Register([this] { child->DeleteLocalDataSourceInstance(L"Gauge"); }, L"Level");

  EXPECT_TRUE(Edit(join, L"5").changed);

  bind->Connect(parent.get());
  Add(parent, L"Gauge");  // has no such property, so that the value is still absent
  EXPECT_EQ(Notes(), "- 1 -");

  AddGauge(child);
  bind->Connect(child.get());
  join.WhenAbsent([this] { log += "gone "; });
  EXPECT_EQ(Notes(), "1");

  child->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(Notes(), "gone");
}

/// A property that comes and goes while its source stays announces neither.
TEST_F(TwoWayBinds, EditFindsOutThatTheValueHasGoneOrComeInSilence) {
  auto* drawer = AddDrawer(child);
  drawer->Level.emplace(drawer, PropertyName(L"Level"), 1);
  bind.emplace(child.get(), L"Drawer", L"Level");
  auto join = MakeJoin(*bind);

  drawer->Level.reset();

  EXPECT_EQ(Edit(join, L"1").error, PropertyError::Absent) << "though it is what was shown";

  join.WhenAbsent([this] { log += "- "; });
  drawer->Level.emplace(drawer, PropertyName(L"Level"), 5);
  EXPECT_TRUE(Edit(join, L"1").changed);
  EXPECT_EQ(Notes(), "1 - 1") << "which says that there is a value again";
}

TEST_F(TwoWayBinds, BindThatIsEndingIsGone) {
  auto* gauge = AddGauge(child);
  auto join = MakeJoin(*bind);
  VtrString told;
  const auto end = [&](int*) {
    gauge->Level.Set(*gauge->Level + 1);
    told = Edit(join, L"5").text;
  };
  std::vector<Subscription> watches;

  for (int i = 0; i < 20; ++i) {  // more than are let go of at a time
    watches.push_back(bind->SubscribeToChanges([kept = std::shared_ptr<int>(nullptr, end)] {}));
  }
  bind.reset();

  EXPECT_EQ(told, L"The bind is gone.");

  int reads = 0;
  bind.emplace(child.get(), L"Gauge", L"Level");
  auto counted = TwoWay(
      *bind, [&] { return ++reads; }, [](int) {});
  bind.reset();
  EXPECT_FALSE(counted.Commit().IsAccepted());
  EXPECT_EQ(reads, 0);
}

TEST(TextConverters, ShowTheShortestDigits) {
  EXPECT_EQ(TextConverter<double>().show(0.1), L"0.1");
}

TEST(TextConverters, QuoteWhatTheyRefuseUpToALength) {
  EXPECT_EQ(TextConverter<signed char>().parse(L"128").text,
            L"\"128\" is out of the range of type signed char.");
  EXPECT_EQ(TextConverter<int>().parse(VtrString().Format(L"%050d", 7) + L"!").text,
            L"\"0000000000000000000000000000000000000000...\" is not a value of type int.");
  EXPECT_EQ(TextConverter<int>().parse(VtrString().Format(L"%039d", 7) + L"!").text,
            L"\"000000000000000000000000000000000000007!\" is not a value of type int.");
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/AnyBind.h"

#include <memory>

#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/TwoWay.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using Framework::AnyBind;
using Framework::DataBind;
using State = Framework::BindStatus::State;

class AnyBinds : public BindTest {
 protected:
  AnyBind level{child.get(), L"Gauge", L"Level"};
};

TEST_F(AnyBinds, FollowAPropertyOfAnyType) {
  AnyBind unit(child.get(), L"Gauge", L"Unit");
  const auto watch =
      level.SubscribeToValue([this](const Value& now) { log += now.ToText().ToUtf8() + " "; });
  EXPECT_EQ(level.Read().error, PropertyError::NoSource);
  EXPECT_EQ(level.Write(1).error, PropertyError::NoSource);

  AddGauge(parent, 3);
  EXPECT_TRUE(level.WriteText(L"4").changed);
  EXPECT_TRUE(level.Write(5.0).changed);
  AddGauge(child, 7);

  EXPECT_EQ(Notes(), "3 4 5 7");
  EXPECT_EQ(level.Kind(), ValueKind::Signed);
  EXPECT_EQ(*AnyBind(unit).ReadText(), L"kg");
}

TEST_F(AnyBinds, StatusComplainsOfNoType) {
  AddGauge(child);

  EXPECT_EQ(level.Status().state, State::Connected);
  EXPECT_EQ(AnyBind(child.get(), L"Gauge", L"Limit").Status().state, State::ReadOnly);
  EXPECT_EQ(AnyBind(child.get(), L"Gauge", L"level").Status().state, State::CaseDiffers);
  const AnyBind missing(child.get(), L"Gauge", L"Weight");
  EXPECT_EQ(missing.Status().state, State::NoProperty);
  EXPECT_EQ(missing.Read().text, missing.Status().text);
}

TEST_F(AnyBinds, CheckAsTheyWouldSet) {
  auto* gauge = AddGauge(child, 3);
  DataBind<int> typed(child.get(), L"Gauge", L"Level");

  EXPECT_EQ(level.Check(-1).text, level.Write(-1).text);
  EXPECT_EQ(level.CheckText(L"x").reason, level.WriteText(L"x").reason);
  EXPECT_EQ(typed.Check(-1).reason, L"is negative");
  EXPECT_TRUE(typed.Check(4).IsAccepted() && level.Check(4).IsAccepted());
  EXPECT_EQ(*gauge->Level, 3);
}

/// Its two days limit each other.
struct Stay : NamedDataSource {
  Stay() : NamedDataSource(L"Stay") { begin.ValidatorReads(end); }
  Property<int> begin{
      this, L"Begin", 1, {.validate = [this](int day) { return day >= *end ? L"too late" : L""; }}};
  Property<int> end{this,
                    L"End",
                    5,
                    {.validate = [this](int day) { return day <= *begin ? L"too early" : L""; }},
                    begin};
};

class DependentRefusals : public BindTest {
 protected:
  DependentRefusals() {
    child->AddDataSource(stay);
    join.WhenAskedAgain([this](const SetResult& result) {
      log += (result.IsAccepted() ? "accepted" : result.reason.ToUtf8()) + " ";
      if (onAsked) onAsked();
    });
  }

  Stay* stay = MakeDataSource<Stay>(nullptr).release();
  DataBind<int> end{child.get(), L"Stay", L"End"};
  int typed = 0;
  int written = 0;
  std::function<void()> onAsked;
  TwoWayJoin join = TwoWay(
      end, [this] { return typed; },
      [this](int now) {
        typed = now;
        ++written;
      });
};

TEST_F(DependentRefusals, AreAskedAboutAgainWithoutASet) {
  stay->begin.Set(3);
  typed = 2;
  EXPECT_EQ(join.Check().reason, L"too early");
  EXPECT_EQ(join.Commit().reason, L"too early");

  stay->begin.Set(1);
  stay->begin.Set(4);

  EXPECT_EQ(Notes(), "accepted too early");
  EXPECT_EQ(typed, 2) << "what the user typed stays";
  EXPECT_EQ(*stay->end, 5);
  EXPECT_EQ(written, 1);
}

TEST_F(DependentRefusals, AreForgottenWithTheNextEditOrValue) {
  typed = 0;
  EXPECT_FALSE(join.Commit().IsAccepted());
  stay->end.Set(6);
  stay->begin.Set(2);
  typed = 1;
  EXPECT_FALSE(join.Commit().IsAccepted());
  typed = 7;
  EXPECT_TRUE(join.Commit().changed);
  stay->begin.Set(3);

  EXPECT_EQ(Notes(), "");
}

TEST_F(DependentRefusals, MayBeCommittedOrEndedWhenTheyAreAskedAbout) {
  typed = 1;
  EXPECT_FALSE(join.Commit().IsAccepted());
  onAsked = [this] { join.Commit(); };
  stay->begin.Set(0);
  EXPECT_EQ(*stay->end, 1);

  typed = 0;
  EXPECT_FALSE(join.Commit().IsAccepted());
  onAsked = [this] { static_cast<void>(TwoWayJoin(std::move(join))); };
  stay->begin.Set(-1);
  stay->begin.Set(-2);

  EXPECT_EQ(Notes(), "accepted accepted");
}

}  // namespace
}  // namespace DataBinding::Testing

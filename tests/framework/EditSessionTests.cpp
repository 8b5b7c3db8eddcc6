// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/EditSession.h"

#include <algorithm>
#include <array>
#include <memory>
#include <optional>

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/EditGroup.h"
#include "DataBinding/framework/TwoWay.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using Framework::DataBind;

const char* NameOf(EditState state) {
  constexpr std::array names{"clean", "typed", "refused", "conflict", "absent", "read-only"};
  return names.at(static_cast<std::size_t>(state));
}

/// A text box and a gauge. Notes what is written to the box, and the states.
class Edits : public BindTest {
 protected:
  EditSession MakeSession(DataBind<int>& joined) {
    return {joined, [this] { return text; },
            [this](const VtrString& shown) {
              text = shown;
              log += text.ToUtf8() + " ";
              if (onWrite) onWrite();
            },
            TextConverter<int>()};
  }
  void NoteStates() {
    states = session->OnState([this](EditState state) {
      log += std::string(NameOf(state)) + " ";
      if (onState) onState(state);
    });
  }
  void Type(const VtrString& typed) {
    text = typed;
    session->Typed();
  }

  VtrString text;
  std::function<void()> onWrite;
  std::function<void(EditState)> onState;
  Gauge* gauge = AddGauge(child, 3);
  std::optional<DataBind<int>> bind{std::in_place, child.get(), L"Gauge", L"Level"};
  std::optional<EditSession> session{MakeSession(*bind)};
  Subscription states;
};

TEST_F(Edits, AreFiledOnceAndOnlyIfSomethingWasTyped) {
  NoteStates();
  text = L"7";
  EXPECT_TRUE(session->Commit().IsAccepted());
  EXPECT_EQ(*gauge->Level, 3) << "the widget's own form of the value is not written back";

  Type(L"8");
  EXPECT_TRUE(session->Commit().changed);
  EXPECT_FALSE(session->Commit().changed);
  Type(L"9");
  Type(L"8");
  EXPECT_FALSE(session->HasTyped()) << "it is what is shown again";
  Type(L"250");
  EXPECT_TRUE(session->Commit().changed);

  EXPECT_EQ(text, L"100");
  EXPECT_EQ(Notes(), "3 typed clean typed clean typed 100 clean");
}

TEST_F(Edits, StayInTheWidgetWithTheReasonWhenRefused) {
  NoteStates();
  Type(L"-1");
  EXPECT_TRUE(session->Check().reason == L"is negative" && session->State() == EditState::Typed);
  EXPECT_EQ(session->Commit().error, PropertyError::Refused);
  EXPECT_EQ(session->Reason(), L"is negative");
  Type(L"x");
  EXPECT_EQ(session->State(), EditState::Refused) << "until the next commit";
  EXPECT_FALSE(session->Commit().IsAccepted());
  EXPECT_EQ(session->Reason(), L"\"x\" is not a value of type int.");
  session->Revert();

  EXPECT_TRUE(session->Reason().IsEmpty());
  EXPECT_EQ(Notes(), "3 typed refused refused 3 clean");
}

TEST_F(Edits, AreInConflictWithAChangeOfTheSource) {
  NoteStates();
  Type(L"5");
  gauge->Level.NotifyChanged();
  EXPECT_EQ(session->State(), EditState::Typed) << "nothing has changed";
  gauge->Level.Set(4);
  EXPECT_EQ(session->Commit().error, PropertyError::Conflict);
  EXPECT_EQ(session->Reason(), L"The value has changed since this was typed.");
  EXPECT_TRUE(session->Overwrite().changed);
  EXPECT_EQ(*gauge->Level, 5);
  Type(L"6");
  gauge->Level.Set(6);
  EXPECT_FALSE(session->HasTyped()) << "the source has what was typed";
  Type(L"7");
  gauge->Level.Set(8);
  gauge->Level.Set(6);
  EXPECT_EQ(session->State(), EditState::Typed) << "the source is as it was";

  EXPECT_EQ(Notes(), "3 typed conflict clean typed clean typed conflict typed");
}

TEST_F(Edits, AreNeverFiledIntoAnotherRecord) {
  auto* other = AddGauge(parent, 30);
  NoteStates();
  Type(L"5");
  child->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(session->Commit().reason, L"Another record has come since this was typed.");
  other->Level.Set(5);
  EXPECT_EQ(session->Commit().error, PropertyError::Conflict) << "also with a value that is typed";
  EXPECT_EQ(text, L"5");
  parent->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(session->State(), EditState::Absent);
  EXPECT_TRUE(session->HasTyped());
  EXPECT_EQ(session->Commit().error, PropertyError::NoSource);
  EXPECT_FALSE(session->Reason().IsEmpty()) << "the user is told that it cannot be filed";
  gauge = AddGauge(parent, 40);
  EXPECT_EQ(session->State(), EditState::Conflict);
  session->Revert();

  EXPECT_EQ(*gauge->Level, 40);
  EXPECT_EQ(Notes(), "3 typed conflict absent absent conflict 40 clean");
}

TEST_F(Edits, TellWhatMayNotBeEdited) {
  bind->Connect(nullptr);
  EXPECT_EQ(session->State(), EditState::Absent);
  DataBind<int> limit(child.get(), L"Gauge", L"Limit");
  session.emplace(MakeSession(limit));
  EXPECT_EQ(session->State(), EditState::ReadOnly);
  Type(L"5");
  EXPECT_EQ(session->Commit().error, PropertyError::ReadOnly);
  EXPECT_EQ(session->State(), EditState::Refused);

  EditSession moved = std::move(*session);
  EXPECT_TRUE(moved.HasTyped());
  EXPECT_TRUE(!session->HasTyped() && session->Commit().IsAccepted());
  EXPECT_EQ(session->State(), EditState::Absent);
}

TEST_F(Edits, EndInsideAnyFunctionWithoutFiling) {
  onState = [this](EditState) { session.reset(); };
  NoteStates();
  Type(L"5");
  EXPECT_FALSE(session.has_value());
  EXPECT_EQ(*gauge->Level, 3);

  session.emplace(MakeSession(*bind));
  onState = [this](EditState state) {
    if (state == EditState::Conflict) session->Revert();
    if (state == EditState::Refused) bind.reset();
  };
  NoteStates();
  Type(L"5");
  gauge->Level.Set(6);
  EXPECT_EQ(text, L"6");
  Type(L"-5");
  EXPECT_FALSE(session->Commit().IsAccepted());
  EXPECT_EQ(session->State(), EditState::Absent);
  session->Revert();
  session->Typed();
  EXPECT_EQ(text, L"-5");
}

TEST_F(Edits, EndWithTheBindInsideTheFirstWrite) {
  onWrite = [this] { bind.reset(); };
  session.emplace(MakeSession(*bind));
  EXPECT_EQ(session->State(), EditState::Absent);
  session->Typed();
  EXPECT_FALSE(session->HasTyped());
}

/// A subscriber that is told first may save the form because another record has come.
TEST_F(Edits, AreNotFiledIntoARecordThatTheyHaveNotHeardOf) {
  bind.emplace(child.get(), L"Gauge", L"Level");
  const auto save = bind->SubscribeToChanges([this](Framework::BindChange change) {
    if (change == Framework::BindChange::Replaced) session->Commit();
  });
  session.emplace(MakeSession(*bind));
  auto* outer = AddGauge(parent, 3);
  Type(L"5");

  child->DeleteLocalDataSourceInstance(L"Gauge");

  EXPECT_EQ(*outer->Level, 3);
  EXPECT_EQ(session->State(), EditState::Conflict);
}

TEST_F(Edits, TellEachStateToAllThatAreStillThere) {
  int told = 0;
  onState = [](EditState) { throw 1; };
  NoteStates();
  const auto next = session->OnState([&](EditState) { ++told; });
  text = L"5";
  EXPECT_THROW(session->Typed(), int);
  EXPECT_EQ(told, 1);

  onState = [this](EditState) { session->Revert(); };
  gauge->Level.Set(7);
  EXPECT_EQ(told, 2) << "the end of the conflict, and not the conflict";
  onState = [this](EditState) { session.reset(); };
  Type(L"8");
  EXPECT_EQ(told, 2);
}

/// A listener that runs an event loop, so that the user goes on typing.
TEST_F(Edits, ThatAreTypedWhileOneIsSetAreTheNextOnes) {
  Type(L"1");
  Subscription typing = bind->SubscribeToChanges([this](Framework::BindChange) { Type(L"12"); });
  EXPECT_TRUE(session->Commit().changed);
  typing.Cancel();

  EXPECT_EQ(*gauge->Level, 1);
  EXPECT_EQ(session->State(), EditState::Typed);
  EXPECT_TRUE(session->Commit().changed);
  EXPECT_EQ(*gauge->Level, 12);
}

TEST_F(Edits, KnowTheirOwnValueInAnotherForm) {
  Type(L"007");
  EXPECT_TRUE(session->Commit().changed);
  Type(L"0078");
  gauge->Level.NotifyChanged();
  EXPECT_EQ(session->State(), EditState::Typed);
  bind.reset();
  session->Revert();
  EXPECT_FALSE(session->HasTyped());
}

/// An edit of a slider from 0 to 10, beside the text box.
class GroupedEdits : public Edits {
 protected:
  GroupedEdits() {
    gauge->Ratio.Set(99);
    group.Add(*session);
    group.Add(ofSlider);
  }

  double slider = 0;
  DataBind<double> ratio{child.get(), L"Gauge", L"Ratio"};
  EditSession ofSlider{ratio, [this] { return slider; },
                       [this](double shown) { slider = std::min(shown, 10.0); }};
  EditGroup group;
};

TEST_F(GroupedEdits, AreCommittedTogether) {
  Type(L"-1");
  EXPECT_TRUE(group.HasTyped());
  EXPECT_EQ(group.CommitAll().reason, L"is negative");
  EXPECT_EQ(*gauge->Ratio, 99) << "though the slider shows 10";
  slider = 10;
  ofSlider.Typed();
  EXPECT_FALSE(group.CommitAll().IsAccepted());
  EXPECT_EQ(*gauge->Ratio, 10) << "which the user has chosen now";

  group.RevertAll();

  EXPECT_FALSE(group.HasTyped());
  EXPECT_EQ(text, L"3");
}

TEST_F(GroupedEdits, AreTriedAgainWhereOthersHaveLetThemPass) {
  const auto atMost = [this](const double& wanted) {
    return wanted <= *gauge->Level ? L"" : L"is too much";
  };
  EditSession limited(
      ratio, [this] { return slider; }, [](double) {}, SameValue<double>(), atMost);
  auto both = std::make_unique<EditGroup>();
  both->Add(limited);
  both->Add(*session);
  slider = 8;
  limited.Typed();
  Type(L"9");

  onState = [&](EditState) { both.reset(); };
  NoteStates();
  EXPECT_TRUE(both->CommitAll().IsAccepted());
  EXPECT_EQ(*gauge->Ratio, 8);
}

TEST_F(GroupedEdits, MayEndWithinACommit) {
  Type(L"4");
  onState = [&](EditState) { session.reset(); };
  NoteStates();

  EXPECT_TRUE(group.CommitAll().IsAccepted());
  EXPECT_FALSE(group.HasTyped());
  EXPECT_FALSE(session.has_value());
  EXPECT_EQ(*gauge->Level, 4);
}

TEST_F(GroupedEdits, TellWhetherAnythingIsTyped) {
  const Subscription told = group.OnState([&](bool typed) { log += typed ? "typed " : "none "; });
  log.clear();
  Type(L"4");
  slider = 8;
  ofSlider.Typed();
  group.Remove(*session);
  EXPECT_EQ(log, "typed ");
  ofSlider.Commit();

  EXPECT_EQ(log, "typed none ");
  EXPECT_TRUE(session->HasTyped());
  group.Add(*session);
  child->DeleteLocalDataSourceInstance(L"Gauge");
  log.clear();
  session->Revert();
  EXPECT_EQ(Notes(), "none") << "also while there is no value";
}

TEST_F(GroupedEdits, TellNothingThatIsNotTrueAnyMore) {
  auto both = std::make_unique<EditGroup>();
  both->Add(*session);
  const Subscription first =
      both->OnState([&](bool typed) { typed ? session->Revert() : both.reset(); });
  const Subscription second = both->OnState([&](bool typed) { log += typed ? "typed " : "none "; });
  log.clear();
  Type(L"4");

  EXPECT_EQ(Notes(), "3");
}

TEST_F(GroupedEdits, SayWhichOfThemWasRefusedFirst) {
  Type(L"-1");
  EXPECT_EQ(group.CheckAll().reason, L"is negative");
  EXPECT_EQ(session->State(), EditState::Typed) << "since nothing was set";
  EXPECT_TRUE(group.WasRefusedFirst(*session));
  EXPECT_FALSE(group.WasRefusedFirst(ofSlider));
  Type(L"5");

  EXPECT_TRUE(group.CommitAll().IsAccepted());
  EXPECT_FALSE(group.WasRefusedFirst(*session));
}

}  // namespace
}  // namespace DataBinding::Testing

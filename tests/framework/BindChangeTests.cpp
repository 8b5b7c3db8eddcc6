// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/BindChange.h"

#include <memory>
#include <vector>

#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/framework/DataBind.h"
#include "Gauge.h"

namespace DataBinding::Testing {
namespace {

using Framework::BindChange;
using Framework::DataBind;

/// Notes the first letter of each change that it is told.
class ChangeNotes : public SupportsWeakPtr<ChangeNotes> {
 public:
  explicit ChangeNotes(std::string& notes) : log(notes) {}
  void Note(BindChange change) { log += "VCWR"[static_cast<std::size_t>(change)]; }

 private:
  std::string& log;
};

class BindChanges : public BindTest {
 protected:
  Subscription Note(Framework::IBaseDataBind& bind) {
    return bind.SubscribeToChanges(BindWeak(notes.AsWeakPtr(), &ChangeNotes::Note));
  }
  std::string Changes() { return std::exchange(log, {}); }

  ChangeNotes notes{log};
};

TEST_F(BindChanges, TellWhetherTheValueHasChangedComeGoneOrBeenReplaced) {
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto noting = Note(bind);

  auto* outer = AddGauge(parent);
  outer->Level.Set(2);
  EXPECT_EQ(Changes(), "CV");
  AddGauge(child);
  child->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(Changes(), "RR");
  bind = DataBind<int>(child.get(), L"Gauge", L"Level");
  bind = DataBind<int>(child.get(), L"Gauge", L"Limit");
  bind = DataBind<int>(child.get(), L"Gauge", L"Unit");
  EXPECT_EQ(Changes(), "VRW") << "the unit is no int";
  bind = DataBind<int>(child.get(), L"Gauge", L"Level");
  parent->DeleteLocalDataSourceInstance(L"Gauge");
  EXPECT_EQ(Changes(), "CW");
}

TEST_F(BindChanges, OfAPropertyThatIsThereOnlySometimesAreToldWhenItAnnounces) {
  auto* drawer = AddDrawer(child);
  DataBind<int> bind(child.get(), L"Drawer", L"Level");
  const auto noting = Note(bind);

  drawer->Level.emplace(drawer, PropertyName(L"Level"), 1);
  drawer->Level->Set(2);
  drawer->Level->Set(3);
  drawer->Level.reset();
  drawer->UpdateListeners(L"Level");
  EXPECT_EQ(Changes(), "CVW");
}

TEST_F(BindChanges, ThatASubscriberUndoesAreNotToldToThoseBehindIt) {
  auto undone = BindChange::Came;
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto undoing = bind.SubscribeToChanges([&](BindChange change) {
    if (change == undone) bind.Connect(change == BindChange::Went ? child.get() : nullptr);
  });
  const auto noting = Note(bind);
  const auto plain = bind.SubscribeToChanges([this] { log += "."; });

  auto* gauge = AddGauge(child);
  EXPECT_EQ(Changes(), "W..");
  undone = BindChange::Went;
  bind.Connect(child.get());
  bind.Connect(nullptr);
  EXPECT_EQ(Changes(), "C.C..");
  undone = BindChange::Value;
  gauge->Level.Set(2);
  EXPECT_EQ(Changes(), "W..");
}

TEST_F(BindChanges, ReachSubscribersToValuesOnlyWhereThereIsOne) {
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto noting = Note(bind);
  const auto telling = bind.SubscribeToValue([this](int now) { log += std::to_string(now); });

  AddGauge(child, 1)->Level.Set(2);
  child->DeleteLocalDataSourceInstance(L"Gauge");
  AddGauge(child, 3);
  EXPECT_EQ(Changes(), "C1V2WC3");
}

/// Tells where its list is kept, and computes another one.
class Catalogue : public NamedDataSource {
 public:
  Catalogue() : NamedDataSource(L"Catalogue") {}

  Property<std::vector<int>> Titles{this, L"Titles"};
  ComputedProperty<std::vector<int>> Sizes{
      this, L"Sizes", [this] { return std::vector(3, Titles->front()); }, Titles};
};

TEST_F(BindChanges, HandAKeptValueOnWithoutACopy) {
  auto& catalogue = Emplace<Catalogue>(*child);
  DataBind<std::vector<int>> kept(child.get(), L"Catalogue", L"Titles");
  DataBind<std::vector<int>> computed(child.get(), L"Catalogue", L"Sizes");
  const std::vector<int>* seen = nullptr;
  std::vector<int> copy;
  const std::array watches{kept.SubscribeToValue([&](const auto& now) { seen = &now; }),
                           computed.SubscribeToValue([&](const auto& now) { copy = now; })};

  catalogue.Titles.Set({7, 8});

  EXPECT_EQ(seen, &catalogue.Titles.Get());
  EXPECT_EQ(copy, std::vector(3, 7));
}

TEST_F(BindChanges, GiveEachSubscriberTheValueThatIsPresentWhenItRuns) {
  auto* gauge = AddGauge(child);
  DataBind<int> bind(child.get(), L"Gauge", L"Level");
  const auto note = [this](const int& now) { log += std::to_string(now) + " "; };
  const auto cap = bind.SubscribeToValue([&](const int& now) {
    if (now > 50) gauge->Level.Set(50);
    note(now);
  });
  const auto watch = bind.SubscribeToValue(note);

  gauge->Level.Set(70);

  EXPECT_EQ(Notes(), "50 50 50 50");
}

TEST_F(BindChanges, CallNoFurtherSubscriberWhenOneEndsWhatItIsToldOf) {
  auto bind = std::make_unique<DataBind<int>>(child.get(), L"Drawer", L"Level");
  auto* drawer = AddDrawer(child);
  drawer->Level.emplace(drawer, PropertyName(L"Level"), 1);
  std::vector<RepeatingCallback<void()>> ends{
      [&] { drawer->Level.reset(); }, [&] { child->DeleteLocalDataSourceInstance(L"Drawer"); },
      [&] { bind.reset(); }};
  for (const auto& end : ends) {
    Subscription own = bind->SubscribeToValue([&](int now) {
      log += std::to_string(now) + " ";
      own.Cancel();
      end();
    });
    const auto behind = bind->SubscribeToValue([this](int) { log += "behind "; });
    if (child->GetLocalDataSourceInstance(L"Drawer") == nullptr) drawer = AddDrawer(child);
    if (!drawer->Level) drawer->Level.emplace(drawer, PropertyName(L"Level"), 1);
    drawer->Level->Set(2);
  }
  EXPECT_EQ(Notes(), "2 2 2");
}

}  // namespace
}  // namespace DataBinding::Testing

#include <memory>
#include <vector>

#include "Gauge.h"

namespace DataBinding {

/// What the scopes of these tests stand in.
class IDataContext {};

namespace Testing {
namespace {

using Framework::BindState;
using Framework::DataBind;
using Framework::EventBind;

class Selection : public NamedDataSource {
 public:
  Selection() : NamedDataSource(L"Selection") {}
  Property<IDataContext*> Current{this, L"Current"};
};

class EventBindTest : public testing::Test {
 protected:
  ~EventBindTest() override { IDataSourceProvider::Destroy(scope); }

  IDataContext ofScope;
  IDataContext selected;
  IDataSourceProvider* scope = new DataSourceProvider(nullptr, nullptr, &ofScope);
};

TEST_F(EventBindTest, StandsInTheContextOfItsScopeUnlessItsOwnBindHasOne) {
  auto* selection = MakeDataSource<Selection>(scope).release();
  EventBind remove(L"", L"", L"Remove");
  EXPECT_EQ(remove.DataContext(), nullptr);
  EXPECT_EQ(remove.Status().state, BindState::NoProvider);
  remove.Connect(scope);
  EXPECT_EQ(remove.DataContext(), &ofScope);
  std::vector<IDataContext*> heard;
  remove.SetDataContextBind(
      std::make_unique<DataBind<IDataContext*>>(scope, L"Selection", L"Current"),
      [&heard](auto* bind, auto* /*context*/) {
        heard.push_back(static_cast<EventBind*>(bind)->DataContext());
      });
  scope->AddDataSource(selection);
  selection->Current.Set(&selected);
  scope->DeleteLocalDataSourceInstance(L"Selection");
  EXPECT_EQ(heard, (decltype(heard){nullptr, &selected, &ofScope}));
  EXPECT_EQ(remove.Status().state, BindState::Connected);
  IDataSourceProvider::Destroy(std::exchange(scope, nullptr));
  EXPECT_EQ(remove.DataContext(), nullptr);
}

TEST_F(EventBindTest, RaisesTheEventOfItsPathForItsContext) {
  std::vector<IDataContext*> heard;
  const AppEvent<IDataContext*> event(VtrString(L"EventBindTest.Chosen"));
  const auto subscription =
      event.Subscribe([&](IDataContext* context) { heard.push_back(context); });
  IdlePass idle([] {});
  auto bind = std::make_unique<EventBind>(L"", L"", L"EventBindTest.Chosen");
  EXPECT_TRUE(bind->CanRaise());
  bind->Raise();
  bind->Connect(scope);
  bind->Raise();
  bind.reset();
  for (const auto* path : {L"", Framework::nullPathMarker}) {
    EventBind unbound(L"", L"", path);
    unbound.Raise();
    EXPECT_FALSE(unbound.CanRaise());
    EXPECT_EQ(unbound.Status().state, BindState::Unbound);
  }
  idle.Run();
  EXPECT_EQ(heard, (decltype(heard){nullptr, &ofScope}));
}

}  // namespace
}  // namespace Testing
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "../lists/Processes.h"
#include "../support/Scopes.h"
#include "Attempts.h"
#include "DataBinding/appevents/IAppEventBroadcaster.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/framework/DataBind.h"
#include "DataBinding/framework/ListBind.h"
#include "DataBinding/lists/CurrentRow.h"
#include "DataBinding/lists/FilteredList.h"
#include "DataBinding/lists/ListInbox.h"
#include "DataBinding/lists/ScopeList.h"
#include "DataBinding/lists/SortedList.h"

namespace DataBinding::Testing {
namespace {

struct Machine : NamedDataSource {
  explicit Machine(const std::vector<int>& ids) : NamedDataSource(L"Machine") {
    processes.Assign(Processes(ids));
  }
  List<Process> processes{this, L"Processes"};
};

using Bind = Framework::ListBind<Process>;

/// When an allocation fails, a follower of a list keeps its rows or does what it was told.
class ListFollowers : public testing::Test {
 protected:
  /// A scene that has lists of its own.
  struct Scene : Scopes {
    Scene() {
      list.Assign(Processes({1, 2, 3, 4, 5, 6, 7, 8}));
      log.reserve(1000);
    }
    void TestBody() override {}
    ListData<Process> list;
    Subscription seen;
  };
  ListFollowers() {
    SetListenerFailureHandler([](const ListenerFailure&) {});
  }
  ~ListFollowers() override { SetListenerFailureHandler({}); }
};

TEST_F(ListFollowers, KeepTheSettingsOfViews) {
  Attempts::Of([](Attempts& attempt) {
    Scene scene;
    SortedList<Process> sorted(scene.list, By(&Process::id));
    FilteredList<Process> odd(sorted, [](const Process& process) { return process.id % 2 == 1; });
    attempt([&] { return odd.Size() == 4; });
    attempt([&] { scene.seen = WriteDown(odd, scene.log); });
    attempt([&] { sorted.SortBy(By(&Process::id, Order::Descending)); });
    int limit = 6;
    attempt([&] { odd.SetFilter([&](const Process& process) { return process.id > limit; }); });
    limit = 1;
    attempt([&] { odd.Refilter(); });
    const SortedList<Process> late(odd, By(&Process::id));
    const Subscription reads = scene.list.Observe(
        {.before = [&](const auto& /*change*/) { attempt([&] { return late.Size() == 7; }); }});
    scene.list.Remove(1, 1);
    EXPECT_EQ(IdsOf(late), "3 4 5 6 7 8 ");
    EXPECT_EQ(scene.Notes(), "~0x4 -1x3 +0 +2x5 -6");
  });
}

TEST_F(ListFollowers, KeepWhatIsChosenAndShown) {
  Attempts::Of([](Attempts& attempt) {
    Scene scene;
    std::unique_ptr<Selection<Process>> chosen;
    std::unique_ptr<CurrentRow<Process>> current;
    attempt([&] { chosen = std::make_unique<Selection<Process>>(scene.list); });
    attempt([&] {
      current = std::make_unique<CurrentRow<Process>>(scene.child.get(), L"Process", *chosen);
    });
    Framework::DataBind<int> id(scene.child.get(), L"Process", L"Id");
    attempt([&] { return chosen->Choose(scene.list.At(1)); });
    EXPECT_EQ(*id.Get(), 2);
    attempt([&] { return chosen->Add(scene.list.At(4)); });
    EXPECT_EQ(*id.Get(), 5);
    attempt([&] { return scene.list.RemoveKey(5).changed; });
    EXPECT_EQ(*id.Get(), 2);
    attempt([&] { return id.Set(9).changed; });
    EXPECT_EQ(chosen->Current()->id, 9);
  });
}

TEST_F(ListFollowers, ShowAnotherListOrTheFormerOne) {
  Attempts::Of([](Attempts& attempt) {
    Scene scene;
    Emplace<Machine>(*scene.parent, std::vector{1, 2, 3});
    std::unique_ptr<Bind> bind;
    attempt([&] { bind = std::make_unique<Bind>(scene.child.get(), L"Machine", L"Processes"); });
    SortedList<Process> view(*bind, By(&Process::id, Order::Descending));
    Selection<Process> chosen(view);
    chosen.ChooseKey(2);
    attempt([&] { scene.seen = WriteDown(view, scene.log); });
    const auto inner = MakeDataSource<Machine>(scene.child.get(), std::vector{2, 7});
    attempt([&] {
      scene.child->RemoveDataSource(inner.get());
      scene.child->AddDataSource(inner.get());
    });
    EXPECT_EQ(IdsOf(view), "7 2 ");
    EXPECT_EQ(chosen.Current()->id, 2);
    attempt([&] {
      scene.child->RemoveDataSource(inner.get());
      scene.child->AddDataSource(inner.get());
      scene.child->RemoveDataSource(inner.get());
    });
    EXPECT_EQ(IdsOf(view), "3 2 1 ");
  });
}

TEST_F(ListFollowers, LetGoOfRowsWithoutMemory) {
  Attempts::Of([](Attempts& attempt) {
    Scene scene;
    Bind bind(scene.child.get(), L"Machine", L"Processes");
    FilteredList<Process> view(bind, [](const Process& process) { return process.id != 2; });
    Emplace<Machine>(*scene.child, std::vector{1, 2, 3});
    EXPECT_EQ(view.Size(), 2U);
    attempt([&] {
      scene.child->DeleteLocalDataSourceInstance(L"Machine");
      return view.IsEmpty();
    });
    Emplace<Machine>(*scene.child, std::vector{5, 2});
    EXPECT_EQ(IdsOf(view), "5 ");
  });
}

TEST_F(ListFollowers, ListTheScopesThatThereAre) {
  Attempts::Of([](Attempts& attempt) {
    Scene scene;
    std::unique_ptr<ScopeList> scopes;
    attempt([&] { scopes = std::make_unique<ScopeList>(*scene.parent, L"doc"); });
    ProviderPtr document;
    attempt([&] {
      document.reset();
      document = MakeProvider(scene.parent.get(), L"doc");
      return scopes->Rows().Size() == 1;
    });
    attempt([&] {
      document.reset();
      const ProviderPtr other = MakeProvider(scene.parent.get(), L"other");
      return scopes->Rows().IsEmpty();
    });
  });
}

TEST_F(ListFollowers, TakeWhatIsPosted) {
  Attempts::Of([](Attempts& attempt) {
    Scene scene;
    std::unique_ptr<ListInbox<Process>> inbox;
    attempt([&] { inbox = std::make_unique<ListInbox<Process>>(scene.list); });
    for (const int round : {1, 2}) {
      attempt([&] { inbox->Post(Processes({round, 7})); });
    }
    IAppEventBroadcaster::GetInstance().DispatchPendingEvents();
    EXPECT_EQ(IdsOf(scene.list), "2 7 ");
    inbox.reset();
    IAppEventBroadcaster::ReleaseInstance(false);
  });
}

}  // namespace
}  // namespace DataBinding::Testing

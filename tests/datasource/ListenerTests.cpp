// SPDX-License-Identifier: Apache-2.0
#include "../support/Scopes.h"

namespace DataBinding::Testing {
namespace {

/// Notes the property of each entry that runs, and what the entry is to do besides.
class View : public DataListener {
 public:
  explicit View(std::string& notes) : log(&notes) {}
  void Want(
      const VtrString& source, const VtrString& property,
      const std::function<void()>& act = [] {}) {
    AddDataListener(source, property, [notes = log, note = property.ToUtf8() + " ", act] {
      *notes += note;
      act();
    });
  }
  void OnDataSourceProviderChanging(IDataSourceProvider* next) override {
    if (onChanging) onChanging(next);
  }
  using DataListener::ConnectToDatasource;
  using DataListener::GetDataSourceProvider;

  std::function<void(IDataSourceProvider*)> onChanging;

 private:
  std::string* log;
};

class Listeners : public Scopes {
 protected:
  ~Listeners() override { view.reset(); }
  /// What runs when the source announces its properties.
  std::string Heard(LoggedSource* source) {
    log.clear();
    source->UpdateListeners(L"Size,Color");
    return Notes();
  }

  std::optional<View> view{log};
};

TEST_F(Listeners, ThatEndWithinAnAnnouncementAreNotCalledAnyMore) {
  std::optional<View> others[3];
  for (auto& other : others) {
    other.emplace(log).Want(L"Doc", L"Size", [&] {
      for (auto& each : others) {
        if (&each != &other) each.reset();
      }
    });
    other->SetDataSourceProvider(child.get());
  }
  auto* source = Add(child, L"Doc");
  EXPECT_EQ(Heard(source), "Size");
}

/// Moves by itself, and notes with a text of its own when it loses a source of the scope it owns.
class Owner : public ScopedListener {
 public:
  explicit Owner(std::string& notes) : log(notes) {
    AddDataListener(L"Doc", L"Size", [this] { log += "Size "; });
  }
  ~Owner() override { Leave(); }
  ProviderPtr scope = MakeProvider();

 private:
  void DisconnectFromDatasource(IDataSource* source) override {
    ScopedListener::DisconnectFromDatasource(source);
    log += text;
  }
  std::string& log;
  std::string text = "a text that fits into no string's own memory ";
};

TEST_F(Listeners, ThatLeaveBeforeTheirMembersEndMayOwnTheirScope) {
  {
    Owner owner(log);
    owner.SetDataSourceProvider(owner.scope.get());
    Add(owner.scope, L"Doc");
  }
  EXPECT_EQ(Notes(), "a text that fits into no string's own memory ~Doc");
}

TEST_F(Listeners, ThatMoveByThemselvesHearNothingOfTheFormerScope) {
  Owner owner(log);
  auto* former = Add(owner.scope, L"Doc");
  auto* source = Add(child, L"Doc");
  for (auto* scope : {&owner.scope, &child}) owner.SetDataSourceProvider(scope->get());
  EXPECT_EQ(Heard(former), "");
  owner.scope->Shutdown();
  EXPECT_EQ(Heard(source), "Size");
  owner.SetDataSourceProvider(nullptr);
  EXPECT_EQ(Heard(source), "");
}

TEST_F(Listeners, HookRunsBeforeTheNewProviderIsStored) {
  std::vector<IDataSourceProvider*> seen;
  view->onChanging = [&](IDataSourceProvider* next) {
    seen.insert(seen.end(), {view->GetDataSourceProvider(), next});
  };
  view->SetDataSourceProvider(child.get());
  view->SetDataSourceProvider(nullptr);
  EXPECT_EQ(seen, (decltype(seen){nullptr, child.get(), child.get(), nullptr}));
}

TEST_F(Listeners, MayLeaveAnEntryBehindFurtherUpWhenAScopeBetweenGoes) {
  const ProviderPtr grandchild = MakeProvider(child.get());
  view->Want(L"Doc", L"Size");
  auto* source = Add(parent, L"Doc");
  view->SetDataSourceProvider(grandchild.get());
  child.reset();
  EXPECT_EQ(Heard(source), "Size");
  view.reset();
  EXPECT_EQ(Heard(source), "");
  parent->DeleteLocalDataSourceInstance(L"Doc");
  EXPECT_EQ(Notes(), "~Doc");
}

TEST_F(Listeners, MovesTakeEntriesWithTheirLiveSubscriptions) {
  auto* source = Add(child, L"Doc");
  View first(log);
  first.Want(L"Doc", L"Size");
  first.SetDataSourceProvider(child.get());
  View second = std::move(first);
  auto& self = second;
  second = std::move(self);
  first.ConnectToDatasource(source);
  EXPECT_EQ(Heard(source), "Size");
  EXPECT_EQ(second.GetDataSourceProvider(), child.get());
  EXPECT_EQ(first.GetDataSourceProvider(), child.get());
}

TEST_F(Listeners, DoNotTakeANewScopeAtTheFormerOnesAddressForTheirs) {
  std::optional<DataSourceProvider> scope;
  scope.emplace(nullptr, nullptr, nullptr);
  View first(log);
  first.SetDataSourceProvider(&*scope);
  View second = std::move(first);
  scope.emplace(parent.get(), nullptr, nullptr);
  scope->AddDataListener(&second, {}, true);
  scope.reset();
  EXPECT_EQ(second.GetDataSourceProvider(), nullptr);
}

}  // namespace
}  // namespace DataBinding::Testing

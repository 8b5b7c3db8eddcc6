// SPDX-License-Identifier: Apache-2.0
#include <optional>
#include <utility>
#include <vector>

#include "../support/Scopes.h"
#include "DataBinding/datasource/DataListener.h"
#include "DataBinding/datasource/ScopedListener.h"

namespace DataBinding::Testing {
namespace {

/// Notes its provider and the next one before it changes.
class View : public DataListener {
 public:
  void OnDataSourceProviderChanging(IDataSourceProvider* next) override {
    seen.insert(seen.end(), {GetDataSourceProvider(), next});
  }
  using DataListener::GetDataSourceProvider;

  std::vector<IDataSourceProvider*> seen;
};

class Listeners : public Scopes {
 protected:
  /// What runs when the source announces its properties.
  std::string Heard(LoggedSource* source) {
    log.clear();
    source->UpdateListeners(L"Size,Color");
    return Notes();
  }
};

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
  View view;
  view.SetDataSourceProvider(child.get());
  view.SetDataSourceProvider(nullptr);
  EXPECT_EQ(view.seen, (decltype(view.seen){nullptr, child.get(), child.get(), nullptr}));
}

TEST_F(Listeners, DoNotTakeANewScopeAtTheFormerOnesAddressForTheirs) {
  std::optional<DataSourceProvider> scope;
  scope.emplace(nullptr, nullptr, nullptr);
  View first;
  first.SetDataSourceProvider(&*scope);
  View second = std::move(first);

  scope.emplace(parent.get(), nullptr, nullptr);
  scope->AddDataListener(&second, {}, true);
  scope.reset();

  EXPECT_EQ(second.GetDataSourceProvider(), nullptr);
}

}  // namespace
}  // namespace DataBinding::Testing

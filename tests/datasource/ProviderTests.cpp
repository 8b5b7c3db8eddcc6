// SPDX-License-Identifier: Apache-2.0
#include <array>

#include "../support/Scopes.h"

namespace DataBinding::Testing {
namespace {

class Providers : public Scopes {};

TEST_F(Providers, ReferenceToNoSourceThrowsATextWithItsName) {
  for (const auto& [name, text] : {std::pair(L"Dö%s", "No constructor found for data source Dö%s."),
                                   {nullptr, "No constructor found for data source ."}}) {
    try {
      static_cast<void>(child->GetDataSourceReference(name));
      FAIL();
    } catch (const VtrString& thrown) {
      EXPECT_EQ(thrown.ToUtf8(), text);
    }
  }
}

TEST_F(Providers, GiveNeutralAnswersToNulls) {
  LoggedListener listener(log);

  IDataSource* const sources[] = {nullptr, nullptr};
  child->AddDataSources(sources, 2);
  child->AddDataSources(nullptr, 2);
  child->RemoveDataSources(sources, 2);
  child->RemoveDataSources(nullptr, 2);
  child->AddDataListener(nullptr, {L"Doc"}, true);
  child->AddDataListener(&listener, {nullptr}, true);
  child->RemoveDataListener(nullptr);

  EXPECT_EQ(child->GetDataSource(nullptr), nullptr);
  EXPECT_EQ(child->GetLocalDataSourceInstance(nullptr), nullptr);
  EXPECT_EQ(child->GetDataSourceInterface(nullptr).As<IDataSource>(), nullptr);
  EXPECT_FALSE(child->DeleteLocalDataSourceInstance(nullptr) || child->MatchCategory(nullptr));

  IDataSourceProvider::Destroy(nullptr);
  IDataSource::Destroy(nullptr);
  EXPECT_TRUE(MakeProvider()->GetCategories().empty());
}

class Nameless : public LoggedSource {
 public:
  explicit Nameless(std::string& notes) : LoggedSource(L"", notes) {}
  const wchar_t* GetDataSourceName() override { return nullptr; }
};

TEST_F(Providers, OwnNamelessSourcesWithoutFindingThem) {
  LoggedListener listener(log);

  child->AddDataListener(&listener, {L""}, true);
  child->AddDataSource(MakeDataSource<Nameless>(nullptr, log).release());

  EXPECT_EQ(child->GetDataSource(L""), nullptr);

  child->Shutdown();
  EXPECT_EQ(Notes(), "~ gone");
}

TEST_F(Providers, AnswerFalseAlsoWhenTheyDeleteASource) {
  LoggedListener listener(log);
  IDataSource* outer = Add(parent, L"Doc");

  child->AddDataSource(Add(child, L"Doc"));  // twice, and ended once
  child->AddDataListener(&listener, {L"Doc"}, true);

  EXPECT_FALSE(child->DeleteLocalDataSourceInstance(L"Doc"));
  EXPECT_FALSE(child->DeleteLocalDataSourceInstance(L"Doc"));
  EXPECT_EQ(Notes(), "+Doc -Doc ~Doc");
  EXPECT_EQ(child->GetDataSource(L"Doc"), outer);
}

TEST_F(Providers, ShutdownThrowsTheFirstFailureOnceItIsComplete) {
  LoggedListener one(log);
  LoggedListener two(log);
  one.hook = two.hook = [&](const std::string& note) { child->Shutdown(), throw note; };
  registrar.AttachProvider(child.get());
  const ProviderPtr grandchild = MakeProvider(child.get());
  auto* refusing = Add(child, L"Refusing");
  refusing->onPreDestroy = [] { throw 7; };
  const auto handler = Add(child, L"Doc")->AddOnDestroyHandler([] { throw 8.0; });
  Add(child, L"Map");

  child->AddDataListener(&one, {}, true);
  child->AddDataListener(&two, {}, true);
  EXPECT_THROW(child->Shutdown(), double);
  EXPECT_EQ(Notes(), "~Map ~Doc gone gone");
  EXPECT_EQ(child->GetParent(), nullptr);
  EXPECT_EQ(grandchild->GetParent(), nullptr);

  parent->VisitChildren([](auto&) { FAIL() << "the former parent still has a child"; });
  LoggedConstructor late(log, "late", L"Late", L"C");
  registrar.RegisterDataSource(&late);
  EXPECT_NE(child->GetDataSource(L"Late"), nullptr);
  child.reset();
  EXPECT_EQ(Notes(), "late:registered ~Late");
  refusing->onPreDestroy = nullptr;
  IDataSource::Destroy(refusing);
}

TEST_F(Providers, DestructionSwallowsWhatSourcesThrow) {
  const auto handler = Add(child, L"Doc")->AddOnDestroyHandler([] { throw 8; });
  child.reset();
  EXPECT_EQ(Notes(), "~Doc");
}

TEST_F(Providers, CompleteTheShutdownThatTheyEndIn) {
  const std::pair<const char*, const char*> cases[] = {
      {"-Map", "-Map -Doc ~Doc -Art ~Art gone gone ~Map"},
      {"gone", "-Map ~Map -Doc ~Doc -Art ~Art gone gone"},
  };

  for (const auto& each : cases) {
    const std::string when = each.first;
    LoggedListener one(log);
    LoggedListener two(log);
    child = MakeProvider();
    child->AddDataListener(&one, {L"Art", L"Doc", L"Map"}, true);
    child->AddDataListener(&two, {}, true);
    for (const auto* name : {L"Art", L"Doc", L"Map"}) {
      Add(child, name)->onPreDestroy = [&] {
        if (when == "-Map") child.reset();
      };
    }
    one.hook = two.hook = [&](const std::string& note) {
      if (note == "gone" && note == when) child.reset();
    };
    log.clear();
    child->Shutdown();
    EXPECT_EQ(Notes(), each.second);
    EXPECT_EQ(child, nullptr);
  }
}

TEST_F(Providers, RootMayBeShutDownByASourceThatEndsWithIt) {
  registrar.Initialize();
  IDataSourceProvider* const root = registrar.GetRootProvider();
  auto source = MakeDataSource<LoggedSource>(root, L"Doc", log);
  source->onPreDestroy = [this] { registrar.Shutdown(); };

  root->AddDataSource(source.release());
  registrar.Shutdown();

  EXPECT_EQ(Notes(), "~Doc");
  EXPECT_EQ(registrar.GetRootProvider(), nullptr);
}

TEST_F(Providers, EndWhatWasBuiltInThemWhileTheyEnded) {
  LoggedConstructor map(log, "map", L"Map", L"C");
  registrar.RegisterDataSource(&map);
  Add(child, L"Doc")->onPreDestroy = [this] { child->GetDataSource(L"Map"); };

  Notes();
  IDataSourceProvider::Destroy(child.get());
  static_cast<void>(child.release());

  EXPECT_EQ(Notes(), "~Doc ~Map");
}

TEST_F(Providers, CopiesThatAreMadeInACallHaveNoCallUnderWay) {
  for (const std::string when : {"+Doc", "gone"}) {
    ProviderPtr copy;
    LoggedListener listener(log);
    child = MakeProvider();
    child->AddDataListener(&listener, {L"Doc"}, true);
    listener.hook = [&](const std::string& note) {
      if (note == when && copy == nullptr) copy.reset(new DataSourceProvider(*child));
    };
    auto source = MakeDataSource<LoggedSource>(nullptr, L"Doc", log);
    child->AddDataSource(source.get());
    child->RemoveDataSource(source.get());
    child->Shutdown();
    Notes();
    EXPECT_FALSE(copy->IsConnecting());
    copy.reset();
    EXPECT_EQ(Notes(), "gone");
  }
}

TEST_F(Providers, ThatAreAssignedToInACallGoOnWithIt) {
  const ProviderPtr other = MakeProvider();
  child = MakeProvider();
  LoggedListener listener(log);
  listener.hook = [&](const std::string&) {
    if (child->GetDataSource(L"Doc") == nullptr) *child = *other;
    child->WhenConnected([&] { log += "over "; });
  };
  child->AddDataListener(&listener, {L"Doc"}, true);
  Add(child, L"Doc");

  EXPECT_EQ(Notes(), "+Doc over");

  child->AddDataListener(&listener, {L"Doc"}, true);
  EXPECT_EQ(Notes(), "+Doc over");
  EXPECT_FALSE(child->IsConnecting());
}

/// A provider of a client's own, which other providers take into their tree.
class Foreign : public DataSourceProvider {
 public:
  using DataSourceProvider::DataSourceProvider;
  void Adopt(IDataSourceProvider& scope) { SetParentOf(scope, this); }
  std::string Categories(const IDataSourceProvider& scope) const {
    std::vector<VtrString> all;
    AppendCategoriesOf(scope, all);
    return Joined(all);
  }
};

TEST_F(Providers, OfAClientsOwnMayTakeOthersIntoTheirTree) {
  Foreign foreign(nullptr, L"F", nullptr);
  foreign.Adopt(*child);
  EXPECT_EQ(child->GetParent(), &foreign);
  EXPECT_EQ(foreign.Categories(*child), "F C");
  parent->VisitChildren([](auto&) { FAIL() << "the former parent still has a child"; });
}

TEST_F(Providers, CopiesAreNoChildren) {
  parent->SetCustomData(Guid{1}, &log);
  const ProviderPtr copy(new DataSourceProvider(*child));
  const ProviderPtr assigned = MakeProvider();
  *assigned = *child;
  std::vector<IDataSourceProvider*> children;

  parent->VisitChildren([&](IDataSourceProvider& found) { children.push_back(&found); });

  EXPECT_EQ(children, std::vector<IDataSourceProvider*>{child.get()});

  for (const auto* made : {copy.get(), assigned.get()}) {
    EXPECT_TRUE(made->MatchCategory(L"C"));
    EXPECT_EQ(made->GetCustomData(Guid{1}), &log);
  }
}

TEST_F(Providers, CustomDataIsInheritedUntilSetEvenToNull) {
  constexpr CustomDataKey<int> key{Guid{1, 2, 3, {4}}};
  int first = 1;
  int second = 2;

  EXPECT_EQ(child->GetCustomData().Get(key), nullptr);
  EXPECT_EQ(parent->GetCustomData().Set(key, &first), nullptr);
  EXPECT_EQ(parent->GetCustomData().Set(key, &second), &first);
  EXPECT_EQ(child->GetCustomData().Get(key), &second);
  EXPECT_EQ(child->SetCustomData(key.id, nullptr), nullptr);
  EXPECT_EQ(child->GetCustomData(key.id), nullptr);
}

TEST_F(Providers, WithoutCategoriesBuildWhatNamesNone) {
  LoggedConstructor odd(log, "odd", L"Odd", nullptr);
  registrar.RegisterDataSource(&odd);
  EXPECT_EQ(Joined(parent->GetCategories()), "A B");
  EXPECT_EQ(Joined(parent->GetRegisteredDataSources()), "");
  EXPECT_EQ(Joined(MakeProvider()->GetRegisteredDataSources()), "Odd");
}

TEST_F(Providers, VisitTheirSourcesInOrderWhileTheseComeOrGo) {
  for (const auto* name : {L"Doc", L"Map", L"Art"}) Add(child, name);
  std::vector<VtrString> visited;

  child->VisitDataSources([&](IDataSource& source) {
    visited.emplace_back(source.GetDataSourceName());
    child->DeleteLocalDataSourceInstance(L"Map");
    Add(child, L"New");
  });

  EXPECT_EQ(Joined(visited), "Doc Art");
}

TEST_F(Providers, EndInAVisitThatGoesNoFurther) {
  std::vector<int> visits(3);
  for (std::size_t kind = 0; kind < visits.size(); ++kind) {
    ProviderPtr scope = MakeProvider();
    const std::array inner{MakeProvider(scope.get()), MakeProvider(scope.get())};
    std::array listeners{LoggedListener(log), LoggedListener(log)};
    for (auto& listener : listeners) scope->AddDataListener(&listener, {}, false);
    for (const auto* name : {L"Doc", L"Map"}) Add(scope, name);
    const auto end = [&](auto& /*visited*/) {
      ++visits[kind];
      scope.reset();
    };

    if (kind == 0) scope->VisitDataSources(end);
    if (kind == 1) scope->VisitChildren(end);
    if (kind == 2) scope->VisitDataListeners(end);
  }

  EXPECT_EQ(visits, (std::vector{1, 1, 1}));
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include "../support/Scopes.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBinding/property/DataSourceConstructor.h"

namespace DataBinding::Testing {
namespace {

class Registrar : public Scopes {
 protected:
  LoggedConstructor doc{log, "doc", L"Doc", L"A,B"};
};

TEST_F(Registrar, ListsAConstructorBesideThoseThatItRegistersWhenItIsPlaced) {
  LoggedConstructor map(log, "map", L"Map", L"A,B", 1);
  doc.onPlaced = [&] { registrar.RegisterDataSource(&map); };

  registrar.RegisterDataSource(&doc);
  log.clear();
  registrar.AttachProvider(parent.get());

  EXPECT_EQ(Notes(), "map:attached doc:attached map:attached doc:attached");
}

TEST_F(Registrar, UnregisteringDeletesTheSourcesOfProvidersThatAreStillAttached) {
  ProviderPtr other = MakeProvider(nullptr, L"A");
  const ProviderPtr unattached = MakeProvider(nullptr, L"A");
  registrar.RegisterDataSource(&doc);
  registrar.AttachProvider(parent.get());
  registrar.AttachProvider(other.get());
  const auto build = [](const ProviderPtr& provider, const std::function<void()>& atItsEnd) {
    static_cast<LoggedSource*>(provider->GetDataSource(L"Doc"))->onPreDestroy = atItsEnd;
  };
  bool first = true;  // whichever comes first ends the other provider

  build(parent, [&] {
    if (std::exchange(first, false)) other.reset();
  });
  build(other, [&] {
    if (std::exchange(first, false)) parent.reset();
  });
  build(unattached, nullptr);
  log.clear();
  registrar.UnregisterDataSource(&doc);

  EXPECT_EQ(Notes(), "doc:unregistered ~Doc ~Doc");
  EXPECT_NE(parent == nullptr, other == nullptr);
  EXPECT_NE(unattached->GetLocalDataSourceInstance(L"Doc"), nullptr);
}

TEST_F(Registrar, UnregisteringReachesProvidersThatOnUnregisteredAttaches) {
  registrar.RegisterDataSource(&doc);
  static_cast<void>(parent->GetDataSource(L"Doc"));
  doc.onUnregistered = [&] { registrar.AttachProvider(parent.get()); };
  registrar.UnregisterDataSource(&doc);
  EXPECT_EQ(Notes(), "doc:registered doc:unregistered ~Doc");
}

TEST_F(Registrar, RefusalOfASourceToEndIsThrownOnceItIsUnregistered) {
  const ProviderPtr other = MakeProvider(nullptr, L"A");

  registrar.RegisterDataSource(&doc);
  DataSourcePtr<LoggedSource> survivors[2];
  for (auto* provider : {parent.get(), other.get()}) {
    registrar.AttachProvider(provider);
    auto& survivor = survivors[provider == other.get() ? 1 : 0];
    survivor.reset(static_cast<LoggedSource*>(provider->GetDataSource(L"Doc")));
    survivor->onPreDestroy = [] { throw 7; };
  }

  EXPECT_THROW(registrar.UnregisterDataSource(&doc), int);
  EXPECT_EQ(registrar.FindConstructor(L"Doc"), nullptr);

  for (auto* provider : {parent.get(), other.get()}) {
    EXPECT_EQ(provider->GetLocalDataSourceInstance(L"Doc"), nullptr);
  }

  for (auto& survivor : survivors) survivor->onPreDestroy = nullptr;
}

TEST_F(Registrar, ConstructorsMayComeOrGoWhileAProviderIsAttached) {
  LoggedConstructor map(log, "map", L"Map", L"A", 1);
  auto* brief = new LoggedConstructor(log, "brief", L"Brief", L"A");
  brief->onUnregistered = [brief] { delete brief; };
  doc.onAttached = [&] {
    registrar.RegisterDataSource(&map);
    if (brief != nullptr) registrar.UnregisterDataSource(std::exchange(brief, nullptr));
  };

  registrar.RegisterDataSource(&doc);
  registrar.RegisterDataSource(brief);
  log.clear();
  registrar.AttachProvider(parent.get());

  EXPECT_EQ(
      Notes(),
      "doc:attached map:registered map:attached brief:unregistered doc:attached map:attached");
  EXPECT_EQ(Joined(registrar.GetRegisteredDataSources({})), "Doc Map");
}

TEST_F(Registrar, ProvidersOrNamesMayGoWhileAConstructorIsOffered) {
  LoggedConstructor map(log, "map", L"Map", L"A,C");
  LoggedConstructor art(log, "art", L"Art", L"A");
  for (auto* constructor : {&doc, &art}) registrar.RegisterDataSource(constructor);
  for (auto* provider : {parent.get(), child.get()}) registrar.AttachProvider(provider);
  for (const auto* name : {L"Doc", L"Map"}) Add(parent, name);
  static_cast<LoggedSource*>(parent->GetDataSource(L"Art"))->onPreDestroy = [&] {
    for (auto* ended : {&map, &doc, &art}) registrar.UnregisterDataSource(ended);
  };
  map.onAttached = [&] {
    for (auto* provider : {parent.get(), child.get()}) registrar.DetachProvider(provider);
  };

  log.clear();
  registrar.RegisterDataSource(&map);

  EXPECT_EQ(Notes(),
            "map:registered map:attached map:unregistered ~Map doc:unregistered ~Doc "
            "art:unregistered ~Art map:attached");
}

TEST_F(Registrar, RootThatEndsWhileAnotherRegistrarIsInstalledIsAttachedNoMore) {
  LoggedConstructor root(log, "root", L"Root", L"root");

  registrar.Initialize();
  IDataSourceRegistrar::SetInstanceForTests(nullptr);

  EXPECT_NE(&IDataSourceRegistrar::GetInstance(), &registrar);

  registrar.Shutdown();
  registrar.RegisterDataSource(&root);
  EXPECT_EQ(Notes(), "root:registered");
}

TEST_F(Registrar, IgnoresNulls) {
  LoggedConstructor nameless(log, "nameless", nullptr, L"A");

  for (auto* constructor : {static_cast<LoggedConstructor*>(nullptr), &nameless}) {
    registrar.RegisterDataSource(constructor);
    registrar.UnregisterDataSource(constructor);
  }
  registrar.AttachProvider(nullptr);
  registrar.DetachProvider(nullptr);

  EXPECT_EQ(registrar.FindConstructor(nullptr), nullptr);
  EXPECT_EQ(Notes(), "");
}

class Host : public NamedDataSource {
 public:
  explicit Host(IDataSourceProvider* given) : NamedDataSource(L"Host"), seen(given) {}
  void PreDestroy() override {
    if (refuses) throw std::runtime_error("host");
  }
  IDataSourceProvider* seen;
  bool refuses = false;
};
using HostConstructor = DataSourceConstructor<Host>;

TEST_F(Registrar, TypedConstructorOfATakenNameLeavesTheFirstInPlace) {
  const HostConstructor host(L"Host", L"A");
  EXPECT_THROW(HostConstructor(L"Host", L"B"), std::invalid_argument);
  EXPECT_THROW(HostConstructor(nullptr, L"B"), std::invalid_argument);
  EXPECT_EQ(registrar.FindConstructor(L"Host"), &host);
}

TEST_F(Registrar, TypedConstructorTellsTheSourceItsScope) {
  const HostConstructor host(L"Host", L"A");
  auto* built = static_cast<Host*>(parent->GetDataSource(L"Host"));
  EXPECT_EQ(built->seen, parent.get());
  EXPECT_EQ(built->GetDataSourceProvider(), parent.get());
}

TEST_F(Registrar, TypedConstructorUnregistersWhereItRegistered) {
  registrar.AttachProvider(parent.get());
  {
    const HostConstructor host(L"Host", L"A");
    static_cast<void>(parent->GetDataSource(L"Host"));
    IDataSourceRegistrar::SetInstanceForTests(nullptr);
  }

  EXPECT_EQ(registrar.FindConstructor(L"Host"), nullptr);
  EXPECT_EQ(parent->GetLocalDataSourceInstance(L"Host"), nullptr);
}

class Seeker : public NamedDataSource {
 public:
  Seeker(IDataSourceProvider* scope, const wchar_t* name, const wchar_t* sought)
      : NamedDataSource(name), found(scope->GetDataSource(sought)) {}
  IDataSource* found;
};

TEST_F(Registrar, OfTwoSourcesThatAskForEachOtherWhileBuiltTheInnerOneGetsNull) {
  using Seekers = DataSourceConstructor<Seeker>;
  const auto seeking = [](const wchar_t* name, const wchar_t* sought) {
    return [=](auto* scope) { return MakeDataSource<Seeker>(scope, scope, name, sought); };
  };
  const Seekers inner(L"Egg", L"C", Placement::Back, seeking(L"Egg", L"Hen"));
  const Seekers outer(L"Hen", L"A,C", Placement::Back, seeking(L"Hen", L"Egg"));
  SetListenerFailureHandler([this](const ListenerFailure& failure) {
    try {
      std::rethrow_exception(failure.exception);
    } catch (const std::logic_error& error) {
      log.append(failure.property.ToUtf8()).append(": ").append(error.what());
    }
  });
  auto* hen = static_cast<Seeker*>(child->GetDataSource(L"Hen"));
  SetListenerFailureHandler(nullptr);

  auto* egg = static_cast<Seeker*>(hen->found);

  EXPECT_EQ(egg, child->GetDataSource(L"Egg"));
  EXPECT_EQ(egg->found, nullptr);  // and no hen is built in the parent, which could
  EXPECT_EQ(log,
            "Hen: Data source \"Hen\" is being built and cannot be had yet, but the building of "
            "\"Egg\" asks for it.");
}

TEST_F(Registrar, DetachingGoesNoFurtherWhenTheProviderEnds) {
  LoggedConstructor art(log, "art", L"Art", L"C");
  LoggedConstructor map(log, "map", L"Map", L"C");
  for (auto* constructor : {&art, &map}) registrar.RegisterDataSource(constructor);
  registrar.AttachProvider(child.get());
  auto* last = static_cast<LoggedSource*>(child->GetDataSource(L"Art"));
  static_cast<void>(child->GetDataSource(L"Map"));
  last->onPreDestroy = [&] { child.reset(); };

  Notes();
  registrar.DetachProvider(child.get());

  EXPECT_EQ(Notes(), "~Map ~Art");
  EXPECT_EQ(child, nullptr);
}

TEST_F(Registrar, TypedConstructorEndsQuietlyAlthoughASourceRefusesToEnd) {
  registrar.AttachProvider(parent.get());
  std::optional<HostConstructor> host(std::in_place, L"Host", L"A");
  const DataSourcePtr<Host> survivor(static_cast<Host*>(parent->GetDataSource(L"Host")));

  survivor->refuses = true;
  host.reset();

  EXPECT_EQ(registrar.FindConstructor(L"Host"), nullptr);

  survivor->refuses = false;
}

}  // namespace
}  // namespace DataBinding::Testing

// SPDX-License-Identifier: Apache-2.0
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/registrar/IDataSourceRegistrar.h"
#include "LoadedPlugin.h"

namespace Boundary {
namespace {

using namespace DataBinding;

class ModuleBoundary : public testing::Test {
 protected:
  ModuleBoundary() {
    registrar.Initialize();
    StartModel();
    gauge = root().GetDataSource(L"Gauge");
  }
  ~ModuleBoundary() override {
    StopModel();
    registrar.Shutdown();
  }
  IDataSourceProvider& root() { return *registrar.GetRootProvider(); }

  IDataSourceRegistrar& registrar = IDataSourceRegistrar::GetInstance();
  IDataSource* gauge = nullptr;
};

TEST_F(ModuleBoundary, SourceOfOneModuleIsUsedByNameInAnother) {
  EXPECT_TRUE(SetLevelInView(gauge, 7).changed);
  EXPECT_EQ(ReadLastInView(gauge), (Reading{7, L"bar"}));
  EXPECT_EQ(*GetProperty<Reading>(gauge, L"Last"), (Reading{7, L"bar"}));
}

TEST_F(ModuleBoundary, UnloadedPluginTakesNothingAlongButItsOwn) {
  int heard = 0;
  Subscription ofHost;
  std::vector<VtrString> names;

  {
    const Plugin plugin;
    plugin->start(gauge);
    names = root().GetDataSource(L"FromPlugin")->GetNamesInOrder();
    ofHost = gauge->Register([&] { ++heard; }, L"Level");
    SetLevelInView(gauge, 1);
    EXPECT_EQ(plugin->timesHeard(), 1);
    EXPECT_EQ(GetProperty<Reading>(root().GetDataSource(L"FromPlugin"), L"Own")->unit, L"plug");
    plugin->stop();
    EXPECT_EQ(root().GetDataSource(L"FromPlugin"), nullptr);
  }

  ASSERT_FALSE(Plugin::IsLoaded());

  EXPECT_EQ(names, (std::vector<VtrString>{L"Own", L"Top"}));
  SetLevelInView(gauge, 2);
  EXPECT_EQ(heard, 2);
}

TEST_F(ModuleBoundary, FormOfATypeThatOnlyThePluginKnowsIsThePluginsOwn) {
  std::optional<AnyPropertyRef> top;
  {
    const Plugin plugin;
    plugin->start(gauge);
    top.emplace(root().GetDataSource(L"FromPlugin"), L"Top");
    EXPECT_TRUE(top->Write(4.0).changed);
    EXPECT_EQ(*top->Read(), Value(4));
    plugin->stop();
  }

  EXPECT_FALSE(Plugin::IsLoaded());
  EXPECT_EQ(top->Read().error, PropertyError::Absent);
}

TEST_F(ModuleBoundary, HostMayHoldTheSubscriptionOfAPluginsThrowingListener) {
  const Plugin plugin;
  auto subscription = plugin->subscribe(gauge);
  int last = 0;
  const auto after = gauge->Register([&] { ++last; }, L"Level");

  SetLevelInView(gauge, 3);
  SetLevelInView(gauge, 4);

  EXPECT_EQ(plugin->meter().count, 2);
  EXPECT_EQ(last, 2);

  subscription.Cancel();
  SetLevelInView(gauge, 5);
  EXPECT_EQ(plugin->meter().count, 2);

  Meter::ReleaseInstance(false);
}

TEST_F(ModuleBoundary, SingletonIsOneForAllModules) {
  {
    const Plugin plugin;
    EXPECT_EQ(&plugin->meter(), &Meter::GetInstance());
    Meter::ReleaseInstance(false);
    EXPECT_FALSE(Meter::HasInstance());
    const Meter* made = &Meter::GetInstance();
    EXPECT_EQ(&plugin->meter(), made);
  }

  EXPECT_TRUE(Meter::HasInstance()) << "made anew by this module, it outlives the plug-in";
  Meter::ReleaseInstance(false);
}

TEST_F(ModuleBoundary, SingletonGoesWithTheModuleThatMadeIt) {
  EXPECT_FALSE(Meter::HasInstance());
  {
    const Plugin plugin;
    plugin->meter().count = 5;
  }

  EXPECT_FALSE(Plugin::IsLoaded());
  EXPECT_FALSE(Meter::HasInstance());
  EXPECT_EQ(Meter::GetInstance().count, 0);
}

}  // namespace
}  // namespace Boundary

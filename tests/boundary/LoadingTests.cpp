// SPDX-License-Identifier: Apache-2.0
/// This program is not linked with the library: it loads and unloads it under a plug-in.
#include <cstdlib>
#include <memory>

#include <gtest/gtest.h>

#include "LoadedModule.h"

namespace Boundary {
namespace {

void ExpectLibraryIsGone() {
#if defined(_WIN32)  // elsewhere it stays: see cmake/exports.map
  EXPECT_FALSE(LoadedModule::IsThere(BOUNDARY_LIBRARY));
#endif
}

TEST(LoadedPlugin, IsUnloadedRepeatedlyWhileItsObjectsAreAlive) {
  for (int round = 0; round < 3; ++round) {
    {
      const LoadedModule library(BOUNDARY_LIBRARY);  // before the plug-in: see cmake/exports.map
      const LoadedModule plugin(BOUNDARY_PLUGIN);
      auto* const leave = plugin.Find<int()>("LeaveEverythingAlive");
      ASSERT_NE(leave, nullptr);
      EXPECT_EQ(leave(), 3) << "once by the property, twice by the event";
      EXPECT_GT(leave(), 3);
    }
    EXPECT_FALSE(LoadedModule::IsThere(BOUNDARY_PLUGIN));
    ExpectLibraryIsGone();
  }
}

TEST(LoadedPluginDeath, ProcessThatEndsBeforeItsPluginEndsWell) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        static const auto plugin = std::make_unique<LoadedModule>(BOUNDARY_PLUGIN);
        std::exit(plugin->Find<int()>("LeaveEverythingAlive")() == 3 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace Boundary

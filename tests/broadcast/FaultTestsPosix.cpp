// SPDX-License-Identifier: Apache-2.0
#include <pthread.h>

#include <gtest/gtest.h>

#include "Notifier.h"

namespace DataBinding {
namespace {

TEST(FaultGuardOfThreads, ListenerThatEndsItsThreadIsNotSwallowed) {
  Notifier notifier;
  static bool cameBack;
  cameBack = false;
  const auto listener = notifier.Listen([] { pthread_exit(nullptr); });
  const auto run = [](void* self) -> void* {
    static_cast<Notifier*>(self)->UpdateListeners(L"A");
    cameBack = true;
    return nullptr;
  };

  pthread_t thread{};
  ASSERT_EQ(pthread_create(&thread, nullptr, run, &notifier), 0);
  pthread_join(thread, nullptr);
  EXPECT_FALSE(cameBack);

  const auto after = notifier.Log('2', L"B");
  EXPECT_EQ(notifier.Announce(L"B"), "2");
}

}  // namespace
}  // namespace DataBinding

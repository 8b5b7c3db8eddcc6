// SPDX-License-Identifier: Apache-2.0
#include "DataBindingGlib/GlibIdlePass.h"

#include <glib.h>

#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/appevents/IdlePass.h"

namespace DataBinding {
namespace {

using namespace std::chrono_literals;

inline constinit const AppEvent<int> noted{L"GlibNoted"};
inline constinit const AppEvent<int> asked{L"GlibAsked"};

class GlibLoop : public testing::Test {
 protected:
  /// No event is left to the next test.
  void TearDown() override {
    IdlePass last([] {});
    last.Run();
  }
  /// Runs the loop until that many events were heard.
  void HearUntil(std::size_t count) const {
    while (heard.size() < count) g_main_context_iteration(nullptr, TRUE);
  }
  [[nodiscard]] static int Iterations() {
    int iterations = 0;
    while (g_main_context_iteration(nullptr, FALSE) == TRUE) ++iterations;
    return iterations;
  }

  std::vector<int> heard;
  Subscription listening = noted.Subscribe([this](int number) { heard.push_back(number); });
};

gboolean Draw(gpointer frames) {
  ++*static_cast<int*>(frames);
  std::this_thread::sleep_for(1ms);
  return G_SOURCE_CONTINUE;
}

TEST_F(GlibLoop, DeliversWhatThreadsRaiseBeforeDrawing) {
  const GlibIdlePass pass(1ms);
  int frames = 0;
  const guint drawing = g_idle_add_full(G_PRIORITY_HIGH_IDLE + 20, &Draw, &frames, nullptr);
  const auto raise = [] {
    for (int i = 0; i < 1000; ++i) noted.Raise(i);
  };

  std::thread first(raise);
  std::thread second(raise);

  HearUntil(2000);
  first.join();
  second.join();
  g_source_remove(drawing);
}

TEST_F(GlibLoop, WaitsForTheNextFrameAndLetsOthersDraw) {
  noted.Raise(1);
  const GlibIdlePass pass(1h);
  HearUntil(1);

  noted.Raise(2);

  EXPECT_EQ(Iterations(), 0);
  EXPECT_EQ(heard.size(), 1U);
}

TEST_F(GlibLoop, LeavesToTheNextPassWhatIsTooMuchForOne) {
  const GlibIdlePass pass(2ms);
  int passes = 0;
  const Subscription counter = pass.Pass().OnDelivered([&] { ++passes; });
  const Subscription slow = noted.Subscribe([](int) { std::this_thread::sleep_for(1ms); });

  for (int i = 0; i < 3; ++i) noted.Raise(i);
  HearUntil(3);

  EXPECT_EQ(passes, 3);
}

TEST_F(GlibLoop, DeliversInALoopWithinAListener) {
  const GlibIdlePass pass(1ms);
  std::size_t heardInside = 0;
  const Subscription dialogue = asked.Subscribe([&](int) {
    noted.Raise(1);
    HearUntil(1);
    heardInside = heard.size();
  });

  asked.Raise(0);
  noted.Raise(2);
  HearUntil(2);

  EXPECT_GE(heardInside, 1U);
}

TEST_F(GlibLoop, TellsOfFailuresAndMayEndInAListener) {
  const GlibIdlePass outer(1ms);
  auto pass = std::make_unique<GlibIdlePass>(1ms);
  std::string reason;
  pass->WhenFailed([&](const char* text) { reason = text; });
  const Subscription bad = asked.Subscribe([&](int number) {
    if (number == 0) throw std::runtime_error("no room");
    pass.reset();
  });

  asked.Raise(0);
  while (reason.empty()) g_main_context_iteration(nullptr, TRUE);
  asked.Raise(1);
  noted.Raise(1);
  HearUntil(1);

  EXPECT_EQ(reason, "no room");
  EXPECT_EQ(pass, nullptr);
}

TEST_F(GlibLoop, GivesTheLogAWarningWhereNobodyIsToldOfFailures) {
  const GlibIdlePass pass(1ms);
  const Subscription bad = noted.Subscribe([](int) { throw std::runtime_error("no room"); });
  g_test_expect_message("DataBinding", G_LOG_LEVEL_WARNING, "*thrown: no room");

  noted.Raise(1);
  HearUntil(1);

  g_test_assert_expected_messages();
}

}  // namespace
}  // namespace DataBinding

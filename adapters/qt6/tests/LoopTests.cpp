// SPDX-License-Identifier: Apache-2.0
#include <QCoreApplication>
#include <QEventLoop>
#include <QSignalSpy>
#include <QTest>
#include <chrono>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "DataBinding/appevents/AppEvent.h"
#include "DataBinding/broadcast/ListenerGuard.h"
#include "DataBindingQt6/loop/Install.h"
#include "DataBindingQt6/loop/QtIdlePass.h"

namespace DataBinding::Qt6 {
namespace {

using namespace std::chrono_literals;

inline constinit const AppEvent<int> noted{L"QtLoopNoted"};
inline constinit const AppEvent<int> asked{L"QtLoopAsked"};

class QtLoop : public testing::Test {
 protected:
  [[nodiscard]] bool Hears(std::size_t count) const {
    return QTest::qWaitFor([&] { return heard.size() >= count; });
  }

  std::vector<int> heard;
  Subscription listening = noted.Subscribe([this](int number) { heard.push_back(number); });
};

TEST_F(QtLoop, DeliversWhatThreadsRaise) {
  const QtIdlePass pass(1ms);
  const auto raise = [] {
    for (int i = 0; i < 1000; ++i) noted.Raise(i);
  };

  std::thread first(raise);
  std::thread second(raise);

  EXPECT_TRUE(Hears(2000));
  first.join();
  second.join();
}

TEST_F(QtLoop, WaitsForTheNextFrame) {
  noted.Raise(1);
  QtIdlePass pass(1h);
  ASSERT_TRUE(Hears(1));

  noted.Raise(2);
  QCoreApplication::processEvents();
  EXPECT_EQ(heard.size(), 1U);
  pass.SetFrame(0ms);

  EXPECT_TRUE(Hears(2));
}

TEST_F(QtLoop, LeavesToTheNextPassWhatIsTooMuchForOne) {
  QtIdlePass pass(2ms);
  const QSignalSpy passes(&pass, &QtIdlePass::delivered);
  const Subscription slow = noted.Subscribe([](int) { std::this_thread::sleep_for(1ms); });

  for (int i = 0; i < 3; ++i) noted.Raise(i);

  EXPECT_TRUE(Hears(3));
  QCoreApplication::processEvents();
  EXPECT_EQ(passes.size(), 3);
}

TEST_F(QtLoop, DeliversInALoopWithinAListener) {
  const QtIdlePass pass(1ms);
  const Subscription dialogue = asked.Subscribe([this](int) {
    noted.Raise(1);
    EXPECT_TRUE(Hears(1));
  });

  asked.Raise(0);
  EXPECT_TRUE(Hears(1));
  noted.Raise(2);

  EXPECT_TRUE(Hears(2));
}

TEST_F(QtLoop, TellsOfFailuresAndGoesOn) {
  QtIdlePass pass(1min);
  const QSignalSpy failures(&pass, &QtIdlePass::failed);
  const Subscription bad = asked.Subscribe([](int) { throw std::runtime_error("no room"); });

  asked.Raise(0);
  asked.Raise(1);
  noted.Raise(1);

  ASSERT_TRUE(Hears(1));
  ASSERT_EQ(failures.size(), 1);
  EXPECT_EQ(failures[0][0].toString(), "no room (and 1 more)");
}

TEST_F(QtLoop, MayEndInAListener) {
  const QtIdlePass outer(1ms);
  auto pass = std::make_unique<QtIdlePass>(1ms);
  const Subscription ending = asked.Subscribe([&](int) { pass.reset(); });
  EXPECT_EQ(QtIdlePass::Current(), pass.get());

  asked.Raise(0);
  ASSERT_TRUE(QTest::qWaitFor([&] { return pass == nullptr; }));
  noted.Raise(1);

  EXPECT_TRUE(Hears(1));
  EXPECT_EQ(QtIdlePass::Current(), &outer);
}

std::vector<std::string>& Logged() {
  static std::vector<std::string> lines;
  return lines;
}

void KeepLine(QtMsgType /*type*/, const QMessageLogContext& context, const QString& line) {
  Logged().push_back(std::string(context.category) + ": " + line.toStdString());
}

TEST(QtInstall, SendsFailuresToTheLogWithoutTheGuard) {
  const bool wasOn = IsHardwareFaultGuardOn();
  SetHardwareFaultGuard(true);
  const auto former = qInstallMessageHandler(&KeepLine);

  Install();
  const bool isOn = IsHardwareFaultGuardOn();
  ReportListenerFailure(L"Size", std::make_exception_ptr(std::runtime_error("no room")));
  qInstallMessageHandler(former);
  SetListenerFailureHandler({});
  SetHardwareFaultGuard(wasOn);

  EXPECT_FALSE(isOn);
  EXPECT_EQ(Logged().back(), "databinding: Failure at \"Size\": no room");
}

}  // namespace
}  // namespace DataBinding::Qt6

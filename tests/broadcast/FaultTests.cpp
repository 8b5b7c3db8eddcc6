// SPDX-License-Identifier: Apache-2.0
#include <cstdlib>
#include <exception>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include <DataBinding/broadcast/ListenerGuard.h>
#include <DataBinding/foundation/BindWeak.h>
#include <gtest/gtest.h>

#include "Faults.h"
#include "Notifier.h"

namespace DataBinding {
namespace {

/// Collects what the guard swallowed.
class FaultGuard : public testing::Test {
 protected:
  FaultGuard() {
    SetListenerFailureHandler([this](const ListenerFailure& failure) {
      failures.push_back(failure);
      if (handlerThrows) throw std::runtime_error("handler");
    });
  }
  ~FaultGuard() override {
    SetListenerFailureHandler(nullptr);
    SetHardwareFaultGuard(true);
  }

  Notifier notifier;
  std::vector<ListenerFailure> failures;
  bool handlerThrows = false;
};

TEST_F(FaultGuard, ThrowingListenerIsReportedWhileTheOthersRun) {
  handlerThrows = true;
  const auto before = notifier.Log('1');
  const auto throwing = notifier.Listen([] { throw std::runtime_error("mine"); });
  const auto odd = notifier.Listen([] { throw 42; });
  const auto after = notifier.Log('2');

  for (const bool withHardware : {true, false}) {
    failures.clear();
    SetHardwareFaultGuard(withHardware);
    EXPECT_EQ(notifier.Announce(), "12");
    ASSERT_EQ(failures.size(), 2u);
    EXPECT_EQ(failures[0].property, L"A");
    EXPECT_EQ(failures[0].faultCode, 0u);
    EXPECT_THROW(std::rethrow_exception(failures[0].exception), std::runtime_error);
    EXPECT_EQ(ExceptionText(failures[0].exception), L"mine");
    EXPECT_EQ(ExceptionText(failures[1].exception), L"an exception of a class of its own");
  }
}

TEST_F(FaultGuard, FaultingListenerIsSkippedEachTimeItFaults) {
  const auto& faults = AllFaults();
  std::vector<Subscription> subscriptions;
  for (const auto& [fault, code] : faults) {
    subscriptions.push_back(notifier.Listen(fault));
    subscriptions.push_back(notifier.Log('.'));
  }
  const std::string dots(faults.size(), '.');

  EXPECT_EQ(notifier.Announce(), dots);
  EXPECT_EQ(notifier.Announce(), dots);
  ASSERT_EQ(failures.size(), 2 * faults.size());

  for (std::size_t i = 0; i < failures.size(); ++i) {
    EXPECT_EQ(failures[i].faultCode, faults[i % faults.size()].code);
    EXPECT_EQ(failures[i].exception, nullptr);
  }
}

TEST_F(FaultGuard, FaultInANestedAnnouncementStaysThere) {
  const auto inner = notifier.Register(&AccessForbiddenMemory, L"Inner");
  const auto innerLast = notifier.Log('i', L"Inner");
  const auto outer = notifier.Listen([this] {
    notifier.UpdateListeners(L"Inner");
    notifier.log += 'o';
    AccessForbiddenMemory();
  });
  const auto outerLast = notifier.Log('l');

  EXPECT_EQ(notifier.Announce(), "iol");
  EXPECT_EQ(failures.size(), 2u);
}

TEST_F(FaultGuard, FaultWithinACatchBlockLeavesNoCurrentExceptionBehind) {
  const auto listener = notifier.Listen([] {
    try {
      throw std::runtime_error("handled");
    } catch (const std::runtime_error&) {
      AccessForbiddenMemory();
    }
  });

  try {
    throw std::logic_error("outside");
  } catch (const std::logic_error&) {
    notifier.UpdateListeners(L"A");
    EXPECT_THROW(std::rethrow_exception(std::current_exception()), std::logic_error);
  }

  EXPECT_EQ(std::current_exception(), nullptr);
  EXPECT_EQ(std::uncaught_exceptions(), 0);
}

TEST_F(FaultGuard, ThrowingListenerBehindOneThatAnOuterAnnouncementCancelledIsSkippedOnce) {
  Subscription second;
  const auto first = notifier.Listen([&] {
    if (!second) return;
    second.Cancel();
    notifier.UpdateListeners(L"A");
  });
  second = notifier.Log('2');
  const auto third = notifier.Listen([this] {
    notifier.log += 't';
    throw std::runtime_error("third");
  });
  const auto last = notifier.Log('l');

  EXPECT_EQ(notifier.Announce(), "tl2tl");
  EXPECT_EQ(failures.size(), 2u);
}

TEST_F(FaultGuard, FailureHandlerThatFaultsCostsNobodyElse) {
  SetListenerFailureHandler([](const ListenerFailure&) { AccessForbiddenMemory(); });
  const auto throwing = notifier.Listen([] { throw 42; });
  const auto faulting = notifier.Listen(&AccessForbiddenMemory);
  const auto last = notifier.Log('l');

  EXPECT_EQ(notifier.Announce(), "l");
  EXPECT_EQ(std::current_exception(), nullptr);
}

TEST_F(FaultGuard, FailureHandlerMaySetAnotherWhenItEnds) {
  const auto setAnother = [this](const int* held) {
    delete held;
    SetListenerFailureHandler([this](const ListenerFailure& told) { failures.push_back(told); });
  };
  SetListenerFailureHandler(
      [held = std::shared_ptr<int>(new int(0), setAnother)](const ListenerFailure&) {});
  SetListenerFailureHandler(nullptr);
  const auto throwing = notifier.Listen([] { throw 42; });

  notifier.UpdateListeners(L"A");
  EXPECT_EQ(failures.size(), 1u);
}

using FaultDeath = FaultGuard;

/// Takes a text that shows this failure and no other, or in a release build no text.
struct ShowsOnly {
  using is_gtest_matcher = void;
  bool MatchAndExplain(const std::string& text, std::ostream* /*why*/) const {
#if defined(NDEBUG)
    return text.empty();
#else
    const auto shown = text.find("swallowed a failure at \"A\": " + failure);
    return shown != text.npos && text.find("swallowed", shown + 1) == text.npos;
#endif
  }
  void DescribeTo(std::ostream* out) const { *out << "shows only " << failure; }
  void DescribeNegationTo(std::ostream* out) const { *out << "does not show only " << failure; }

  std::string failure;
};

TEST_F(FaultDeath, FirstFailureThatNobodyIsToldOfIsShownByADebugBuild) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto announceTwice = [this](const RepeatingCallback<void()>& failing,
                                    const RepeatingCallback<void(const ListenerFailure&)>& none) {
    const auto told = notifier.Listen(failing);
    notifier.UpdateListeners(L"A");
    SetListenerFailureHandler(none);
    notifier.UpdateListeners(L"A");
    notifier.UpdateListeners(L"A");
    std::exit(0);
  };
  const auto throwing = [] { throw std::runtime_error("mine"); };
  const auto gone = BindWeak(std::weak_ptr<int>(), [](int&, const ListenerFailure&) {});

  EXPECT_EXIT(announceTwice(throwing, nullptr), testing::ExitedWithCode(0), ShowsOnly{"mine"});
  EXPECT_EXIT(announceTwice(throwing, gone), testing::ExitedWithCode(0), ShowsOnly{"mine"});
  EXPECT_EXIT(announceTwice(&AccessForbiddenMemory, nullptr), testing::ExitedWithCode(0),
              ShowsOnly{"hardware fault 0x"});
}

TEST_F(FaultDeath, FaultsGoTheirWayWhenTheGuardIsOff) {
  const auto listener = notifier.Listen(&RunAnIllegalInstruction);
  const auto switchesOff = notifier.Register(
      [this] {
        SetHardwareFaultGuard(false);
        notifier.UpdateListeners(L"A");
      },
      L"Outer");

  for (const auto* property : {L"A", L"Outer"}) {
    EXPECT_DEATH(
        {
          SetHardwareFaultGuard(*property == L'O');
          notifier.UpdateListeners(property);
        },
        "");
  }
}

TEST_F(FaultDeath, FaultOutsideAListenerReachesWhoeverTookThemBefore) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";

  for (auto* const fault : {&AccessForbiddenMemory, &RunAnIllegalInstruction}) {
    EXPECT_EXIT(
        {
          ExitOnFaults(42);
          const auto listener = notifier.Log('1');
          notifier.UpdateListeners(L"A");
          fault();
        },
        testing::ExitedWithCode(42), "");
  }
}

}  // namespace
}  // namespace DataBinding

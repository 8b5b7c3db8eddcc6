// SPDX-License-Identifier: Apache-2.0
/// What stands between a reading of the system and the figures on the screen.
#include <chrono>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include <DataBinding/appevents/IAppEventBroadcaster.h>
#include <DataBinding/framework/ListBind.h>
#include <DataBinding/property/PropertyAccess.h>
#include <DataBinding/registrar/IDataSourceRegistrar.h>
#include <gtest/gtest.h>

#include "../../examples/sysmon/common/Limits.h"
#include "../../examples/sysmon/model/AlarmWatch.h"
#include "../../examples/sysmon/model/Announcer.h"
#include "../../examples/sysmon/model/EventRecorder.h"
#include "../../examples/sysmon/model/Machine.h"
#include "../../examples/sysmon/model/Pause.h"
#include "../../examples/sysmon/view/LimitEditor.h"
#include "../../examples/sysmon/view/ProcessScope.h"

namespace Sysmon {
namespace {

using DataBinding::GetProperty;
using DataBinding::IAppEventBroadcaster;
using DataBinding::IDataSourceRegistrar;

class NoReader final : public SystemReader {
 public:
  SystemReading Read() override { return {}; }
  CommandReading ReadCommand(std::uint64_t processId) override {
    return {std::to_string(processId), {}, {}, 0};
  }
};

struct RootScope {
  RootScope() { IDataSourceRegistrar::GetInstance().Initialize(); }
  ~RootScope() { IDataSourceRegistrar::GetInstance().Shutdown(); }
};

class MonitorTest : public testing::Test {
 protected:
  /// Announces what would be read so many seconds after the first time, and delivers the events
  /// and those that their listeners raise.
  void Take(int second, double load, std::vector<ProcessReading> processes = {}) {
    SystemReading reading;
    reading.taken += std::chrono::seconds(second);
    reading.host.uptime = Seconds(20 + second);
    reading.load.one = load;
    reading.processes = std::move(processes);
    reading.interfaces.resize(1);
    reading.interfaces[0].receivedBytes = static_cast<Count>(second);
    announcer.Announce(reading);
    Deliver();
  }
  static void Deliver() {
    auto& events = IAppEventBroadcaster::GetInstance();
    while (events.HasPendingEvents()) events.DispatchPendingEvents();
  }
  /// What the events of that name are about.
  [[nodiscard]] std::string Logged(const wchar_t* name) const {
    std::string all;
    for (const EventLog::Entry& entry : log.Entries()) {
      if (entry.name == name)
        all += std::get<VtrString>(entry.arguments.at(0).at(0).value).ToUtf8() + " ";
    }
    return all;
  }
  template <class T>
  [[nodiscard]] T Shown(const wchar_t* source, const wchar_t* property) {
    return GetProperty<T>(root.GetDataSource(source), property).value.value_or(T());
  }

  NoReader reader;
  RootScope rootScope;
  IDataSourceProvider& root = *IDataSourceRegistrar::GetInstance().GetRootProvider();
  EventLog log{100};
  EventRecorder recorder{log};
  Machine machine{reader, root};
  AlarmWatch alarms{root};
  Announcer announcer;
};

TEST_F(MonitorTest, APauseEndsWithTheNewestMeasurements) {
  Pause pause;
  ProcessReading make;

  make.id = 7;
  make.name = "make";
  Take(0, 1);
  pause.Toggle();
  Take(1, 2, {make});
  Take(2, 3);

  EXPECT_EQ(Shown<double>(L"Load", L"One"), 1);
  EXPECT_EQ(Logged(L"ProcessStarted") + Logged(L"ProcessEnded"), "make make ");

  const auto before = log.Added();
  pause.Toggle();
  EXPECT_FALSE(pause.IsOn());
  EXPECT_EQ(Shown<double>(L"Load", L"One"), 3);
  EXPECT_EQ(log.Added() - before, 7u) << "one of each measurement";
}

TEST_F(MonitorTest, AProcessIsShownUntilItsNumberIsThatOfAnother) {
  DataBinding::Framework::ListBind<Process> processes(&root, L"Machine", L"Processes");
  ProcessScope shown(root, processes);
  const auto show = [&](const wchar_t* source, const wchar_t* property) {
    return DataBinding::ReadPropertyText(shown.Get().GetDataSource(source), property).value;
  };
  ProcessReading make;
  make.id = 7;
  make.cpuTime = Seconds(3);

  Take(0, 1, {{}, make});
  shown.Show(processes.At(1));
  make.cpuTime = Seconds(4);
  Take(1, 1, {make});
  EXPECT_EQ(show(L"Process", L"Cpu"), L"100.0%");
  EXPECT_EQ(show(L"Command", L"CommandLine"), L"7");

  make.started = Seconds(20);
  Take(2, 1, {make});
  EXPECT_FALSE(shown.HasProcess());
  EXPECT_EQ(processes.Size(), 1u);
}

TEST_F(MonitorTest, AnAlarmStandsWhileTheValueIsAtItsLimitOrAbove) {
  Take(0, 49.9);
  EXPECT_EQ(Logged(L"AlarmRaised"), "");

  Take(1, 50);
  EXPECT_TRUE(Shown<bool>(L"Alarms", L"LoadRaised"));

  Take(2, 60);
  EXPECT_EQ(SetLimit(root, L"lOAD", L"61"), L"");

  Deliver();
  EXPECT_FALSE(Shown<bool>(L"Alarms", L"LoadRaised"));

  Take(3, 62);
  EXPECT_EQ(Logged(L"AlarmRaised"), "Load Load ");
  EXPECT_EQ(Logged(L"AlarmCleared"), "Load ");
}

TEST_F(MonitorTest, ARefusedLimitStaysInTheLineWithTheReason) {
  LimitEditor editor(root, L"Cpu");

  for (const wchar_t* wrong : {L"", L"9x", L"0", L"-1", L"100.5", L"nan", L"1e999"}) {
    while (!editor.Text().IsEmpty()) editor.Erase();
    for (const wchar_t* next = wrong; *next != 0; ++next) editor.Insert(*next);
    EXPECT_FALSE(editor.Commit() || editor.Reason().IsEmpty()) << editor.Text().ToUtf8();
    EXPECT_EQ(editor.Text(), wrong);
    EXPECT_FALSE(SetLimit(root, L"Cpu", wrong).IsEmpty());
  }

  EXPECT_EQ(SetLimit(root, L"Cpu", L"12.5"), L"");
  EXPECT_EQ(editor.Text(), L"12.5") << "whoever sets it";

  editor.Insert(L'\t');
  editor.Erase();
  EXPECT_TRUE(editor.Commit());
  EXPECT_EQ(Shown<double>(L"Alarms", L"Cpu"), 12) << "of \"12.\"";
}

}  // namespace
}  // namespace Sysmon

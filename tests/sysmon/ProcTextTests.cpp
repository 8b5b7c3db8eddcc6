/// The parsers of /proc meet whatever bytes a process or the kernel puts there.
#include "../../examples/sysmon/system/ProcText.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace Sysmon {
namespace {

constexpr std::string_view afterName =
    " S 41 40 40 0 -1 4194560 100 0 0 0 250 50 0 0 20 0 3 0 1234 8192000 77 18446744073709551615 "
    "1 1 0 0\n";

std::string StatOf(std::string_view name) {
  return "42 (" + std::string(name) + ")" + std::string(afterName);
}

TEST(ProcessStat, FiguresAreFoundByTheirPlace) {
  const auto stat = ParseProcessStat(StatOf("bash"));
  ASSERT_TRUE(stat);
  EXPECT_EQ(stat->id, 42u);
  EXPECT_EQ(stat->parent, 41u);
  EXPECT_EQ(stat->state, 'S');
  EXPECT_EQ(stat->userTicks, 250u);
  EXPECT_EQ(stat->systemTicks, 50u);
  EXPECT_EQ(stat->threads, 3u);
  EXPECT_EQ(stat->startTicks, 1234u);
  EXPECT_EQ(stat->virtualBytes, 8192000u);
}

TEST(ProcessStat, AnyNameIsKeptAndShiftsNoFigure) {
  for (const std::string_view name :
       {"", "a b", "(sd-pam)", ") R 1 2 (", "two\nlines", "\xff\xfe\x80", "))))", "1 2 3"}) {
    const auto stat = ParseProcessStat(StatOf(name));
    ASSERT_TRUE(stat) << name;
    EXPECT_EQ(stat->name, name);
    EXPECT_EQ(stat->parent, 41u) << name;
    EXPECT_EQ(stat->virtualBytes, 8192000u) << name;
  }
}

TEST(ProcessStat, TornLinesAreNoProcess) {
  const std::string whole = StatOf("torn (twice)");
  const auto lastField = whole.find(" 8192000 ");
  for (std::size_t length = 0; length <= lastField; ++length) {
    EXPECT_FALSE(ParseProcessStat(std::string_view(whole).substr(0, length))) << length;
  }
  EXPECT_FALSE(ParseProcessStat("x (bash)" + std::string(afterName)));
  EXPECT_FALSE(ParseProcessStat(")42 (bash" + std::string(afterName)));
}

TEST(ProcessStatus, TheEffectiveUserAndTheResidentSizeAreRead) {
  const ProcessStatus status = ParseProcessStatus(
      "Name:\tVmRSS: 1 kB\\nUid:\nUid:\t0\t1000\t0\t0\nVmHWM:\t  900 kB\nVmRSS:\t  812 kB\n");
  EXPECT_EQ(status.userId, 1000u);
  EXPECT_EQ(status.residentBytes, 812u * 1024);
  EXPECT_EQ(ParseProcessStatus("Uid:\nName:\tkthreadd\n").residentBytes, 0u);
}

TEST(CpuStat, CountsProcessorsAndSumsTheirTimesOnce) {
  const CpuStat stat = ParseCpuStat(
      "cpu  10 1 20 300 4 5 6 7 0 0\ncpu0 5 0 10 150 2 2 3 3 0 0\ncpu1 5 1 10 150 2 3 3 4 0 0\n"
      "intr 99 1\ncpuidle 7\nbtime 1700000000\n");
  EXPECT_EQ(stat.cores, 2u);
  EXPECT_EQ(stat.user, 10u);
  EXPECT_EQ(stat.idle, 300u);
  EXPECT_EQ(stat.stolen, 7u);
  EXPECT_EQ(ParseCpuStat("cpu 1 2 3").stolen, 0u);  // an old kernel has fewer columns
}

TEST(Memory, FiguresAreBytesAndOthersAreIgnored) {
  const MemoryReading memory = ParseMemory(
      "MemTotal:       2048 kB\nMemFree:  1024 kB\nMemAvailable:   1536 kB\nCached: 3 kB\n"
      "SwapCached: 999 kB\nHugePages_Total: 5\nSwapTotal: 18446744073709551615 kB\nSwapFree: kB");
  EXPECT_EQ(memory.total, 2048u * 1024);
  EXPECT_EQ(memory.available, 1536u * 1024);
  EXPECT_EQ(memory.cached, 3u * 1024);
  EXPECT_EQ(memory.swapTotal, 0u);  // more bytes than can be counted
  EXPECT_EQ(memory.swapFree, 0u);
}

TEST(Interfaces, HeadingsAreSkippedAndAliasesKept) {
  const auto interfaces = ParseInterfaces(
      "Inter-|   Receive                |  Transmit\n face |bytes packets errs|bytes\n"
      "    lo:    3267      29    0    0    0     0          0         0     11      12 0 0 0 0\n"
      "eth0:1:7 6 5 4 3 2 1 0 70 60 50 40\n torn: 1 2 3\n");
  ASSERT_EQ(interfaces.size(), 2u);
  EXPECT_EQ(interfaces[0].name, "lo");
  EXPECT_EQ(interfaces[0].receivedBytes, 3267u);
  EXPECT_EQ(interfaces[0].sentBytes, 11u);
  EXPECT_EQ(interfaces[1].name, "eth0:1");
  EXPECT_EQ(interfaces[1].errors, 55u);
}

}  // namespace
}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// Checks the parsers by which the system monitor reads /proc, with the input as a whole file and
/// as the name of a process, and how the monitor shows such a name.
#include <clocale>
#include <cmath>
#include <cstdint>

#include "../examples/sysmon/system/ProcText.h"
#include "../examples/sysmon/view/Text.h"
#include "Fuzz.h"

namespace Fuzz {

using namespace Sysmon;

namespace {

void CheckProcess(std::string_view input) {
  const auto line = std::string("42 (").append(input).append(
      ") S 41 40 40 0 -1 0 100 0 0 0 250 50 0 0 20 0 3 0 1234 8192000 77\n");
  const auto process = ParseProcessStat(line);
  Expect(process && process->name == input && process->id == 42 && process->parent == 41 &&
             process->state == 'S' && process->userTicks == 250 && process->systemTicks == 50 &&
             process->threads == 3 && process->startTicks == 1234 &&
             process->virtualBytes == 8192000,
         "a process may have any name");
  for (auto torn = std::string_view(line).substr(0, line.rfind(" 8192000")); torn.back() != ')';) {
    Expect(!ParseProcessStat(torn), "a torn line is no process");
    torn.remove_suffix(1);
  }
  Expect(!ParseProcessStat("x" + line), "a process has a number");
  const auto whole = ParseProcessStat(input);
  Expect(!whole || input.find("(" + whole->name + ")") != input.npos, "a name is of the text");
  const auto command = ParseCommandLine(input);
  Expect(command.size() <= input.size() && command.find('\0') == command.npos, "it is one text");
}

void CheckFigures(const std::string& text) {
  const auto ended = [&](const char* line) { return text + "\n" + line + "\n"; };
  Expect(ParseProcessStatus(ended("Uid:\t1\t2")).userId == 2, "the user is found");
  Expect(ParseProcessStatus(ended("VmRSS: 3 kB")).residentBytes == 3072, "the memory is found");
  const auto memory =
      ParseMemory(ended("Cached: 7 kB\nSwapCached: 9 kB\nSwapTotal: 18446744073709551615 kB"));
  Expect(memory.cached == 7168 && memory.swapTotal == 0, "the last line is read if it has a sense");
  const auto times = ParseCpuStat(ended("cpu1 1 2\ncpuidle 7\ncpu 10 1 20 300 4 5 6"));
  Expect(times.cores == ParseCpuStat(text).cores + 1, "a line more is a processor more");
  Expect(times.user == 10 && times.idle == 300 && times.stolen == 0, "an old kernel tells less");
  const auto load = ParseLoad(text);
  for (const double amount : {load.one, load.five, load.fifteen, ParseUptime(text).count()}) {
    Expect(std::isfinite(amount) && amount >= 0, "amounts are finite");
  }
  Expect(!Show(ParseUptime(text)).IsEmpty(), "any time can be shown");
  const auto interfaces = ParseInterfaces(ended("torn: 1 2 3\neth0:1:7 6 5 4 3 2 1 0 70 60 50 40"));
  Expect(interfaces.size() == ParseInterfaces(text).size() + 1, "a line more is an interface more");
  const auto& last = interfaces.back();
  Expect(last.name == "eth0:1" && last.receivedBytes == 7 && last.sentBytes == 70 &&
             last.sentPackets == 60 && last.errors == 55,
         "its figures are found");
}

void CheckCells(const VtrString& text, int width, Align align) {
  const std::wstring fitted = Fit(text, width, align);
  int cells = 0;
  for (const wchar_t character : fitted) {
    Expect(wcwidth(character) > 0, "each character takes a cell and is not obeyed");
    cells += wcwidth(character);
  }
  Expect(cells == width, "a text fills its place");
  Expect(Fit(fitted, width, align) == fitted, "what fits stays as it is");
}

}  // namespace

void CheckInput(std::string_view input) {
  static const bool hasCells = std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr;
  Expect(hasCells, "there is a locale of wide characters");
  CheckProcess(input);
  CheckFigures(std::string(input));
  const int width = static_cast<int>(input.size() % 40);
  CheckCells(VtrString::FromUtf8(input), width, Align::Left);
  CheckCells(VtrString::FromUtf8(input), width, Align::Right);
}

}  // namespace Fuzz

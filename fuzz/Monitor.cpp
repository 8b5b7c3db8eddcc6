/// What the system monitor reads in /proc, as a whole and with the input as a process's name, and
/// how it shows such a name.
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
             process->virtualBytes == 8192000,
         "a process may have any name");
  const auto whole = ParseProcessStat(input);
  Expect(!whole || input.find("(" + whole->name + ")") != input.npos, "a name is of the text");
  const auto command = ParseCommandLine(input);
  Expect(command.size() <= input.size() && command.find('\0') == command.npos, "it is one text");
}

void CheckFigures(const std::string& text) {
  const auto ended = [&](const char* line) { return text + "\n" + line + "\n"; };
  Expect(ParseProcessStatus(ended("Uid:\t1\t2")).userId == 2, "the user is found");
  Expect(ParseProcessStatus(ended("VmRSS: 3 kB")).residentBytes == 3072, "the memory is found");
  Expect(ParseMemory(ended("MemTotal: 7 kB")).total == 7168, "the last line is read");
  const auto processors = ParseCpuStat(text).cores + 1;
  Expect(ParseCpuStat(ended("cpu1 1 2")).cores == processors, "a line more is a processor more");
  const auto load = ParseLoad(text);
  for (const double amount : {load.one, load.five, load.fifteen, ParseUptime(text).count()}) {
    Expect(std::isfinite(amount) && amount >= 0, "amounts are finite");
  }
  Expect(!Show(ParseUptime(text)).IsEmpty(), "any time can be shown");
  const auto interfaces = ParseInterfaces(ended("eth0:1 2 3 0 0 0 0 0 8 9 10 0"));
  Expect(interfaces.size() == ParseInterfaces(text).size() + 1, "a line more is an interface more");
  Expect(interfaces.back().sentPackets == 9, "its figures are found");
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

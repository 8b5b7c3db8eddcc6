// SPDX-License-Identifier: Apache-2.0
#include "Options.h"

#include <getopt.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>
#include <string_view>

namespace Sysmon {

const char usageText[] =
    R"(usage: sysmon [options]

Shows what this machine is doing and what happens on it. On a terminal it is a live
table with a log of events; elsewhere it prints frames of plain text.

  --interval MS   time between two samples, 50 to 3600000 milliseconds (1000)
  --frames N      end after N frames
  --json          take two samples, one interval apart, print them as JSON, and end;
                  with --frames take N samples, and list the events, too
  --alarm NAME=X  raise an alarm at X: Cpu and Memory in percent (90), Load (50)
  --shot FILE     sysmon-window only: save what the window shows after the frames, 3 if
                  none are given, as a picture, and end; no display is needed
  --help          print this text

keys: arrows, PgUp, PgDn, Home, End  move       c m p n  sort by cpu, memory, pid, name
      Enter  open a process                     r        reverse the order
      Esc    close it                           l        log: happenings, all events, none
      a      edit when alarms are raised: Tab goes to the next one, Enter sets it,
             Esc leaves it
      Space  pause and go on                    q        quit
)";

namespace {

std::uint64_t ParseNumber(std::string_view option, std::string_view text, std::uint64_t least,
                          std::uint64_t most) {
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error == std::errc() && stop == end && number >= least && number <= most) return number;
  throw UsageError(std::string(option) + " needs a whole number from " + std::to_string(least) +
                   " to " + std::to_string(most));
}

std::pair<std::string, std::string> ParseAlarm(std::string_view text) {
  const auto sign = text.find('=');
  if (sign == std::string_view::npos) throw UsageError("--alarm needs NAME=VALUE");
  return {std::string(text.substr(0, sign)), std::string(text.substr(sign + 1))};
}

constexpr option known[] = {{"interval", required_argument, nullptr, 'i'},
                            {"frames", required_argument, nullptr, 'f'},
                            {"alarm", required_argument, nullptr, 'a'},
                            {"json", no_argument, nullptr, 'j'},
                            {"shot", required_argument, nullptr, 's'},
                            {"help", no_argument, nullptr, 'h'},
                            {nullptr, 0, nullptr, 0}};

}  // namespace

int RunProgram(int (*program)(int, char**), int count, char** arguments) {
  try {
    return program(count, arguments);
  } catch (const UsageError& error) {
    std::cerr << "sysmon: " << error.what() << "\nTry 'sysmon --help'.\n";
    return 2;
  } catch (const std::exception& error) {
    std::cerr << "sysmon: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}

Options ParseOptions(int count, char** arguments) {
  Options options;
  opterr = 0;  // an exception tells what is wrong, and getopt prints nothing
  optind = 0;  // begins anew, wherever an earlier call stopped
  for (;;) {
    const char* const current = arguments[std::max(optind, 1)];
    switch (getopt_long(count, arguments, "+:h", known, nullptr)) {
      case -1:
        if (optind == count) return options;
        throw UsageError(std::string("unknown argument '") + arguments[optind] + "'");
      case 'i':
        options.interval =
            std::chrono::milliseconds(ParseNumber("--interval", optarg, 50, 3'600'000));
        break;
      case 'f':
        options.frames = ParseNumber("--frames", optarg, 1, 1'000'000'000);
        break;
      case 'a':
        options.alarms.push_back(ParseAlarm(optarg));
        break;
      case 'j':
        options.isJson = true;
        break;
      case 's':
        options.shot = optarg;
        break;
      case 'h':
        options.isHelp = true;
        break;
      default:
        throw UsageError(std::string("unknown or incomplete option '") + current + "'");
    }
  }
}

}  // namespace Sysmon

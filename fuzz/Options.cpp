/// Command lines of the system monitor, an argument in each line.
#include "../examples/sysmon/Options.h"

#include "Fuzz.h"

namespace Fuzz {

using Sysmon::Options;

namespace {

Options Parsed(std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), "no\nargument");
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  return Sysmon::ParseOptions(static_cast<int>(arguments.size()), pointers.data());
}

/// Options that are written out are read again.
void CheckAgain(const Options& options) {
  std::vector<std::string> arguments{"--interval", std::to_string(options.interval.count())};
  if (options.frames != 0) arguments.push_back("--frames=" + std::to_string(options.frames));
  for (const auto& [name, limit] : options.alarms) {
    arguments.insert(arguments.end(), {"--alarm", std::string(name).append("=").append(limit)});
  }
  const Options again = Parsed(arguments);
  Expect(again.interval == options.interval && again.alarms == options.alarms, "all are kept");
  Expect(again.frames == options.frames && !again.isJson, "and none comes in");
}

}  // namespace

void CheckInput(std::string_view input) {
  std::vector<std::string> arguments;
  while (!input.empty()) arguments.emplace_back(std::string(TakeLine(input)).c_str());
  try {
    const Options options = Parsed(arguments);
    Expect(options.interval.count() >= 50 && options.interval.count() <= 3'600'000, "bounds hold");
    CheckAgain(options);
  } catch (const Sysmon::UsageError& error) {
    const std::string_view text = error.what();
    Expect(text.find("no\nargument") == text.npos, "what is wrong is an argument");
  }
}

}  // namespace Fuzz

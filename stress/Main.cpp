// SPDX-License-Identifier: Apache-2.0
// Plays scripts to the library and its models, shrinks a script that fails, and prints it. Half of
// the scripts have the same seeds in each run, and the others have random seeds; when the run is
// limited by a time, all are random. Scripts run in a child process, so that a crash is shrunk like
// a wrong answer.

#include <chrono>
#include <cstdlib>
#include <optional>
#include <random>

#include "Machine.h"
#include "Subjects.h"

namespace DataBinding::Stress {
namespace {

constexpr std::size_t scriptLength = 400;
constexpr std::size_t looksEvery = 16;

constexpr const Subject* subjects[] = {&dataSubject, &propertySubject, &eventSubject, &listSubject,
                                       &viewSubject};

struct Options {
  std::optional<std::uint32_t> seed;
  std::size_t operations = 100'000;
  std::size_t rounds = 10'000'000;
  double minutes = 0;
};

Script Generate(std::uint32_t seed) {
  std::mt19937 random(seed);
  Script script(scriptLength);
  for (auto& code : script) code = static_cast<std::uint32_t>(random());
  return script;
}

/// Leaves out operations that the failure does not need: large pieces first, and single operations
/// in the end. The result is empty for a script that does not fail by itself.
Script Shrink(const Subject& subject, Script script) {
  const auto fails = [&](const Script& tried) {
    return !Succeeds(true, [&] { return subject.agrees(tried, 1, false); });
  };
  if (!fails(script)) return {};
  for (std::size_t size = script.size() / 2, before = 0; size > 0;) {
    before = script.size();
    for (std::size_t at = 0; at < script.size();) {
      Script tried = script;
      const auto first = tried.begin() + static_cast<std::ptrdiff_t>(at);
      tried.erase(first, first + static_cast<std::ptrdiff_t>(std::min(size, tried.size() - at)));
      if (fails(tried)) {
        script = std::move(tried);
      } else {
        at += size;
      }
    }
    if (size > 1 || script.size() == before) size /= 2;
  }
  return script;
}

int Report(const Subject& subject, std::uint32_t seed) {
  const Script whole = Generate(seed);
  const Script shrunk = Shrink(subject, whole);
  if (shrunk.empty()) {
    std::printf("%s: seed %u fails, but only after those before it\n", subject.name, seed);
    return 1;
  }
  std::printf("%s: seed %u fails; shrunk from %zu operations to %zu:\n", subject.name, seed,
              whole.size(), shrunk.size());
  for (std::size_t i = 0; i < shrunk.size(); ++i) {
    std::printf("  %zu. %s\n", i + 1, subject.describe(shrunk[i]).c_str());
  }
  Succeeds(false, [&] { return subject.agrees(shrunk, 1, true); });
  std::printf("again: stress %s --seed %u\n", subject.name, seed);
  return 1;
}

int Stress(const Subject& subject, const Options& options) {
  using Clock = std::chrono::steady_clock;
  std::uint32_t& current = CurrentSeed();
  const auto start = Clock::now();
  const std::chrono::duration<double> limit(options.minutes * 60);
  const std::uint32_t random = std::random_device()() | 0x80000000U;
  const std::size_t count = options.seed ? 1 : (options.operations + scriptLength) / scriptLength;
  std::size_t tried = 0;
  const bool agreed = Succeeds(false, [&] {
    for (; options.minutes > 0 ? Clock::now() - start < limit : tried < count; ++tried) {
      const auto number = static_cast<std::uint32_t>(tried);
      const bool isFixed = options.minutes == 0 && tried % 2 == 0;
      current = options.seed.value_or(isFixed ? number / 2 : random + number);
      if (!subject.agrees(Generate(current), options.seed ? 1 : looksEvery, false)) return false;
    }
    const std::chrono::duration<double> taken = Clock::now() - start;
    std::printf("%s: %zu operations agree in %.1f s, random seeds from %u\n", subject.name,
                tried * scriptLength, taken.count(), random);
    return true;
  });
  return agreed ? 0 : Report(subject, current);
}

bool StressThreads(const Options& options) {
  using Clock = std::chrono::steady_clock;
  const auto end = Clock::now() + std::chrono::duration<double>(options.minutes * 60);
  std::uint32_t seed = options.seed.value_or(options.minutes > 0 ? std::random_device()() : 1);
  while (ThreadsAgree(seed)) {
    if (Clock::now() >= end) return true;
    ++seed;
  }
  return false;
}

/// Reads the command line. Gives nothing when it is not understood.
std::optional<Options> Parse(std::span<char*> arguments) {
  Options options;
  for (std::size_t i = 0; i < arguments.size(); i += 2) {
    const std::string_view name = arguments[i];
    const double value = i + 1 < arguments.size() ? std::atof(arguments[i + 1]) : -1;
    if (value < 0) return {};
    if (name == "--seed") {
      options.seed = static_cast<std::uint32_t>(value);
    } else if (name == "--operations") {
      options.operations = static_cast<std::size_t>(value);
    } else if (name == "--rounds") {
      options.rounds = static_cast<std::size_t>(value);
    } else if (name == "--minutes") {
      options.minutes = value;
    } else {
      return {};
    }
  }
  return options;
}

constexpr char usage[] =
    "stress data|properties|events|lists|views [--operations N | --minutes N]  random scripts\n"
    "stress data|properties|events|lists|views --seed N                        one of them once "
    "more\n"
    "stress threads [--seed N] [--minutes N]            producers beside the delivering thread\n"
    "stress churn [--rounds N]                          so many sources and events in flat "
    "memory\n";

int Main(std::span<char*> arguments) {
  const std::string_view what = arguments.size() > 1 ? arguments[1] : "";
  const auto options = Parse(arguments.subspan(std::min<std::size_t>(arguments.size(), 2)));
  for (const Subject* subject : subjects) {
    if (options && what == subject->name) return Stress(*subject, *options);
  }
  if (options && what == "threads") return StressThreads(*options) ? 0 : 1;
  if (options && what == "churn") return ChurnStaysFlat(options->rounds) ? 0 : 1;
  std::fputs(usage, stderr);
  return 2;
}

}  // namespace
}  // namespace DataBinding::Stress

int main(int count, char** arguments) {
  return DataBinding::Stress::Main({arguments, static_cast<std::size_t>(count)});
}

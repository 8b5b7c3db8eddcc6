// SPDX-License-Identifier: Apache-2.0
/// The subjects that the program can stress.
#pragma once

#include "Script.h"

namespace DataBinding::Stress {

/// A Subject plays scripts of one kind to the library and its model, and names their operations.
struct Subject {
  const char* name;
  bool (*agrees)(const Script& script, std::size_t every, bool talks);
  std::string (*describe)(std::uint32_t code);
};
extern const Subject dataSubject;
extern const Subject eventSubject;
extern const Subject listSubject;
extern const Subject propertySubject;
extern const Subject viewSubject;

/// Raises events on several threads while this one delivers them. True if each event arrived once,
/// in the order of its thread, and each name of replaced events with its last value.
bool ThreadsAgree(std::uint32_t seed);

/// Makes, uses and ends as many sources and events. True if the memory in use stayed flat.
bool ChurnStaysFlat(std::size_t rounds);

}  // namespace DataBinding::Stress

// SPDX-License-Identifier: Apache-2.0
/// What there is to be stressed, for the program that does it.
#pragma once

#include "Script.h"

namespace DataBinding::Stress {

bool DataAgrees(const Script& script, std::size_t every, bool talks);
std::string DescribeData(std::uint32_t code);
bool PropertiesAgree(const Script& script, std::size_t every, bool talks);
std::string DescribeProperties(std::uint32_t code);
bool EventsAgree(const Script& script, std::size_t every, bool talks);
std::string DescribeEvents(std::uint32_t code);

/// Raises events on several threads while this one delivers them, and says whether each arrived
/// once, in its producer's order, replaced ones with the last value that counts.
bool ThreadsAgree(std::uint32_t seed);

/// Makes, uses and ends so many sources and events. Says whether the memory in use stayed flat.
bool ChurnStaysFlat(std::size_t rounds);

}  // namespace DataBinding::Stress

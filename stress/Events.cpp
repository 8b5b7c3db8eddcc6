// SPDX-License-Identifier: Apache-2.0
#include "EventLibrary.h"
#include "EventModel.h"
#include "Subjects.h"

namespace DataBinding::Stress {

bool EventsAgree(const Script& script, std::size_t every, bool talks) {
  return Agree<EventLibrary, EventModel>(script, every, talks);
}

std::string DescribeEvents(std::uint32_t code) { return EventModel::Describe(code); }

}  // namespace DataBinding::Stress

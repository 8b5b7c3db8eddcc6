// SPDX-License-Identifier: Apache-2.0
#include "EventLibrary.h"
#include "EventModel.h"
#include "Subjects.h"

namespace DataBinding::Stress {

constinit const Subject eventSubject{"events", &Agree<EventLibrary, EventModel>,
                                     &EventModel::Describe};

}  // namespace DataBinding::Stress

// SPDX-License-Identifier: Apache-2.0
#include "DataLibrary.h"
#include "DataModel.h"
#include "Subjects.h"

namespace DataBinding::Stress {

constinit const Subject dataSubject{"data", &Agree<DataLibrary, DataModel>, &DataModel::Describe};

}  // namespace DataBinding::Stress

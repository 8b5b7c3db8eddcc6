// SPDX-License-Identifier: Apache-2.0
#include "DataLibrary.h"
#include "DataModel.h"
#include "Subjects.h"

namespace DataBinding::Stress {

bool DataAgrees(const Script& script, std::size_t every, bool talks) {
  return Agree<DataLibrary, DataModel>(script, every, talks);
}

std::string DescribeData(std::uint32_t code) { return DataModel::Describe(code); }

}  // namespace DataBinding::Stress

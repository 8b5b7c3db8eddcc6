// SPDX-License-Identifier: Apache-2.0
#include "Properties.h"

#include "PropertyLibrary.h"
#include "PropertyModel.h"
#include "Subjects.h"

namespace DataBinding::Stress {

bool PropertiesAgree(const Script& script, std::size_t every, bool talks) {
  return Agree<PropertyLibrary, PropertyModel>(script, every, talks);
}

std::string DescribeProperties(std::uint32_t code) { return PropertyModel::Describe(code); }

}  // namespace DataBinding::Stress

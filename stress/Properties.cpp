// SPDX-License-Identifier: Apache-2.0
#include "Properties.h"

#include "PropertyLibrary.h"
#include "PropertyModel.h"
#include "Subjects.h"

namespace DataBinding::Stress {

constinit const Subject propertySubject{"properties", &Agree<PropertyLibrary, PropertyModel>,
                                        &PropertyModel::Describe};

}  // namespace DataBinding::Stress

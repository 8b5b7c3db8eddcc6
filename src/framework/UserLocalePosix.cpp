// SPDX-License-Identifier: Apache-2.0
#include <stdexcept>

#include "DataBinding/framework/LocaleConverter.h"

namespace DataBinding {

std::locale UserLocale() {
  try {
    return std::locale("");
  } catch (const std::runtime_error&) {
    return std::locale::classic();
  }
}

}  // namespace DataBinding

#include "DataBinding/TextConverter.h"

namespace DataBinding::details {

VtrString ExplainUnfit(const VtrString& text, std::errc reason, const runtime_type_base& wanted) {
  const VtrString type = VtrString::FromUtf8(wanted.GetTypeName());
  if (reason == std::errc::result_out_of_range) {
    return VtrString().Format(L"\"%s\" is out of the range of type %s.", text, type);
  }
  return VtrString().Format(L"\"%s\" is not a value of type %s.", text, type);
}

}  // namespace DataBinding::details

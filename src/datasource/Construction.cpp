// SPDX-License-Identifier: Apache-2.0
#include "Construction.h"

#include <exception>
#include <stdexcept>

#include "DataBinding/broadcast/ListenerGuard.h"

namespace DataBinding {

Construction::Construction(const IDataSourceProvider& provider, const wchar_t* name)
    : record(new Record{&provider, name, innermost}) {
  innermost = record.get();
}

Construction::~Construction() { innermost = record->outer; }

bool Construction::FindAndReport(const IDataSourceProvider& provider, const wchar_t* name) {
  const Record* found = innermost;
  const auto isMeant = [&] {
    return found->provider == &provider && found->name.Compare(name) == 0;
  };
  while (found != nullptr && !isMeant()) found = found->outer;
  if (found == nullptr) return false;
  const VtrString text = VtrString().Format(
      L"Data source \"%s\" is being built and cannot be had yet, but the building of \"%s\" asks "
      L"for it.",
      found->name, innermost->name);
  details::ReportFailure(found->name, std::make_exception_ptr(std::logic_error(text.ToUtf8())));
  return true;
}

}  // namespace DataBinding

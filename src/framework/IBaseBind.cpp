// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/framework/IBaseBind.h"

#include "DataBinding/framework/IBaseDataBind.h"

namespace DataBinding::Framework {

namespace {

void AppendUnlessOpen(VtrString& text, const wchar_t* separator, const VtrString& name,
                      const wchar_t* marker) {
  if (!name.IsEmpty() && name != marker) text += separator + name;
}

}  // namespace

const wchar_t* const nullDataMarker = L"VtrFrmWk::NullData";
const wchar_t* const nullPathMarker = L"VtrFrmWk::NullPath";

IBaseBind::IBaseBind() = default;
IBaseBind::IBaseBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
                     const VtrStringT<wchar_t>& pathInSource)
    : contextName(context), sourceName(source), pathName(pathInSource) {}
IBaseBind::IBaseBind(const IBaseBind& other) = default;
IBaseBind& IBaseBind::operator=(const IBaseBind& other) = default;
IBaseBind::~IBaseBind() = default;

VtrStringT<wchar_t> IBaseBind::GetTrackingName() {
  VtrString text;
  AppendUnlessOpen(text, L"", contextName, nullDataMarker);
  AppendUnlessOpen(text, L"::", sourceName, nullDataMarker);
  AppendUnlessOpen(text, L"::", pathName, nullPathMarker);
  return text;
}

IBaseDataBind::IBaseDataBind() = default;
IBaseDataBind::IBaseDataBind(const VtrStringT<wchar_t>& context, const VtrStringT<wchar_t>& source,
                             const VtrStringT<wchar_t>& pathInSource)
    : IBaseBind(context, source, pathInSource) {}
IBaseDataBind::IBaseDataBind(const IBaseDataBind& other) = default;
IBaseDataBind::IBaseDataBind(IBaseDataBind&& other) noexcept = default;
IBaseDataBind& IBaseDataBind::operator=(const IBaseDataBind& other) = default;
IBaseDataBind& IBaseDataBind::operator=(IBaseDataBind&& other) noexcept = default;
IBaseDataBind::~IBaseDataBind() = default;

}  // namespace DataBinding::Framework

// SPDX-License-Identifier: Apache-2.0
/// This header specialises std::formatter for strings and results, where the compiler has
/// `<format>`, and holds nothing elsewhere.
///
/// Strings and the texts of results are written as by `<<`, as UTF-8 in narrow formats, and take
/// the format of a string. A PropertyValue<T> is written as std::format writes the T and takes a
/// T's format, which applies to values only: a text that stands in place of a value is written as
/// it is.
///
///   std::format("{:>12} {:.1f}", name, GetProperty<double>(source, name));
#pragma once

#include <version>

#if defined(__cpp_lib_format)

#include <format>
#include <string>
#include <string_view>

#include "DataBinding/foundation/String.h"
#include "DataBinding/framework/BindStatus.h"
#include "DataBinding/reflection/PropertyResult.h"

template <>
struct std::formatter<DataBinding::VtrString> : std::formatter<std::string> {
  template <class Context>
  auto format(const DataBinding::VtrString& text, Context& context) const {
    return std::formatter<std::string>::format(text.ToUtf8(), context);
  }
};

template <>
struct std::formatter<DataBinding::VtrString, wchar_t>
    : std::formatter<std::wstring_view, wchar_t> {
  template <class Context>
  auto format(const DataBinding::VtrString& text, Context& context) const {
    return std::formatter<std::wstring_view, wchar_t>::format(text, context);
  }
};

template <>
struct std::formatter<DataBinding::SetResult> : std::formatter<DataBinding::VtrString> {
  template <class Context>
  auto format(const DataBinding::SetResult& result, Context& context) const {
    return std::formatter<DataBinding::VtrString>::format(result.text, context);
  }
};

template <>
struct std::formatter<DataBinding::Framework::BindStatus> : std::formatter<DataBinding::VtrString> {
  template <class Context>
  auto format(const DataBinding::Framework::BindStatus& status, Context& context) const {
    return std::formatter<DataBinding::VtrString>::format(status.text, context);
  }
};

template <class T>
struct std::formatter<DataBinding::PropertyValue<T>> : std::formatter<T> {
  template <class Context>
  auto format(const DataBinding::PropertyValue<T>& result, Context& context) const {
    if (result) return std::formatter<T>::format(*result, context);
    return std::format_to(context.out(), "{}", result.text);
  }
};

#endif

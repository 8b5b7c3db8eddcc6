// SPDX-License-Identifier: Apache-2.0
/// NumberConverter<T, W> makes the converter between a bind's numbers of type T and a widget that
/// shows numbers of type W: a spin box of int, a slider of double.
///
/// The widget has to show something, so a value that a W cannot be is shown as the nearest one that
/// it can be, and a NaN as 0. In the other direction nothing is made up: what the user has entered
/// is refused, with an explanation for people, where a T cannot be it. A user who only passes
/// through an edit changes nothing, because the join knows the number that it has shown.
///
///   auto level = TwoWay(bind, [&] { return box.Number(); }, [&](int n) { box.Show(n); },
///                       NumberConverter<double, int>());
#pragma once

#include "DataBinding/framework/TextConverter.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"
#include "DataBinding/reflection/ValueForm.h"

namespace DataBinding {

/// Makes the converter. Which numbers convert says ValueForm.h.
template <details::ValueNumber T, details::ValueNumber W>
[[nodiscard]] Converter<T, W> NumberConverter() {
  return {&details::NearestNumber<W, T>, [](const W& shown) -> PropertyValue<T> {
            T number{};
            if (details::ConvertNumber(shown, number)) return {number, PropertyError::None, {}};
            const auto reason = details::IsWhole(shown) ? std::errc::result_out_of_range
                                                        : std::errc::invalid_argument;
            return {{},
                    PropertyError::Refused,
                    details::ExplainUnfit(ToText(shown), reason, runtime_type<T>::Get())};
          }};
}

}  // namespace DataBinding

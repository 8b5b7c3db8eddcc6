// SPDX-License-Identifier: Apache-2.0
/// Debug builds' word on sources that nobody will ever hear, because they were not
/// post-constructed.
///
/// Written on standard error, once for each class. Any thread.
#pragma once

#include <typeinfo>

#include "DataBinding/broadcast/IBroadcaster.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

#if defined(NDEBUG)

inline void NoteSilence(const std::type_info& /*sourceClass*/,
                        const details::Broadcaster& /*broadcaster*/,
                        const VtrString& /*name*/) noexcept {}

#else

/// Says that an announcement of a source of this class reaches nobody, unless nobody is registered
/// for it, or the source is just being made.
void NoteSilence(const std::type_info& sourceClass, const details::Broadcaster& broadcaster,
                 const VtrString& name) noexcept;

#endif

}  // namespace DataBinding

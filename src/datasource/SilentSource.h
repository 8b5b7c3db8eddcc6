// SPDX-License-Identifier: Apache-2.0
/// In debug builds this tells of sources that nobody will ever hear, because they were not
/// post-constructed.
///
/// It writes on standard error, once for each class, and may be called on any thread.
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

/// Says that an announcement of a source of this class reaches nobody. Says nothing if nobody is
/// registered for the name, or if the source is just being made.
void NoteSilence(const std::type_info& sourceClass, const details::Broadcaster& broadcaster,
                 const VtrString& name) noexcept;

#endif

}  // namespace DataBinding

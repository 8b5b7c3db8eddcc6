// SPDX-License-Identifier: Apache-2.0
/// The events that the host and the plug-in share.
#pragma once

#include <DataBinding/appevents/AppEvent.h>

inline constinit const DataBinding::AppEvent<double> tideTurned{L"TideTurned"};

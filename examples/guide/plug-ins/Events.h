// SPDX-License-Identifier: Apache-2.0
/// What host and plug-in say to each other.
#pragma once

#include <DataBinding/appevents/AppEvent.h>

inline constinit const DataBinding::AppEvent<double> tideTurned{L"TideTurned"};

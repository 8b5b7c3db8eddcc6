// SPDX-License-Identifier: Apache-2.0
/// This header includes all of the adapter for Qt.
#pragma once

#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/Variant.h"

// SPDX-License-Identifier: Apache-2.0
/// Everything that the adapter for Qt offers.
///
/// SetScope gives a window the scope in which its widgets are bound. ToQString, ToVtrString,
/// ToVariant and ToValue turn texts and values into Qt's and back. All else stands above these.
/// Nothing here is needed by code that does not know Qt: it uses the library alone.
#pragma once

#include "DataBindingQt6/loop/Install.h"
#include "DataBindingQt6/loop/QtIdlePass.h"
#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/Variant.h"

// SPDX-License-Identifier: Apache-2.0
/// Includes all public headers of the adapter for Qt.
///
/// Each header opens with what its class is for, who owns what, and which threads may use it. The
/// room `values` converts texts and values, `loop` delivers events, `scopes` gives windows their
/// scope, `widgets` joins widgets to properties and events, and `models` shows lists.
#pragma once

#include "DataBindingQt6/Export.h"
#include "DataBindingQt6/loop/Install.h"
#include "DataBindingQt6/loop/QtIdlePass.h"
#include "DataBindingQt6/models/ListModel.h"
#include "DataBindingQt6/models/ListSelection.h"
#include "DataBindingQt6/models/ScopeTreeModel.h"
#include "DataBindingQt6/scopes/Scope.h"
#include "DataBindingQt6/values/Text.h"
#include "DataBindingQt6/values/Variant.h"
#include "DataBindingQt6/widgets/Bind.h"
#include "DataBindingQt6/widgets/BindChoices.h"
#include "DataBindingQt6/widgets/BindCommand.h"
#include "DataBindingQt6/widgets/BindOptions.h"
#include "DataBindingQt6/widgets/BindState.h"
#include "DataBindingQt6/widgets/Binding.h"
#include "DataBindingQt6/widgets/EditsOf.h"
#include "DataBindingQt6/widgets/Explain.h"
#include "DataBindingQt6/widgets/WidgetTraits.h"

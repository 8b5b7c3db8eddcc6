// SPDX-License-Identifier: Apache-2.0
#include "DataBindingQt6/scopes/Scope.h"

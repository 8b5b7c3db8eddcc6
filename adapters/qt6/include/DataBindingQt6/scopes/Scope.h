// SPDX-License-Identifier: Apache-2.0
/// A window is given a scope, and everything within it is bound there: the scope of a widget is the
/// one that was set on the nearest of it, its parents and their parents.
///
/// A scope is a provider of data sources. The widget does not own it; where the provider ends
/// first, its widgets have no scope any more. Dialogues that have a parent inherit its scope. All
/// of it belongs to the thread of the widgets, which is that of the provider tree.
///
///   Qt6::SetScope(&window, registrar.GetRootProvider());
///   Qt6::Bind(nameEdit, L"Person", L"Name");
#pragma once

#include <QObject>
#include <functional>

#include "DataBinding/datasource/IDataSourceProvider.h"
#include "DataBindingQt6/Export.h"

namespace DataBinding::Qt6 {

/// Sets the scope of an object and of what stands within it. Null takes it back, so that the
/// parent's counts again. What is bound there is bound anew at once. A null object is ignored.
DATABINDING_QT6_API void SetScope(QObject* object, IDataSourceProvider* provider);
/// Returns the scope of an object, or null where none was set.
[[nodiscard]] DATABINDING_QT6_API IDataSourceProvider* ScopeOf(const QObject* object);
/// Calls the function with the scope of the object, or null: now, and whenever it has become
/// another one, because a scope was set or ended or because the object moved to another parent.
/// That ends with the object. The function may do anything, also end the object.
DATABINDING_QT6_API void FollowScope(QObject* object,
                                     std::function<void(IDataSourceProvider*)> follow);

}  // namespace DataBinding::Qt6

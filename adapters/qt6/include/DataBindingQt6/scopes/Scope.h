// SPDX-License-Identifier: Apache-2.0
/// A window is given a scope, and everything within it is bound there: the scope of a widget is the
/// one that was set on the nearest of it, its parents and their parents.
///
/// A scope is a provider of data sources. The widget does not own it; where the provider ends or
/// shuts down first, the widgets have no scope until another one is set. Dialogues that have a
/// parent inherit its scope. A widget may be bound before a layout puts it into its window, since
/// the scope is looked for again when a widget or one of its parents moves.
///
/// All of it belongs to the thread of the widgets, which is that of the provider tree. An object
/// that is given a scope, or whose scope is followed, and its parents get a small child of this
/// library, which watches the object and ends with it.
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
/// Returns the scope of an object, or null where none was set or the one that was set has ended.
[[nodiscard]] DATABINDING_QT6_API IDataSourceProvider* ScopeOf(const QObject* object);
/// Calls the function with the scope of the object, or null: now, and whenever it has become
/// another one, because a scope was set or ended or because the object or a parent has moved. That
/// ends with the object; an object that is just ending is told nothing. When a provider ends, the
/// function is called while the provider tells its listeners.
///
/// The function may do anything, also set scopes and end the object. An exception of a later call
/// goes to the failure handler (ListenerGuard.h); one of the first call leaves FollowScope. An
/// object that is no widget, as an action, should have its parent when it is followed: Qt does not
/// tell of its first one. A null object or function is ignored.
DATABINDING_QT6_API void FollowScope(QObject* object,
                                     std::function<void(IDataSourceProvider*)> follow);

}  // namespace DataBinding::Qt6

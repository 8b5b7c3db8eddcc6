// SPDX-License-Identifier: Apache-2.0
/// Marks what the adapter for Qt exports.
///
/// DATABINDING_QT6_BUILD is defined while the adapter itself is built, DATABINDING_STATIC when the
/// library and the adapter are built and used as static libraries. Everything not marked stays
/// hidden.
#pragma once

#include <QtCore/qglobal.h>

/// @def DATABINDING_QT6_API
/// Exports from the adapter what it marks; imports it wherever that is used.
#if defined(DATABINDING_STATIC)
#define DATABINDING_QT6_API
#elif defined(DATABINDING_QT6_BUILD)
#define DATABINDING_QT6_API Q_DECL_EXPORT
#else
#define DATABINDING_QT6_API Q_DECL_IMPORT
#endif

// SPDX-License-Identifier: Apache-2.0
/// Marks what the adapter for GLib exports.
///
/// DATABINDING_GLIB_BUILD is defined while the adapter itself is built, DATABINDING_STATIC when the
/// library and the adapter are built and used as static libraries. Everything not marked stays
/// hidden.
#pragma once

/// @def DATABINDING_GLIB_API
/// Exports from the adapter what it marks; imports it wherever that is used.
#if defined(DATABINDING_STATIC)
#define DATABINDING_GLIB_API
#elif !defined(_WIN32)
#define DATABINDING_GLIB_API __attribute__((visibility("default")))
#elif defined(DATABINDING_GLIB_BUILD)
#define DATABINDING_GLIB_API __declspec(dllexport)
#else
#define DATABINDING_GLIB_API __declspec(dllimport)
#endif

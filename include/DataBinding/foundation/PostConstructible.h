// SPDX-License-Identifier: Apache-2.0
/// A base whose PostConstruct is run by the creator once construction is complete.
///
/// An override does what needs the finished object, such as calling virtual operations, and calls
/// the base, which marks the object as post-constructed. Derived classes read the mark. One thread:
/// that on which the object is made.
#pragma once

#include "DataBinding/Export.h"

namespace VtrUtils {

class DATABINDING_API PostConstructible {
 public:
  PostConstructible() noexcept = default;
  PostConstructible(const PostConstructible&) = delete;
  PostConstructible& operator=(const PostConstructible&) = delete;
  virtual ~PostConstructible();

  /// Marks the object as complete. The creator calls it once, when the constructor has returned.
  virtual void PostConstruct();

 protected:
  /// True from PostConstruct on.
  bool postConstructed = false;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::PostConstructible;
}  // namespace DataBinding

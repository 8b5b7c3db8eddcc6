// SPDX-License-Identifier: Apache-2.0
/// PostConstructible is a base class for objects that have work to do after their constructor. The
/// creator calls PostConstruct when the constructor has returned.
///
/// An override does what needs the finished object, such as calling virtual operations, and calls
/// the base's PostConstruct, which marks the object as post-constructed. Derived classes may read
/// the mark. All this happens on the thread on which the object is made.
#pragma once

#include "DataBinding/Export.h"

namespace VtrUtils {

class DATABINDING_API PostConstructible {
 public:
  PostConstructible() noexcept = default;
  PostConstructible(const PostConstructible&) = delete;
  PostConstructible& operator=(const PostConstructible&) = delete;
  virtual ~PostConstructible();

  /// Marks the object as complete. The creator calls it once.
  virtual void PostConstruct();

 protected:
  /// This is set by PostConstruct.
  bool postConstructed = false;
};

}  // namespace VtrUtils

namespace DataBinding {
using VtrUtils::PostConstructible;
}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// A ChainedMember is a member of an IReflectable that is an object of its own: a typed property.
/// It brings along its name, its type, and the link by which it stands in the chain of its object's
/// members. So filing it allocates nothing, and what is alike in all objects is not stored in each.
///
/// It is also the maker of its callback, which the table lends to whoever looks the member up.
///
/// 1. A member is made with its object, files itself by the virtual _AddDelegate, and stands in the
///    chain of that object only. While it is in no chain, it is its own `older`.
/// 2. The chain begins with the newest member. So the last registration of a name is found first.
/// 3. A member that ends leaves the chain while its class still answers Type.
#pragma once

#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding {

class runtime_type_base;

namespace details {

class DATABINDING_API ChainedMember : public CallbackMaker {
 public:
  [[nodiscard]] const VtrString& Name() const noexcept { return memberName; }
  /// Returns the type under which the member is filed.
  [[nodiscard]] virtual const runtime_type_base& Type() const = 0;
  /// Returns the object that the member belongs to.
  [[nodiscard]] IReflectable& Home() const noexcept { return home; }
  /// Returns the member of its object that was filed before this one, or null for the first.
  [[nodiscard]] ChainedMember* Older() const noexcept { return older; }
  [[nodiscard]] bool IsChained() const noexcept { return older != this; }

 protected:
  ChainedMember(IReflectable& itsHome, VtrString name) noexcept
      : home(itsHome), memberName(std::move(name)), older(this) {}
  virtual ~ChainedMember() = default;

 private:
  friend class Reflectable;

  IReflectable& home;
  VtrString memberName;
  /// It is mutable because the end of another member changes it, even in a constant one.
  mutable ChainedMember* older;
};

}  // namespace details

}  // namespace DataBinding

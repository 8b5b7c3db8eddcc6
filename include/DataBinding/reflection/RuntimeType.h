// SPDX-License-Identifier: Apache-2.0
/// A descriptor tells the type of a reflected member. runtime_type<T> is the class of the
/// descriptor of T, and has one static instance.
///
/// A property is described by the type of its value, or by `const T` if only its source may write
/// it. A delegate or an event source is described by its function type.
///
/// Each module may have an instance of its own for the same T, so descriptors are compared by
/// IsSameType and never by their addresses. An instance lives until its module is unloaded: do not
/// keep a plug-in's descriptor longer than the plug-in.
#pragma once

#include <cstddef>
#include <new>
#include <string>
#include <type_traits>
#include <typeinfo>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/TypeName.h"

namespace DataBinding {

class DATABINDING_API runtime_type_base {
 public:
  virtual ~runtime_type_base();

  /// Returns true when the other descriptor describes exactly the same type, and false for null.
  [[nodiscard]] virtual bool IsSameType(const runtime_type_base* other) const = 0;
  /// Returns true for types whose members cannot be written.
  [[nodiscard]] virtual bool IsReadOnly() const = 0;
  /// Returns true for function types: delegates and event sources.
  [[nodiscard]] virtual bool IsFunction() const = 0;
  /// Returns the static instance of this descriptor's class.
  [[nodiscard]] virtual const runtime_type_base& Instance() const = 0;

  /// Returns the name of the described type for messages, as a reader would write it: "double",
  /// "void ()". Compilers spell types differently, so a name is shown and not compared.
  [[nodiscard]] std::string GetTypeName() const;

 protected:
  runtime_type_base() noexcept = default;
  runtime_type_base(const runtime_type_base&) noexcept = default;
  runtime_type_base& operator=(const runtime_type_base&) noexcept = default;
};

namespace details {

/// Tells whether two descriptors describe one type. Most are of one module, and one object then.
[[nodiscard]] inline bool AreSameType(const runtime_type_base& one,
                                      const runtime_type_base& other) {
  return &one == &other || one.IsSameType(&other);
}

}  // namespace details

/// This is the descriptor of T. The class is the same in all modules, the instance is not.
template <class T>
class runtime_type : public runtime_type_base {
 public:
  [[nodiscard]] bool IsSameType(const runtime_type_base* other) const override {
    return other != nullptr && IsOneType(typeid(*other), typeid(runtime_type));
  }
  [[nodiscard]] bool IsReadOnly() const override { return std::is_const_v<T>; }
  [[nodiscard]] bool IsFunction() const override { return std::is_function_v<T>; }
  [[nodiscard]] const runtime_type_base& Instance() const override { return Get(); }

  /// This module's instance, or the library's instance for the types that are specialised below. It
  /// is never destroyed.
  [[nodiscard]] static const runtime_type& Get() { return Everlasting(); }

 private:
  /// The instance is never destroyed, because sources that end together with the process still ask
  /// for it.
  static const runtime_type& Everlasting() {
    alignas(runtime_type) static std::byte place[sizeof(runtime_type)];
    static const runtime_type& instance = *::new (static_cast<void*>(place)) runtime_type;
    return instance;
  }
};

template <>
DATABINDING_API const runtime_type<void>& runtime_type<void>::Get();
template <>
DATABINDING_API const runtime_type<void()>& runtime_type<void()>::Get();
template <>
DATABINDING_API const runtime_type<IDataContext*>& runtime_type<IDataContext*>::Get();

}  // namespace DataBinding

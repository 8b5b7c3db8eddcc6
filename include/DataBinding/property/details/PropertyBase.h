// SPDX-License-Identifier: Apache-2.0
/// PropertyBase is what all properties are: members of a data source with a name, which announce
/// their changes.
///
/// A property belongs to one data source and is a member of it. When it is made it files itself in
/// the source's table, where it stands in a chain with the others; its accessor there answers only
/// as long as the property lives. It is used on the thread that owns the provider tree.
///
/// An object has thousands of properties, so one holds five pointers beside its value: to its
/// class, which tells its type and makes its accessor, to its source, its name, the next in the
/// chain, and to extras that few properties have (PropertyExtras.h).
///
/// Code that does not know the type uses a property by the operations of PropertyBase, which are
/// those of its type's form (ValueForm.h). They are functions of the module that has the property,
/// so nothing of a type has to be registered, and nothing of it is left when the module is
/// unloaded.
#pragma once

#include <atomic>
#include <initializer_list>
#include <memory>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/DataSourceImpl.h"
#include "DataBinding/foundation/BindWeak.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/property/PropertyName.h"
#include "DataBinding/property/details/PropertyExtras.h"
#include "DataBinding/reflection/PropertyResult.h"
#include "DataBinding/reflection/RuntimeType.h"
#include "DataBinding/reflection/Value.h"
#include "DataBinding/reflection/ValueForm.h"
#include "DataBinding/reflection/details/ChainedMember.h"

namespace DataBinding::details {

class PropertyAnnouncement;

/// A PropertyCopy copies the value of one property to another one of the same type, and can put the
/// former value back. It does nothing once the other property has gone.
class PropertyCopy {
 public:
  PropertyCopy() noexcept = default;
  PropertyCopy(const PropertyCopy&) = delete;
  PropertyCopy& operator=(const PropertyCopy&) = delete;
  virtual ~PropertyCopy() = default;

  [[nodiscard]] virtual SetResult Check() const = 0;
  virtual SetResult Set() = 0;
  virtual void PutBack() = 0;
};

/// Says whether a property is to take a value or only to say whether it would.
enum class Purpose { Set, Check };

class DATABINDING_API PropertyBase : public ChainedMember {
 public:
  PropertyBase(const PropertyBase&) = delete;
  PropertyBase& operator=(const PropertyBase&) = delete;

  /// Tells the listeners of this property that the value has changed, and then the listeners of all
  /// properties that are computed from it, directly or not: each property once, and after all that
  /// it is computed from. It calls UpdateListeners of a property's source once for each name. While
  /// a PropertyBatch is open on a source, the properties of the source, and what is computed from
  /// them, wait for its end. This property, its source or others may be gone when this returns.
  void NotifyChanged();
  /// Returns a weak pointer to this property, which becomes invalid before its value ends.
  [[nodiscard]] WeakPtr<PropertyBase> AsWeakPtr() { return {Extras().weak.GetRef(), this}; }

  /// These read the value, and set or check it, by the form of its type. A type without a form
  /// gives a text, but neither gives nor takes a Value.
  ///@{
  [[nodiscard]] virtual PropertyValue<Value> ReadValue() const = 0;
  [[nodiscard]] virtual VtrString ReadText() const = 0;
  virtual SetResult TakeValue(const Value& value, Purpose purpose) = 0;
  virtual SetResult TakeText(const VtrString& text, Purpose purpose) = 0;
  /// Returns the kind of values that the type has. Nothing stands for a type without a form.
  [[nodiscard]] virtual ValueKind Kind() const noexcept = 0;
  ///@}
  /// Returns the type of the value, which is Type() without its const.
  [[nodiscard]] virtual const runtime_type_base& ValueType() const = 0;
  /// Takes the other's value and returns what sets it here, or null if it is of another type.
  [[nodiscard]] virtual std::unique_ptr<PropertyCopy> CopyFrom(const PropertyBase& other) = 0;

  /// Tells whether the validator reads other properties, as far as they were named.
  [[nodiscard]] bool ValidatorReadsOthers() const noexcept;
  /// Runs the callback whenever one of these others is announced, since a value that was refused
  /// may be accepted from then on, or the reverse. This property itself is not announced for that.
  Subscription SubscribeToChecks(const RepeatingCallback<void()>& callback) const;

  /// Gives all properties of a source the extras by which they can be noted as changed, and returns
  /// the list in which that is done.
  static PropertyChanges& PrepareBatch(DataSourceImpl& source);

 protected:
  PropertyBase(DataSourceImpl& itsSource, PropertyName propertyName)
      : ChainedMember(itsSource, propertyName.ToString()) {}
  /// Takes the extras of a property that has options, or null.
  PropertyBase(DataSourceImpl& itsSource, PropertyName propertyName,
               std::unique_ptr<PropertyExtras> options);
  ~PropertyBase() override {
    if (ExistingExtras() != nullptr) EndExtras();
  }

  /// Files this property in its source's table, under its Type. The class answers Type and
  /// MakeState by now.
  void File(const runtime_type_base& type);
  /// Takes the property out of the table and ends its accessor, so that nobody finds it while it
  /// goes. The destructor of a class calls it before anything of the property ends.
  void EndAccess() noexcept;
  /// Names the others that the validator reads. Does nothing without options.
  void NoteReadByValidator(std::initializer_list<PropertyBase*> others);
  /// Makes this property follow others: it is notified whenever one of them changes.
  void DependOn(std::initializer_list<const PropertyBase*> others);
  [[nodiscard]] DataSourceImpl& Source() const noexcept {
    return static_cast<DataSourceImpl&>(Home());
  }
  /// Returns the extras, or null if there are none.
  [[nodiscard]] PropertyExtras* ExistingExtras() const noexcept {
    return extras.load(std::memory_order_acquire);
  }
  [[nodiscard]] SetResult ReadOnlyResult() const;
  [[nodiscard]] SetResult RefusedResult(const VtrString& reason) const;
  /// Returns the result for what a form has not converted, and for a type without a form.
  [[nodiscard]] SetResult UnfitResult(PropertyError error, const VtrString& text) const;

 private:
  friend DataSourceAccess;
  friend PropertyAnnouncement;

  /// Returns the state that the accessor's callbacks share.
  comlike_ptr<BindStateBase> MakeState() final;
  PropertyExtras& Extras() const;
  [[nodiscard]] CheckedExtras* ExistingChecks() const noexcept;
  void EndExtras() noexcept;

  /// Is set once. It is mutable since following a property does not change it.
  mutable std::atomic<PropertyExtras*> extras{nullptr};
};

/// The accessor of a property returns the property, or null when it is gone.
using PropertyAccessor = RepeatingCallback<PropertyBase*()>;

/// IProperty is a property whose type is known.
template <class T>
class IProperty : public PropertyBase {
 public:
  [[nodiscard]] virtual T GetValue() const = 0;
  /// Returns the value where the property keeps it, or null where it is computed.
  [[nodiscard]] virtual const T* KeptValue() const noexcept { return nullptr; }
  /// Sets the value. Refuses it as read-only unless the property may be set from outside.
  virtual SetResult SetValue(T value) = 0;
  /// Says what SetValue would answer, and sets nothing.
  [[nodiscard]] virtual SetResult CheckValue(const T& value) const = 0;
  /// Sets a former value again, which a validator may refuse and must not be asked about.
  virtual void Restore(T former) { SetValue(std::move(former)); }

  [[nodiscard]] PropertyValue<Value> ReadValue() const final {
    if constexpr (HasValueForm<T>) {
      return {ToValue(GetValue()), PropertyError::None, {}};
    } else {
      const auto unfit = UnfitResult(PropertyError::WrongType, ExplainFormless(ValueType()));
      return {{}, unfit.error, unfit.text};
    }
  }
  [[nodiscard]] VtrString ReadText() const final {
    if constexpr (HasValueForm<T>) return ToText(GetValue());
    return ShowFormless(ValueType());
  }
  SetResult TakeValue(const Value& value, Purpose purpose) final {
    return Take(purpose, [&] { return FromValue<T>(value); });
  }
  SetResult TakeText(const VtrString& text, Purpose purpose) final {
    return Take(purpose, [&] { return FromText<T>(text); });
  }
  [[nodiscard]] ValueKind Kind() const noexcept final {
    if constexpr (HasValueForm<T>) return ValueForm<T>::kind;
    return ValueKind::Nothing;
  }
  [[nodiscard]] const runtime_type_base& ValueType() const final { return runtime_type<T>::Get(); }
  [[nodiscard]] std::unique_ptr<PropertyCopy> CopyFrom(const PropertyBase& other) final {
    if (!AreSameType(other.ValueType(), ValueType())) return nullptr;
    return std::make_unique<Copy>(*this, static_cast<const IProperty&>(other).GetValue());
  }

 protected:
  using PropertyBase::PropertyBase;
  ~IProperty() override = default;

 private:
  class Copy final : public PropertyCopy {
   public:
    Copy(IProperty& target, T value)
        : property(target.AsWeakPtr()), former(target.GetValue()), wanted(std::move(value)) {}
    [[nodiscard]] SetResult Check() const override {
      return property ? Target().CheckValue(wanted) : Gone();
    }
    SetResult Set() override { return property ? Target().SetValue(wanted) : Gone(); }
    void PutBack() override {
      if (property) Target().Restore(former);
    }

   private:
    [[nodiscard]] IProperty& Target() const { return static_cast<IProperty&>(*property); }
    [[nodiscard]] static SetResult Gone() {
      return {false, PropertyError::Absent, L"The property is gone."};
    }

    WeakPtr<PropertyBase> property;
    T former;
    T wanted;
  };

  template <class Convert>
  SetResult Take(Purpose purpose, Convert convert) {
    if (this->Type().IsReadOnly()) return ReadOnlyResult();
    PropertyValue<T> made = convert();
    if (!made) return UnfitResult(made.error, made.text);
    return purpose == Purpose::Set ? SetValue(std::move(*made.value)) : CheckValue(*made);
  }
};

/// TypedProperty files a property under its name. Filed is `const T` for a property that only its
/// source may set.
template <class T, class Filed>
class TypedProperty : public IProperty<T> {
 public:
  [[nodiscard]] const runtime_type_base& Type() const final { return runtime_type<Filed>::Get(); }

 protected:
  template <class... Extras>
  TypedProperty(DataSourceImpl& itsSource, PropertyName propertyName, Extras... options)
      : IProperty<T>(itsSource, propertyName, std::move(options)...) {
    this->File(runtime_type<Filed>::Get());
  }
  ~TypedProperty() override {
    if (this->IsChained()) this->EndAccess();
  }
};

}  // namespace DataBinding::details

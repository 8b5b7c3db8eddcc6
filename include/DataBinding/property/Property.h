// SPDX-License-Identifier: Apache-2.0
/// Property, ReadOnlyProperty and ComputedProperty are typed properties: members of a data source
/// that announce their own changes.
///
/// Anybody may set a Property<T>. Only its source may set a ReadOnlyProperty<T> (see Assign).
/// Nobody sets a ComputedProperty<T>, since its value is a function of other properties. The typed
/// look-up of PropertyAccess.h finds all of them by name. Setting a property validates the value,
/// compares it with the old one, stores it, runs the change hook and notifies once. Values without
/// == count as changed each time. The exception of a hook leaves the operation after listeners were
/// notified.
///
///   Property<int> size{this, L"Size", 1, {.validate = [](int n) { return n ? L"" : L"is 0"; }}};
///   ReadOnlyProperty<double> load{this, L"Load"};
///   ComputedProperty<bool> busy{this, L"Busy", [this] { return *load > 0.9; }, load};
#pragma once

#include <concepts>
#include <exception>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "DataBinding/foundation/details/Cancellation.h"
#include "DataBinding/property/details/PropertyBase.h"

namespace DataBinding {

/// PropertyOptions holds what a property does beside keeping its value.
template <class T>
struct PropertyOptions {
  /// Answers why a value is refused, or an empty text to accept it. A validator that was made by
  /// BindWeak refuses every value once its object is gone. The other properties that it reads are
  /// named behind the options.
  RepeatingCallback<VtrString(const T& value)> validate = {};
  /// Runs after the value has changed and before the listeners do.
  RepeatingCallback<void(const T& before, const T& now)> changed = {};
};

namespace details {

/// The extras of a property with options.
template <class T>
struct OptionalExtras final : CheckedExtras {
  explicit OptionalExtras(PropertyOptions<T>&& given) : options(std::move(given)) {
    // The flag is made now, so that nothing is allocated between a change and its notification.
    if (options.changed) static_cast<void>(weak.GetRef());
  }
  [[nodiscard]] static std::unique_ptr<PropertyExtras> Of(PropertyOptions<T>&& given) {
    if (!given.validate && !given.changed) return nullptr;
    return std::make_unique<OptionalExtras>(std::move(given));
  }

  PropertyOptions<T> options;
};

template <class T, class Filed>
class StoredProperty : public TypedProperty<T, Filed> {
 public:
  StoredProperty(DataSourceImpl* itsSource, PropertyName name, T initial = T())
      : TypedProperty<T, Filed>(*itsSource, name), value(std::move(initial)) {}
  StoredProperty(DataSourceImpl* itsSource, PropertyName name, T initial,
                 PropertyOptions<T> options)
      : TypedProperty<T, Filed>(*itsSource, name, OptionalExtras<T>::Of(std::move(options))),
        value(std::move(initial)) {}
  template <std::derived_from<PropertyBase>... Others>
  StoredProperty(DataSourceImpl* itsSource, PropertyName name, T initial,
                 PropertyOptions<T> options, Others&... readByValidator)
      : StoredProperty(itsSource, name, std::move(initial), std::move(options)) {
    ValidatorReads(readByValidator...);
  }

  [[nodiscard]] const T& Get() const noexcept { return value; }
  [[nodiscard]] const T& operator*() const noexcept { return value; }
  [[nodiscard]] const T* operator->() const noexcept { return &value; }
  /// Says what setting the value would answer, and sets nothing: it asks the validator, if there is
  /// one. Of a read-only property this is what its source gets.
  [[nodiscard]] SetResult Check(const T& wanted) const {
    const PropertyOptions<T>* const options = Options();
    if (options == nullptr) return {};
    const VtrString reason = ReasonAgainst(wanted, options->validate);
    return reason.IsEmpty() ? SetResult() : this->RefusedResult(reason);
  }

  /// Names other properties that the validator reads, as they can be named behind the options, too.
  /// An edit that was refused is then checked again when one of them changes (TwoWay.h). Two
  /// properties that limit each other name each other: the second one behind its options, the first
  /// one by this call in the source's constructor.
  template <std::derived_from<PropertyBase>... Others>
  void ValidatorReads(Others&... others) {
    this->NoteReadByValidator({&others...});
  }

 protected:
  /// Ends the accessor first, so that nobody reads the value while it goes.
  ~StoredProperty() override { this->EndAccess(); }

  SetResult Store(T wanted) {
    const PropertyOptions<T>* const options = Options();
    if (options != nullptr) {
      SetResult checked = Check(wanted);
      if (!checked.IsAccepted()) return checked;
    }
    return Keep(std::move(wanted));
  }

 private:
  friend DataSourceAccess;

  /// Stores what the validator accepts, or what was there before.
  SetResult Keep(T&& wanted) {
    const PropertyOptions<T>* const options = Options();
    if constexpr (std::equality_comparable<T>) {
      if (value == wanted) return {};
    }
    std::swap(value, wanted);
    if (options != nullptr && options->changed) {
      RunHookAndNotify(options->changed, wanted);
    } else {
      this->NotifyChanged();
    }
    return {true, PropertyError::None, {}};
  }
  void Restore(T former) final { Keep(std::move(former)); }
  SetResult StoreFor(const DataSourceImpl& setter, T wanted) {
    if (&setter != &this->Source()) return this->ReadOnlyResult();
    return Store(std::move(wanted));
  }
  /// Runs the change hook and notifies. It notifies also when the hook throws, but not when the
  /// hook ends the property.
  DATABINDING_CATCHES_CANCELLATION void RunHookAndNotify(
      const RepeatingCallback<void(const T&, const T&)>& hook, const T& before) {
    const auto self = this->AsWeakPtr();
    std::exception_ptr failure;
    try {
      hook(before, value);
    }
    DATABINDING_PASS_CANCELLATION catch (...) { failure = std::current_exception(); }
    if (self) this->NotifyChanged();
    if (failure != nullptr) std::rethrow_exception(failure);
  }
  [[nodiscard]] T GetValue() const override { return value; }
  [[nodiscard]] const T* KeptValue() const noexcept override { return &value; }

  [[nodiscard]] const PropertyOptions<T>* Options() const noexcept {
    const PropertyExtras* const existing = this->ExistingExtras();
    if (existing == nullptr || !existing->hasOptions) return nullptr;
    return &static_cast<const OptionalExtras<T>*>(existing)->options;
  }

  T value;
};

}  // namespace details

/// A Property may be set by anybody.
///
/// It is made from its source, its name, a first value and options: `{this, L"Size", 1, options}`.
/// Behind the options stand the other properties that the validator reads, if any.
/// `Get()`, `*size` and `size->` read the value, `Name()` tells the name, and `NotifyChanged()`
/// tells the listeners of a change that Set has not made.
template <std::copyable T>
class Property final : public details::StoredProperty<T, T> {
 public:
  using details::StoredProperty<T, T>::StoredProperty;

  /// Sets the value and says whether it changed. Listeners run before this returns.
  SetResult Set(T wanted) { return this->Store(std::move(wanted)); }

 private:
  SetResult SetValue(T wanted) override { return this->Store(std::move(wanted)); }
  [[nodiscard]] SetResult CheckValue(const T& wanted) const override { return this->Check(wanted); }
};

/// A ReadOnlyProperty may be set only by its source, with `Assign(property, value)`.
///
/// It is made and read like a Property.
template <std::copyable T>
class ReadOnlyProperty final : public details::StoredProperty<T, const T> {
 public:
  using details::StoredProperty<T, const T>::StoredProperty;

 private:
  SetResult SetValue(T /*wanted*/) override { return this->ReadOnlyResult(); }
  [[nodiscard]] SetResult CheckValue(const T& /*wanted*/) const override {
    return this->ReadOnlyResult();
  }
};

/// The value of a ComputedProperty is a function of other properties.
///
/// The value is computed each time it is read. Whenever one of the other properties changes, the
/// listeners of this one are notified, whether the result is equal or not. They are notified once
/// for each change, after the listeners of all properties that this one follows. If one of those
/// waits for the end of a PropertyBatch, they are notified when the batch is over. The function may
/// be called after a property of another source is gone, and must take care of that.
template <std::copyable T>
class ComputedProperty final : public details::TypedProperty<T, const T> {
 public:
  /// Takes the function, and the properties whose changes it is notified for.
  template <std::derived_from<details::PropertyBase>... Others>
  ComputedProperty(DataSourceImpl* itsSource, PropertyName name, RepeatingCallback<T()> function,
                   Others&... others)
      : details::TypedProperty<T, const T>(*itsSource, name), compute(std::move(function)) {
    this->DependOn({&others...});
  }
  ~ComputedProperty() override { this->EndAccess(); }

  /// Computes the value now.
  ///@{
  [[nodiscard]] T Get() const { return compute(); }
  [[nodiscard]] T operator*() const { return compute(); }
  ///@}

 private:
  [[nodiscard]] T GetValue() const override { return compute(); }
  SetResult SetValue(T /*wanted*/) override { return this->ReadOnlyResult(); }
  [[nodiscard]] SetResult CheckValue(const T& /*wanted*/) const override {
    return this->ReadOnlyResult();
  }

  RepeatingCallback<T()> compute;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// An object that publishes named members at run time: properties (a name with a type), delegates
/// (a name with a type and a callback) and event sources (a name of type `void()`).
///
/// Names that are not in the table are put to GetDynamicDelegate and GetDynamicType, so a derived
/// class may answer names that it never registered. Members are added while the object is built,
/// before it is shared; the table has no lock. A name added again is overwritten, and nothing is
/// removed. Two notifications tell of the end: both run after the derived classes are gone, while
/// the table still stands.
///
/// Deliberate: a name that nobody knows counts as a writable property, so that code which only asks
/// "may I treat this as a property" works with objects that resolve names late. Whether a member
/// exists is asked with a typed look-up (see PropertyAccess.h).
#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <initializer_list>
#include <map>
#include <type_traits>
#include <utility>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/Event.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding {

namespace details {

class DATABINDING_API Reflectable {
 public:
  /// One member. The type is an instance that outlives the table.
  struct ReflectedItem {
    RepeatingCallbackMemento delegate;
    std::reference_wrapper<const runtime_type_base> type = runtime_type<void>::Get();
  };
  /// One candidate of a delegate look-up. Refers to its caller's arguments.
  struct DelegateTag {
    const VtrString& name;
    const runtime_type_base& type;
  };
  using Items = std::map<VtrString, ReflectedItem>;
  using DelegateResolver =
      RepeatingCallback<RepeatingCallbackMemento(const VtrString&, const runtime_type_base&)>;
  using TypeResolver = RepeatingCallback<const runtime_type_base&(const VtrString&)>;

  Reflectable(DelegateResolver forDelegates, TypeResolver forTypes);
  Reflectable(const Reflectable&) = delete;
  Reflectable& operator=(const Reflectable&) = delete;
  /// Raises on-destroy, then on-destroyed, then lets the members go. What a handler throws stops no
  /// other handler; it goes to the thread's HandlerFailures, if there is one.
  ~Reflectable();

  void _AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                    const runtime_type_base& type);
  void _AddType(const VtrString& name, const runtime_type_base& type);
  [[nodiscard]] std::pair<std::size_t, RepeatingCallbackMemento> _GetDelegate(
      std::initializer_list<DelegateTag> tags) const;
  [[nodiscard]] std::pair<std::size_t, const runtime_type_base&> _GetType(
      std::initializer_list<VtrString> names) const;
  Subscription AddOnDestroyHandler(const RepeatingCallback<void()>& callback);
  Subscription AddOnDestroyedHandler(const RepeatingCallback<void()>& callback);
  [[nodiscard]] bool IsProperty(const VtrString& name) const;
  [[nodiscard]] bool IsWritableProperty(const VtrString& name) const;
  /// True while the destruction handlers run, when the classes derived from IReflectable are gone.
  [[nodiscard]] bool IsEnding() const noexcept { return isEnding; }
  [[nodiscard]] Items::iterator begin() noexcept { return items.begin(); }
  [[nodiscard]] Items::const_iterator begin() const noexcept { return items.begin(); }
  [[nodiscard]] Items::iterator end() noexcept { return items.end(); }
  [[nodiscard]] Items::const_iterator end() const noexcept { return items.end(); }

 private:
  Event<void()> onDestroy;
  Event<void()> onDestroyed;
  DelegateResolver resolveDelegate;
  TypeResolver resolveType;
  Items items;
  bool isEnding = false;
};

/// Keeps the first exception of the destruction handlers that run on this thread during its scope,
/// since no destructor can let it out.
class DATABINDING_API HandlerFailures {
 public:
  HandlerFailures() noexcept;
  HandlerFailures(const HandlerFailures&) = delete;
  HandlerFailures& operator=(const HandlerFailures&) = delete;
  ~HandlerFailures();

  /// Notes the exception that is being handled.
  static void NoteCurrent() noexcept;
  void RethrowFirst() const;

 private:
  std::exception_ptr first;
  HandlerFailures* outer;
};

class ReflectionAccess;

}  // namespace details

class DATABINDING_API IReflectable {
 public:
  /// Give pairs of a name and an item with its type and delegate; good while no member is added.
  ///@{
  using iterator = details::Reflectable::Items::iterator;
  using const_iterator = details::Reflectable::Items::const_iterator;
  ///@}
  /// A name and a type, for _GetDelegate. Refers to both.
  using DelegateTag = details::Reflectable::DelegateTag;

  IReflectable(const IReflectable&) = delete;
  IReflectable& operator=(const IReflectable&) = delete;

  /// Tells whether the object is still there, for those that keep a pointer to it. The reference
  /// may be asked after the object's end; it ends before the destruction handlers run, since the
  /// derived classes are gone then. `WeakPtr<IDataSource>(source->GetLiveness(), source)` carries
  /// the pointer along.
  [[nodiscard]] details::WeakReference GetLiveness() const {
    return reflectable.IsEnding() ? details::WeakReference() : liveness.GetRef();
  }

  /// False only for names that are known as functions.
  [[nodiscard]] virtual bool IsProperty(const VtrString& name) const;
  /// False only for names that are known as functions or as read-only.
  [[nodiscard]] virtual bool IsWritableProperty(const VtrString& name) const;
  /// Answers a delegate's name that is not in the table; an empty memento for none.
  virtual RepeatingCallbackMemento GetDynamicDelegate(const VtrString& name,
                                                      const runtime_type_base& type);
  /// Answers the type of a name that is not in the table; runtime_type<void> for none.
  virtual const runtime_type_base& GetDynamicType(const VtrString& name);
  /// Runs the callback when the object ends, before the on-destroyed handlers.
  virtual Subscription AddOnDestroyHandler(const RepeatingCallback<void()>& callback);
  /// Runs the callback when the object ends, after the on-destroy handlers.
  virtual Subscription AddOnDestroyedHandler(const RepeatingCallback<void()>& callback);
  /// The members in ascending order of their names.
  ///@{
  [[nodiscard]] virtual iterator begin();
  [[nodiscard]] virtual const_iterator begin() const;
  [[nodiscard]] virtual iterator end();
  [[nodiscard]] virtual const_iterator end() const;
  ///@}

 protected:
  IReflectable();
  virtual ~IReflectable();

  /// Adds a delegate, which FindDelegate finds by its name and signature (DelegateAccess.h), or
  /// overwrites the member of that name. Give the signature: AddDelegate<int(int)>(L"Twice", ...).
  template <class Signature>
  requires std::is_function_v<Signature>
  void AddDelegate(const VtrString& name, const RepeatingCallback<Signature>& callback) {
    _AddDelegate(name, callback.GetMemento(), runtime_type<Signature>::Get());
  }
  /// Adds a member with a callback, or overwrites the one of that name.
  virtual void _AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                            const runtime_type_base& type);
  /// Adds a member without a callback, or overwrites the one of that name.
  virtual void _AddType(const VtrString& name, const runtime_type_base& type);
  /// The first tag that answers, and its delegate. A known name of another type ends the search
  /// with an empty memento, deliberately: a member is never passed over for a later candidate. With
  /// no answer the index is the largest std::size_t.
  virtual std::pair<std::size_t, RepeatingCallbackMemento> _GetDelegate(
      std::initializer_list<DelegateTag> tags);
  /// The first name that is known, and its type; else the largest std::size_t and
  /// runtime_type<void>.
  virtual std::pair<std::size_t, const runtime_type_base&> _GetType(
      std::initializer_list<VtrString> names);

 public:
  /// The callback of that name and type, or an empty memento.
  [[nodiscard]] RepeatingCallbackMemento GetDelegateMemento(const VtrString& name,
                                                            const runtime_type_base& type) const;
  /// The type of the name, or runtime_type<void>.
  [[nodiscard]] const runtime_type_base& GetDelegateType(const VtrString& name) const;
  /// The type of the first name that is known, or runtime_type<void>.
  [[nodiscard]] const runtime_type_base& GetDelegatesType(
      std::initializer_list<VtrString> names) const;
  /// Declares the name an event source.
  void MakeEventSource(VtrString name);

 private:
  friend class details::ReflectionAccess;

  details::WeakReferenceOwner liveness;
  details::Reflectable reflectable;
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// An IReflectable publishes named members at run time. A member is a property (a name with a
/// type), a delegate (a name with a type and a callback), or an event source (a name of type
/// `void()`).
///
/// The members stand in a table. It has no lock, so members are added while the object is built,
/// before other threads see it. Adding a name again overwrites the member; no member is ever
/// removed, and a property that ends before the object leaves its name and type. When a name is
/// asked for that is not in the table, GetDynamicDelegate or GetDynamicType is called, so that a
/// derived class can answer for names that it never added.
///
/// An object pays only for what it uses. Its typed properties form a chain, in which names are
/// looked up. The ordered map that begin and end lead through is made when it is first needed: by
/// them, by a member that is added by hand, by a destruction handler, by many properties, or by a
/// property that is made or ends while the object goes on living. From then on the map answers.
/// A property that ends makes the map in its destructor; when there is no memory for that, its name
/// is forgotten. IDataSource::Destroy makes no map: in an object that has none, the destructors of
/// its base classes do not find the names of members that have ended before. A base class that
/// needs them calls begin() in its constructor.
///
/// Two kinds of handlers are called when the object ends, first the on-destroy handlers and then
/// the on-destroyed handlers. By then the derived classes are gone, but the table still stands.
///
/// A name that nobody knows deliberately counts as a writable property, so that code which asks
/// only whether it may treat a name as a property works with objects that resolve names late. To
/// find out whether a member exists, look it up with its type (see PropertyAccess.h).
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <initializer_list>
#include <map>
#include <type_traits>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/Callback.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/reflection/RuntimeType.h"

namespace DataBinding {

namespace details {

class ChainedMember;
struct MemberMap;
struct ReflectableExtras;

/// Reflectable is the table of an object's members: the chain of its properties, and the map, if
/// there is one.
class DATABINDING_API Reflectable {
 public:
  /// An item is one member. The descriptor that `type` refers to outlives the table. The delegate
  /// of a property is lent: whoever wants to keep it copies it.
  struct ReflectedItem {
    RepeatingCallbackMemento delegate;
    std::reference_wrapper<const runtime_type_base> type = runtime_type<void>::Get();
  };
  /// A tag is one candidate of a look-up for a delegate. It refers to the arguments of the caller.
  struct DelegateTag {
    const VtrString& name;
    const runtime_type_base& type;
  };
  using Items = std::map<VtrString, ReflectedItem>;
  using DelegateResolver =
      RepeatingCallback<RepeatingCallbackMemento(const VtrString&, const runtime_type_base&)>;
  using TypeResolver = RepeatingCallback<const runtime_type_base&(const VtrString&)>;

  /// Makes a table with resolvers of its own.
  Reflectable(DelegateResolver forDelegates, TypeResolver forTypes);
  /// Makes the table of an object, whose GetDynamicDelegate and GetDynamicType are the resolvers.
  explicit Reflectable(IReflectable& itsObject) noexcept : object(&itsObject) {}
  Reflectable(const Reflectable&) = delete;
  Reflectable& operator=(const Reflectable&) = delete;
  /// Calls the on-destroy handlers, then the on-destroyed handlers, and then releases the members.
  /// An exception from a handler does not keep the others from being called. It is kept by the
  /// innermost HandlerFailures of the thread, or dropped if there is none.
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
  /// Returns true while the destruction handlers run. The classes that derive from IReflectable are
  /// gone then.
  [[nodiscard]] bool IsEnding() const noexcept { return isEnding; }
  /// Make the map, if there is none yet. Threads that only read may do so at the same time.
  ///@{
  [[nodiscard]] Items::iterator begin();
  [[nodiscard]] Items::const_iterator begin() const;
  [[nodiscard]] Items::iterator end();
  [[nodiscard]] Items::const_iterator end() const;
  ///@}

  /// Returns the names in the order in which they were first added.
  [[nodiscard]] std::vector<VtrString> NamesInOrder() const;
  /// Returns the newest member of the chain, or null.
  [[nodiscard]] ChainedMember* Newest() const noexcept { return newest; }
  /// Returns the living chained member that answers to the name, or null.
  [[nodiscard]] ChainedMember* FindChained(const VtrString& name) const;
  /// Makes the map, so that the end of a member allocates nothing from now on.
  void ReserveNames() const;
  /// Takes a member out of the chain. Its name and type stay, with a delegate that is gone.
  void Unlink(ChainedMember& member) noexcept;
  /// Notes that the object ends, with all its members. Without a map, the names of members that end
  /// from now on are forgotten. Destruction handlers find them, since there is a map when there are
  /// handlers.
  void NoteEnd() noexcept { wholeEnds = true; }

 private:
  struct Known;

  [[nodiscard]] ReflectableExtras& Extras() const;
  [[nodiscard]] MemberMap* ExistingMap() const noexcept;
  [[nodiscard]] MemberMap& Map() const;
  [[nodiscard]] Known Look(const VtrString& name) const;
  void AddByHand(const VtrString& name, const RepeatingCallbackMemento& delegate,
                 const runtime_type_base& type);
  void Link(ChainedMember& member);
  void LinkInMap(ChainedMember& member);
  void Chain(ChainedMember& member) noexcept;
  void UnlinkInMap(ChainedMember& member) noexcept;
  void Unchain(ChainedMember& member, ChainedMember*& first) noexcept;
  void KeepNames() const noexcept;
  [[nodiscard]] RepeatingCallbackMemento ResolveDelegate(const VtrString& name,
                                                         const runtime_type_base& type) const;
  [[nodiscard]] const runtime_type_base& ResolveType(const VtrString& name) const;

  IReflectable* object = nullptr;
  mutable std::atomic<ReflectableExtras*> extras{nullptr};
  ChainedMember* newest = nullptr;
  std::uint32_t chained = 0;
  bool isEnding = false;
  bool wholeEnds = false;
};

/// While a LendingScope exists, look-ups in its table and on its thread that find a chained member
/// lend its callback instead of making one. The caller must not let the memento out of its hands.
class DATABINDING_API LendingScope {
 public:
  explicit LendingScope(const Reflectable& table) noexcept;
  LendingScope(const LendingScope&) = delete;
  LendingScope& operator=(const LendingScope&) = delete;
  ~LendingScope();

 private:
  const Reflectable* before;
};

/// While a FilingScope exists, a member is being filed on its thread under its own type. The table
/// then knows the type by its address. To ask the member would take a virtual call that processors
/// predict badly, since the members of an object are of different types.
class DATABINDING_API FilingScope {
 public:
  FilingScope(const ChainedMember& member, const runtime_type_base& type) noexcept;
  FilingScope(const FilingScope&) = delete;
  FilingScope& operator=(const FilingScope&) = delete;
  ~FilingScope();

  /// Tells whether the type is that of the member.
  [[nodiscard]] static bool IsTypeOf(const ChainedMember& member, const runtime_type_base& type);

 private:
  const ChainedMember* filed;
  const runtime_type_base* filedType;
  const FilingScope* outer;
};

/// Keeps the first exception that a destruction handler throws on this thread during its scope. The
/// handlers run in a destructor, which cannot let the exception out.
class DATABINDING_API HandlerFailures {
 public:
  HandlerFailures() noexcept;
  HandlerFailures(const HandlerFailures&) = delete;
  HandlerFailures& operator=(const HandlerFailures&) = delete;
  ~HandlerFailures();

  /// Notes the exception that is being handled, unless the innermost HandlerFailures of this thread
  /// has one already.
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
  /// These lead to pairs of a name and an item with its type and delegate. They are valid until the
  /// next member is added.
  ///@{
  using iterator = details::Reflectable::Items::iterator;
  using const_iterator = details::Reflectable::Items::const_iterator;
  ///@}
  /// A tag gives a name and a type to _GetDelegate. It refers to both and owns neither.
  using DelegateTag = details::Reflectable::DelegateTag;

  IReflectable(const IReflectable&) = delete;
  IReflectable& operator=(const IReflectable&) = delete;

  /// Returns a reference that tells whether the object is still there, for code that keeps a
  /// pointer to the object. It may be asked after the object has ended. It becomes invalid before
  /// the destruction handlers run, because the derived classes are gone by then.
  /// `WeakPtr<IDataSource>(source->GetLiveness(), source)` keeps the pointer together with it.
  [[nodiscard]] details::WeakReference GetLiveness() const {
    return reflectable.IsEnding() ? details::WeakReference() : liveness.GetRef();
  }

  /// Returns false only for names that are known as functions.
  [[nodiscard]] virtual bool IsProperty(const VtrString& name) const;
  /// Returns false only for names that are known as functions or as read-only.
  [[nodiscard]] virtual bool IsWritableProperty(const VtrString& name) const;
  /// This is called for a delegate whose name is not in the table. An override returns the
  /// delegate, or an empty memento for a name that it does not know.
  virtual RepeatingCallbackMemento GetDynamicDelegate(const VtrString& name,
                                                      const runtime_type_base& type);
  /// This is called for the type of a name that is not in the table. An override returns the type,
  /// or runtime_type<void> for a name that it does not know.
  virtual const runtime_type_base& GetDynamicType(const VtrString& name);
  /// Runs the callback when the object ends, before the on-destroyed handlers.
  virtual Subscription AddOnDestroyHandler(const RepeatingCallback<void()>& callback);
  /// Runs the callback when the object ends, after the on-destroy handlers.
  virtual Subscription AddOnDestroyedHandler(const RepeatingCallback<void()>& callback);
  /// These give the members in ascending order of their names.
  ///@{
  [[nodiscard]] virtual iterator begin();
  [[nodiscard]] virtual const_iterator begin() const;
  [[nodiscard]] virtual iterator end();
  [[nodiscard]] virtual const_iterator end() const;
  ///@}
  /// Returns the names of the members in the order in which they were first added, which for
  /// properties is that of their declarations. Properties whose _AddDelegate was overridden to file
  /// them elsewhere are not among them. Takes time in proportion to their number.
  [[nodiscard]] std::vector<VtrString> GetNamesInOrder() const;

 protected:
  IReflectable();
  virtual ~IReflectable();
  /// Notes that this object is about to be deleted, so that the names of members that end with it
  /// need not be kept.
  void NoteEnd() noexcept { reflectable.NoteEnd(); }

  /// Adds a delegate, or overwrites the member of that name. FindDelegate finds it by its name and
  /// signature (DelegateAccess.h). The caller has to give the signature:
  /// AddDelegate<int(int)>(L"Twice", ...).
  template <class Signature>
  requires std::is_function_v<Signature>
  void AddDelegate(const VtrString& name, const RepeatingCallback<Signature>& callback) {
    _AddDelegate(name, callback.GetMemento(), runtime_type<Signature>::Get());
  }
  /// Adds a member with a callback, or overwrites the one of that name. A typed property calls this
  /// when it is made; an override that copies the memento has the property's accessor.
  virtual void _AddDelegate(const VtrString& name, const RepeatingCallbackMemento& delegate,
                            const runtime_type_base& type);
  /// Adds a member without a callback, or overwrites the one of that name.
  virtual void _AddType(const VtrString& name, const runtime_type_base& type);
  /// Returns the index of the first tag whose name is known, and the delegate. If that member has
  /// another type than the tag, the delegate is empty; deliberately, so that a member is never
  /// passed over for a later candidate. If no name is known, the index is the largest std::size_t.
  /// The base may answer an override with a delegate that is only lent (RepeatingCallbackMemento),
  /// so an override that ends the property copies the delegate before.
  virtual std::pair<std::size_t, RepeatingCallbackMemento> _GetDelegate(
      std::initializer_list<DelegateTag> tags);
  /// Returns the index of the first name that is known, and its type. If none is known, the largest
  /// std::size_t and runtime_type<void>.
  virtual std::pair<std::size_t, const runtime_type_base&> _GetType(
      std::initializer_list<VtrString> names);

 public:
  /// Returns the callback with this name and type, or an empty memento.
  [[nodiscard]] RepeatingCallbackMemento GetDelegateMemento(const VtrString& name,
                                                            const runtime_type_base& type) const;
  /// Returns the type of the name, or runtime_type<void>.
  [[nodiscard]] const runtime_type_base& GetDelegateType(const VtrString& name) const;
  /// Returns the type of the first name that is known, or runtime_type<void>.
  [[nodiscard]] const runtime_type_base& GetDelegatesType(
      std::initializer_list<VtrString> names) const;
  /// Adds an event source of that name.
  void MakeEventSource(VtrString name);

 private:
  friend class details::ReflectionAccess;

  details::WeakReferenceOwner liveness;
  details::Reflectable reflectable;
};

}  // namespace DataBinding

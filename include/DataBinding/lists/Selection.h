// SPDX-License-Identifier: Apache-2.0
/// A Selection holds which rows of a list are chosen: none, one or many, in the order in which they
/// were chosen. AnySelection is the same for code that does not know the row type.
///
/// A chosen row stays chosen wherever it stands and whatever changes in it, its key included. So a
/// selection survives sorting, Assign and Reset. Choose from a list and show a view of it: a
/// selection over a filtered view loses the rows that the filter leaves out.
///
/// A row that goes from the list goes from the selection first, while it can still be read, and the
/// observers hear that it is gone. When rows go because the source of the list goes, as a ListBind
/// tells it, they are not gone: the selection waits for their keys, and chooses the rows again when
/// a list comes that has them. That takes a key whose type has a form (ValueForm.h). It waits until
/// the application replaces or clears the selection.
///
/// The selection and its list end in any order. Both belong to the tree's thread. Observers may
/// change and end the selection; those that are still due then hear of it as it is. What they throw
/// goes to the failure handler (ListenerGuard.h) under the list's name.
///
///   Selection<Process> chosen(processes);
///   chosen.ChooseKey(4711);
///   const Subscription seen = chosen.Observe({.changed = [&] { Mark(chosen.Ids()); }});
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <unordered_set>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/CallbackList.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/AnyList.h"
#include "DataBinding/lists/Fields.h"
#include "DataBinding/lists/ReadableList.h"
#include "DataBinding/reflection/Value.h"

namespace DataBinding {

/// Holds the functions that a selection calls, both or one of them.
struct SelectionObserver {
  /// Is called for each row that goes from the list and so from the selection, when it can still be
  /// read and is not chosen any more.
  RepeatingCallback<void(RowId id)> gone = {};
  /// Is called when other rows are chosen than before.
  RepeatingCallback<void()> changed = {};
};

/// An AnySelection holds chosen rows of any list. Selection<Row> is the one to use where the row
/// type is known.
class DATABINDING_API AnySelection : public SupportsWeakPtr<AnySelection>,
                                     private details::ListDependent {
 public:
  /// Nothing is chosen at first.
  explicit AnySelection(AnyList& chosenFrom);
  AnySelection(const AnySelection&) = delete;
  AnySelection& operator=(const AnySelection&) = delete;
  virtual ~AnySelection();

  /// Returns the list, or null once it has ended.
  [[nodiscard]] AnyList* List() const noexcept { return list; }
  /// Returns true for the id of a row that is chosen.
  [[nodiscard]] bool Contains(RowId id) const noexcept {
    return id < isChosen.size() && isChosen[id];
  }
  /// The ids of the chosen rows, until the selection changes.
  [[nodiscard]] std::span<const RowId> Ids() const noexcept { return chosen; }
  /// The row that was chosen last, which a CurrentRow shows.
  [[nodiscard]] std::optional<RowId> CurrentId() const noexcept;

  /// Chooses this row, or these, and no others. Ids that are not in the list are left out, and the
  /// answer is false then.
  ///@{
  bool Choose(RowId id) { return Choose({&id, 1}); }
  bool Choose(std::span<const RowId> ids);
  ///@}
  /// Chooses a further row, which becomes the last one. False for an id that is not in the list.
  bool Add(RowId id);
  /// False for a row that is not chosen.
  bool Remove(RowId id);
  /// Chooses nothing, and waits for no key any more.
  void Clear() { Choose(std::span<const RowId>()); }

  /// Calls the observer's functions until the subscription ends.
  Subscription Observe(SelectionObserver observer);

 private:
  struct News {
    bool isGone = false;
    RowId id = 0;
  };
  struct KeyHash {
    std::size_t operator()(const Value& key) const noexcept;
  };

  void Prepare(const details::ListPlan& plan) override;
  void Before(const details::ListStep& step) noexcept override;
  void After(const details::ListStep& step) noexcept override;
  void ListEnds() noexcept override;

  void MakeRoom(std::span<const RowId> ids);
  void Mark(RowId id) noexcept;
  void LetGo(std::span<const RowId> going, bool comesAgain) noexcept;
  void TakeWished(std::span<const RowId> come) noexcept;
  [[nodiscard]] Value KeyOf(RowId id) const;
  template <class Step>
  void Attempt(Step step) noexcept;
  bool Tell(const News& news) noexcept;

  AnyList* list;
  std::vector<RowId> chosen;
  /// Tells for each id whether its row is chosen.
  std::vector<bool> isChosen;
  /// Holds the rows of which the observers are just told that they are gone, and behind them those
  /// that an observer has made go meanwhile.
  std::vector<RowId> leaving;
  /// Holds the keys that are waited for.
  std::unordered_set<Value, KeyHash> wishes;
  /// Counts the calls of the list. One that comes within another takes its place.
  std::uint64_t heard = 0;
  CallbackList<News> observers;
};

template <class Row>
class Selection final : public AnySelection {
 public:
  /// Nothing is chosen at first.
  explicit Selection(ReadableList<Row>& chosenFrom) : AnySelection(chosenFrom) {}

  /// Returns the list, or null once it has ended.
  [[nodiscard]] ReadableList<Row>* List() const noexcept {
    return static_cast<ReadableList<Row>*>(AnySelection::List());
  }
  /// The row that was chosen last, or null. The pointer is good until the row changes or goes.
  [[nodiscard]] details::ShownRow<Row>* Current() const noexcept {
    const auto id = CurrentId();
    return id ? &List()->RowAt(*id) : nullptr;
  }
  /// Chooses the first row of that key and no others. False, and no change, where the list has no
  /// such row. Looks at one row after the other.
  template <class Key = details::KeyOf<Row>>
  bool ChooseKey(const Key& key) {
    for (std::size_t i = 0; List() != nullptr && i < List()->Size(); ++i) {
      const Row& row = (*List())[i];
      const auto& field = std::get<details::keyOf<Row>>(details::fieldsOf<Row>);
      if (details::ValueIn(row.*field.member) == key) return Choose(List()->At(i));
    }
    return false;
  }
};

}  // namespace DataBinding

// SPDX-License-Identifier: Apache-2.0
/// OwnedSources are the data sources that a SourceList owns, without their class: they hear what a
/// source announces, and turn it into a change of its row.
///
/// The slots of such a list hold pointers to OwnedSource objects. What a row announces is noted in
/// its OwnedSource, and told in a turn of the family: at once, or after the change that is being
/// told. One turn tells all that was noted until then.
///
/// 1. A source ends when the outermost operation that removed it is over. The slot gives it up to
///    the chain `ended` then, and EndGone ends it when the list can be used again, because whoever
///    hears of that may do anything, and end the list, too.
/// 2. `noted` has room for all rows. A row is in it exactly while it has noted fields, and it hears
///    nothing more from the moment when its slot is given up.
/// 3. When there is no memory to tell what was noted, it stays noted, and is told with the next
///    announcement of any row. The failure handler is told by the source that announced it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/datasource/MakeDataSource.h"
#include "DataBinding/foundation/Subscription.h"
#include "DataBinding/foundation/WeakPtr.h"
#include "DataBinding/lists/details/ListCore.h"
#include "DataBinding/lists/details/ListEngine.h"

namespace DataBinding::details {

class OwnedSources;

/// One source of a list.
struct OwnedSource : SupportsWeakPtr<OwnedSource> {
  OwnedSource(OwnedSources& itsOwner, const void* itsRow, DataSourcePtr<IDataSource> itsSource);
  OwnedSource(const OwnedSource&) = delete;
  OwnedSource& operator=(const OwnedSource&) = delete;
  /// Ends the source, or hands it over.
  ~OwnedSource();

  void Hear(const VtrString& property);
  using SupportsWeakPtr::InvalidateWeakPtrs;

  OwnedSources& owner;
  const void* row;  // the source as an object of its class
  DataSourcePtr<IDataSource> source;
  DataSourcePtr<IDataSource>* taker = nullptr;  // gets the source when its row ends
  RowId id = 0;
  std::uint64_t noted = 0;  // the fields that were announced and not told yet
  std::unique_ptr<OwnedSource> nextEnded;
  Subscription announced;
};

class DATABINDING_API OwnedSources : public SupportsWeakPtr<OwnedSources> {
 public:
  using Slot = std::unique_ptr<OwnedSource>;

  OwnedSources(ListNode& itsNode, ListEngine& itsEngine) noexcept;
  OwnedSources(const OwnedSources&) = delete;
  OwnedSources& operator=(const OwnedSources&) = delete;
  ~OwnedSources();

  /// The table by which a list stores pointers to its sources.
  [[nodiscard]] static const RowTable& StoredTable();
  /// Returns the source that a slot points to, as an object of its class.
  [[nodiscard]] static const void* SourceIn(const void* slot) noexcept {
    return (*static_cast<const Slot*>(slot))->row;
  }

  /// These are the operations of a SourceList.
  ///@{
  SetResult Insert(std::size_t at, DataSourcePtr<IDataSource> source, const void* row);
  [[nodiscard]] DataSourcePtr<IDataSource> Take(std::size_t at);
  SetResult Update(RowId id, const RowEdit& edit);
  ///@}
  /// Ends the sources whose rows have gone for good. The list may be gone after it.
  void EndGone() noexcept;
  /// Ends all sources. The list has told its end before.
  void EndAll() noexcept;

 private:
  friend OwnedSource;
  class Turn;

  static void MoveSlot(void* to, void* from) noexcept;
  static void GiveUp(void* slot) noexcept;
  static void Place(void* slot, RowId id) noexcept;
  void Note(OwnedSource& source, const VtrString& property);

  ListNode& node;
  ListEngine& engine;
  std::size_t count = 0;
  std::vector<OwnedSource*> noted;
  std::unique_ptr<OwnedSource> ended;
  std::unique_ptr<Turn> spare;  // to be used again
  bool isTurnWaiting = false;
  bool hasEnded = false;
};

}  // namespace DataBinding::details

// SPDX-License-Identifier: Apache-2.0
/// An observer's copy of a list or view, which it keeps by what it is told.
#pragma once

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

#include "DataBinding/lists/ReadableList.h"

namespace DataBinding::Stress {

template <class Row>
class RowCopy {
 public:
  using Numbered = std::vector<std::pair<RowId, Row>>;

  [[nodiscard]] static Numbered Read(const ReadableList<Row>& list) {
    Numbered rows;
    for (std::size_t i = 0; i < list.Size(); ++i) rows.emplace_back(list.At(i), list[i]);
    return rows;
  }
  /// Brings the copy to where the change says that the list is, and answers whether all fits.
  [[nodiscard]] bool Follow(const ReadableList<Row>& list, const RowChange<Row>& change) {
    // A list that ends within a change tells it also to observers that have not heard the rest.
    const bool isEnd = change.Kind() == ListChangeKind::Reset && change.Count() == 0;
    if (change.IsBefore()) return isEnd || copy == Read(list);
    return Replay(list, change) && copy == Read(list);
  }

  Numbered copy;
  Subscription seen;

 private:
  [[nodiscard]] bool Replay(const ReadableList<Row>& list, const RowChange<Row>& change) {
    const auto first = copy.begin() + static_cast<std::ptrdiff_t>(change.At());
    const auto count = static_cast<std::ptrdiff_t>(change.Count());
    const auto to = copy.begin() + static_cast<std::ptrdiff_t>(change.To());
    switch (change.Kind()) {
      case ListChangeKind::Inserted: {
        Numbered rows;
        for (std::size_t i = 0; i < change.Count(); ++i)
          rows.emplace_back(change.Ids()[i], change[i]);
        copy.insert(first, rows.begin(), rows.end());
        return true;
      }
      case ListChangeKind::Removed:
        copy.erase(first, first + count);
        return true;
      case ListChangeKind::Moved:
        to < first ? std::rotate(to, first, first + count)
                   : std::rotate(first, first + count, to + count);
        return true;
      case ListChangeKind::Changed: {
        bool fits = true;
        for (std::size_t i = 0; i < change.Count(); ++i) {
          Row& row = copy[change.PlaceOf(i)].second;
          fits = fits && row == change.Was(i);
          row = change[i];
        }
        return fits;
      }
      default: {
        std::map<RowId, Row> known(copy.begin(), copy.end());
        copy.clear();
        for (const RowId id : change.Ids()) {
          copy.emplace_back(id, known.try_emplace(id, list.RowAt(id)).first->second);
        }
        return change.Kind() == ListChangeKind::Reset || known.size() == copy.size();
      }
    }
  }
};

}  // namespace DataBinding::Stress

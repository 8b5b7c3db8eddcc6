// SPDX-License-Identifier: Apache-2.0
/// CopyProperties sets the properties of one data source to the values of another one, all of them
/// or none.
///
/// This is how a dialogue with OK and Cancel works on a draft: a source of the same class that is
/// not yet, or never, in a scope. It is filled by CopyProperties, edited by binds, and copied back
/// when the user says OK. A property is copied if both sources have it with the same type; types
/// without a form are copied, too. The result says what was refused and what was left out.
///
///   const auto draft = MakeDataSource<Person>(nullptr);
///   CopyProperties(person, draft.get());
///   ...
///   const CopyResult saved = CopyProperties(draft.get(), person);
///   if (!saved.IsAccepted()) hint.Show(saved.text);
#pragma once

#include <iosfwd>
#include <vector>

#include "DataBinding/Export.h"
#include "DataBinding/Fwd.h"
#include "DataBinding/foundation/String.h"
#include "DataBinding/reflection/PropertyResult.h"

namespace DataBinding {

/// A CopyResult is the outcome of CopyProperties.
struct CopyResult {
  /// Tells of one property why it was not copied.
  struct Entry {
    /// The name that the property has in the source that was read.
    VtrString name;
    /// Is the result of checking or setting the property. For one that was left out it says that
    /// the other source has no such property (Absent), has it with another type (WrongType), or
    /// computes it or sets it by itself (ReadOnly), or that the property is a list (WrongType).
    SetResult result;
  };

  /// This is true when at least one property has a new value.
  bool changed = false;
  /// Says why nothing was copied: NoSource, or the error of the first property that was refused.
  PropertyError error = PropertyError::None;
  /// Explains the error. It is empty when there was none.
  VtrString text = {};
  /// Holds the properties that were refused, for which nothing was copied.
  std::vector<Entry> refused = {};
  /// Holds the properties that only one of the sources can have. They refuse nothing.
  std::vector<Entry> leftOut = {};

  /// Returns true when everything that could be copied was.
  [[nodiscard]] bool IsAccepted() const noexcept { return error == PropertyError::None; }
  /// Writes the text as UTF-8, which is nothing where the values were accepted.
  template <class Traits>
  friend std::basic_ostream<char, Traits>& operator<<(std::basic_ostream<char, Traits>& out,
                                                      const CopyResult& result) {
    return out << result.text;
  }
};

/// Copies the values of all properties that both sources have with one type. Either source may be
/// null.
///
/// First each value is checked, and if one is refused, nothing is set. A property of `to` that has
/// no value now, as those of a CurrentRow without a row, refuses the copy. A property whose
/// validator reads others, and names them, is not checked but only set, after those that read none:
/// so a start and an end that limit each other may both move. If setting one is refused, or a
/// `changed` hook throws, the values that were set are put back in reverse order, and the exception
/// leaves this operation. No validator is asked about a value that is put back. Listeners are told
/// in one batch at the end, if the source derives from DataSourceImpl; values that were put back
/// are told, too. They may end both sources.
///
/// A CurrentRow to which values are copied shows its row until that is done, also where another row
/// is chosen meanwhile. So all values go to one row; if that is removed, the copy is refused.
DATABINDING_API CopyResult CopyProperties(const IDataSource* from, IDataSource* to);

}  // namespace DataBinding

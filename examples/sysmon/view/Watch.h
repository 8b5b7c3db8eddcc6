// SPDX-License-Identifier: Apache-2.0
/// The current values of some named properties of a scope, and which of them have changed.
///
/// It has the scope build each source that can be built, is connected to a source when that
/// appears, and owns none of them. The scope outlives it.
#pragma once

#include <optional>
#include <vector>

#include <DataBinding/datasource/DataListener.h>

#include "../common/Scopes.h"

namespace Sysmon {

class Watch final : public DataBinding::DataListener {
 public:
  struct Name {
    VtrString source;
    VtrString property;
  };

  /// All values count as changed.
  Watch(IDataSourceProvider& watchedScope, std::vector<Name> watchedNames);

  [[nodiscard]] const std::vector<Name>& Names() const noexcept { return names; }
  /// Nothing where the scope has no such property.
  [[nodiscard]] const std::optional<Value>& At(std::size_t index) const { return values[index]; }
  /// The value as text; a dash for nothing.
  [[nodiscard]] VtrString TextAt(std::size_t index) const;
  [[nodiscard]] bool IsChanged(std::size_t index) const { return changed[index]; }
  /// Marks all changes as seen.
  void Settle() { changed.assign(names.size(), false); }

 private:
  void OnDataSourceProviderChanging(IDataSourceProvider* /*newProvider*/) override {}
  void Fetch(std::size_t index);

  IDataSourceProvider& scope;
  std::vector<Name> names;
  std::vector<std::optional<Value>> values;
  std::vector<bool> changed;
};

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
/// An EventName is the record that the process keeps of an application event's name: the name, its
/// signature, and a number by which a broadcaster finds the listeners in a table.
///
/// The process has one record for each name, whichever modules use it. A record is never destroyed
/// and owns its texts, so it outlives the module that used the name first. Any thread may ask for
/// one. AppEvent uses it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <typeinfo>

#include "DataBinding/Export.h"
#include "DataBinding/foundation/String.h"

namespace DataBinding::details {

class DATABINDING_API EventName {
 public:
  EventName(const EventName&) = delete;
  EventName& operator=(const EventName&) = delete;
  ~EventName() = default;

  /// Finds or makes the record of a name. Throws std::logic_error, which names the event and both
  /// signatures, when the name was first used with another signature.
  [[nodiscard]] static const EventName& Find(VtrStringView name, const std::type_info& signature);
  /// Throws where Find would throw, but makes no record and fixes no signature.
  static void Check(VtrStringView name, const std::type_info& signature);
  /// Gives a copy of the name that is never freed. Fixes no signature.
  [[nodiscard]] static const wchar_t* Intern(VtrStringView name);

  [[nodiscard]] const VtrString& Text() const noexcept { return text; }
  /// std::hash of the text.
  [[nodiscard]] std::uint64_t Hash() const noexcept { return hash; }
  /// The names are numbered from 0 in the order of their first use.
  [[nodiscard]] std::size_t Number() const noexcept { return number; }

 private:
  class Table;

  EventName(const VtrString& name, std::size_t count)
      : text(name), hash(std::hash<VtrString>()(text)), number(count) {}

  VtrString text;
  std::uint64_t hash;
  std::size_t number;
  std::string signatureKey;
  std::string signatureText;
};

}  // namespace DataBinding::details

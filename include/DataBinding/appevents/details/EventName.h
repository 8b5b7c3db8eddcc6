// SPDX-License-Identifier: Apache-2.0
/// What a process knows of an application event: its name, its signature, and a number that finds
/// it in a table.
///
/// There is one for each name, whichever modules use it. It is never destroyed and owns its texts,
/// so it outlives the module that named it first. Any thread. AppEvent is its user.
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

  /// The event of that name. Throws std::logic_error, naming the event and both signatures, when
  /// the name was first used with another signature.
  [[nodiscard]] static const EventName& Find(VtrStringView name, const std::type_info& signature);
  /// Throws where Find would, but fixes no signature and keeps no name.
  static void Check(VtrStringView name, const std::type_info& signature);
  /// The text of a name, to be kept forever. Fixes no signature.
  [[nodiscard]] static const wchar_t* Intern(VtrStringView name);

  [[nodiscard]] const VtrString& Text() const noexcept { return text; }
  /// std::hash of the text.
  [[nodiscard]] std::uint64_t Hash() const noexcept { return hash; }
  /// Counts from 0 in order of first use.
  [[nodiscard]] std::size_t Number() const noexcept { return number; }

 private:
  friend class EventNames;
  EventName(VtrStringView name, std::size_t count)
      : text(name), hash(std::hash<VtrString>()(text)), number(count) {}

  VtrString text;
  std::uint64_t hash;
  std::size_t number;
  std::string signatureKey;
  std::string signatureText;
};

}  // namespace DataBinding::details

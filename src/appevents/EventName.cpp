// SPDX-License-Identifier: Apache-2.0
#include "DataBinding/appevents/details/EventName.h"

#include <memory>
#include <stdexcept>
#include <utility>

#include "DataBinding/foundation/ThreadLock.h"
#include "DataBinding/foundation/TypeName.h"
#include "DataBinding/foundation/details/NameMap.h"
#include "DataBinding/foundation/details/StringBuffer.h"

namespace DataBinding::details {

using VtrPlatform::details::StringBuffer;

/// The table of all names. It is never destroyed, because events may be raised while the process
/// ends.
class EventName::Table {
 public:
  static Table& Get() {
    static auto* names = new Table;
    return *names;
  }

  const EventName& Find(VtrStringView name, const std::type_info& signature) {
    std::string key = TypeKey(signature);
    const WriteLock guard(lock);
    EventName& found = Obtain(name);
    ThrowUnlessFree(found, key, signature);
    if (found.signatureKey.empty()) {
      found.signatureText = ReadableTypeName(signature);
      found.signatureKey = std::move(key);
    }
    return found;
  }

  void Check(VtrStringView name, const std::type_info& signature) {
    const std::string key = TypeKey(signature);
    const ReadLock guard(lock);
    const auto known = names.find(name);
    if (known != names.end()) ThrowUnlessFree(*known->second, key, signature);
  }

  const wchar_t* Intern(VtrStringView name) {
    const WriteLock guard(lock);
    return Obtain(name).text;
  }

 private:
  /// Throws std::logic_error unless the name has this signature, or none yet.
  static void ThrowUnlessFree(const EventName& name, const std::string& key,
                              const std::type_info& signature) {
    if (name.signatureKey.empty() || name.signatureKey == key) return;
    throw std::logic_error("the application event \"" + name.text.ToUtf8() +
                           "\" is used with the signature " + ReadableTypeName(signature) +
                           ", but was first used with " + name.signatureText);
  }
  EventName& Obtain(VtrStringView name) DATABINDING_REQUIRES(lock) {
    const auto known = names.find(name);
    if (known != names.end()) return *known->second;
    StringBuffer* const buffer = StringBuffer::Make(name);
    const auto key = VtrString::Adopt(buffer);
    std::unique_ptr<EventName> made(new EventName(key, names.size()));
    EventName& added = *names.emplace(key, std::move(made)).first->second;
    // The text is not counted from now on, so that threads which raise the event do not meet there.
    StringBuffer::Keep(buffer);
    return added;
  }

  ThreadLock lock;
  NameMap<std::unique_ptr<EventName>> names DATABINDING_GUARDED_BY(lock);
};

const EventName& EventName::Find(VtrStringView name, const std::type_info& signature) {
  return Table::Get().Find(name, signature);
}

void EventName::Check(VtrStringView name, const std::type_info& signature) {
  Table::Get().Check(name, signature);
}

const wchar_t* EventName::Intern(VtrStringView name) { return Table::Get().Intern(name); }

}  // namespace DataBinding::details

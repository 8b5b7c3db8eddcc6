#include "EventPump.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

namespace Sysmon {

WakeUp::WakeUp() : descriptor(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot make an event descriptor");
  }
}

WakeUp::~WakeUp() { close(descriptor); }

void WakeUp::Set() const noexcept {
  const std::uint64_t one = 1;
  // It fails only when the descriptor is readable already.
  static_cast<void>(!write(descriptor, &one, sizeof one));
}

void WakeUp::Clear() const noexcept {
  std::uint64_t count = 0;
  static_cast<void>(!read(descriptor, &count, sizeof count));
}

void EventPump::Deliver() {
  // Listeners that go on raising events without end do not keep the loop from its keys.
  constexpr int mostPasses = 8;
  wakeUp.Clear();
  for (int pass = 0; pass < mostPasses; ++pass) {
    idle.Run();
    if (!idle.IsRequested()) return;
  }
}

}  // namespace Sysmon

// SPDX-License-Identifier: Apache-2.0
// On POSIX a hardware fault arrives as a signal. A handler of the whole process looks whether the
// faulting thread is in a guarded run, and jumps back to its beginning; other faults are passed on.
#include <dlfcn.h>
#include <pthread.h>
#include <setjmp.h>
#include <signal.h>

#include <array>
#include <mutex>

#include "CatchState.h"
#include "GuardedRun.h"

namespace DataBinding::details {

#if !defined(DATABINDING_NO_FAULT_GUARD)

namespace {

/// A Trap is the place to which a fault on this thread jumps. A thread has one trap for each
/// guarded run that it is in; the innermost one catches.
struct Trap {
  Trap() noexcept;
  Trap(const Trap&) = delete;
  Trap& operator=(const Trap&) = delete;
  ~Trap();

  sigjmp_buf target;
  volatile std::uint32_t code = 0;
  CatchState exceptions;
  Trap* outer;
};

constinit thread_local Trap* innermostTrap = nullptr;

Trap::Trap() noexcept : exceptions(CatchState::OfThread()), outer(innermostTrap) {}
Trap::~Trap() { innermostTrap = outer; }

constexpr std::array faultSignals{SIGSEGV, SIGBUS, SIGFPE, SIGILL};
std::array<struct sigaction, faultSignals.size()> formerActions;

struct sigaction& FormerAction(int signal) noexcept {
  std::size_t i = 0;
  while (faultSignals[i] != signal) ++i;
  return formerActions[i];
}

/// Does what would have happened with the signal if the guard had not been there.
void PassOn(int signal, siginfo_t* info, void* context) {
  const struct sigaction& former = FormerAction(signal);
  if ((former.sa_flags & SA_SIGINFO) != 0) {
    former.sa_sigaction(signal, info, context);
  } else if (former.sa_handler != SIG_DFL && former.sa_handler != SIG_IGN) {
    former.sa_handler(signal);
  } else if (former.sa_handler == SIG_DFL || info->si_code > 0) {
    // The kernel does not ignore a fault even where SIG_IGN is set. When this handler returns, the
    // instruction faults again, and then the default action is taken.
    ::signal(signal, SIG_DFL);
    if (info->si_code <= 0) raise(signal);
  }
}

void OnFault(int signal, siginfo_t* info, void* context) {
  Trap* trap = innermostTrap;
  const bool byHardware = info->si_code > 0;
  if (trap == nullptr || !byHardware) return PassOn(signal, info, context);
  trap->code = static_cast<std::uint32_t>(signal);
  pthread_sigmask(SIG_SETMASK, &static_cast<ucontext_t*>(context)->uc_sigmask, nullptr);
  siglongjmp(trap->target, 1);
}

/// Pins the library, because the handlers stay installed and must not be unloaded.
void KeepLibraryLoaded() {
  Dl_info library;
  if (dladdr(reinterpret_cast<void*>(&OnFault), &library) != 0) {
    dlopen(library.dli_fname, RTLD_LAZY | RTLD_NOLOAD | RTLD_NODELETE);
  }
}

void InstallHandlers() {
  KeepLibraryLoaded();
  struct sigaction action {};
  action.sa_sigaction = &OnFault;
  action.sa_flags = SA_SIGINFO | SA_ONSTACK;
  sigemptyset(&action.sa_mask);
  for (std::size_t i = 0; i < faultSignals.size(); ++i) {
    sigaction(faultSignals[i], nullptr, &formerActions[i]);
    sigaction(faultSignals[i], &action, nullptr);
  }
}

}  // namespace

std::uint32_t RunTrapping(void (*run)(void*), void* context) {
  static const bool installed = (InstallHandlers(), true);
  static_cast<void>(installed);
  Trap trap;
  if (sigsetjmp(trap.target, 0) == 0) {
    innermostTrap = &trap;
    run(context);
  } else {
    CatchState::OfThread() = trap.exceptions;
  }
  return trap.code;
}

void RunUntrapped(void (*run)(void*), void* context) {
  Trap suspended;  // its destructor puts the outer trap back in force
  innermostTrap = nullptr;
  run(context);
}

#endif

}  // namespace DataBinding::details

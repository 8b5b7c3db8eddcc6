// SPDX-License-Identifier: Apache-2.0
#include <malloc.h>
#include <windows.h>

#include <cstdint>
#include <utility>

#include "GuardedRun.h"
#if !defined(_MSC_VER)
#include "CatchState.h"
#endif

// On Windows a hardware fault is a structured exception, which a table-based frame catches. C++
// exceptions travel as structured exceptions, too. The frame lets them pass: RunGuarded catches the
// exceptions of this C++ runtime further in, and those of another are not the guard's business.

namespace DataBinding::details {

#if !defined(DATABINDING_NO_FAULT_GUARD)

namespace {

/// Guarded frames above this address are further out than an unguarded run, and do not catch: see
/// RunUntrapped.
constinit thread_local std::uintptr_t barrier = UINTPTR_MAX;

bool IsCppException(DWORD code) noexcept {
  constexpr DWORD microsoft = 0xE06D7363;
  constexpr DWORD gcc = 0x00474343;  // 0x20, 0x21 or 0x22, then "GCC"
  return code == microsoft || (code & 0x00FFFFFF) == gcc;
}

/// Returns true for breakpoints and single steps, which belong to the debugger.
bool IsForDebugger(DWORD code) noexcept {
  return code == EXCEPTION_BREAKPOINT || code == EXCEPTION_SINGLE_STEP;
}

std::uintptr_t FrameAddress() noexcept {
#if defined(_MSC_VER)
  return reinterpret_cast<std::uintptr_t>(_AddressOfReturnAddress());
#else
  return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
#endif
}

bool IsToBeCaught(DWORD code, const void* frame) noexcept {
  return reinterpret_cast<std::uintptr_t>(frame) < barrier && !IsCppException(code) &&
         !IsForDebugger(code);
}

/// Returns the code. A stack overflow uses up the guard page by which it was noticed; without that
/// page the next overflow would end the process, so the page is put back.
std::uint32_t Recovered(std::uint32_t code) noexcept {
  if (code == EXCEPTION_STACK_OVERFLOW) _resetstkoflw();
  return code;
}

}  // namespace

#if defined(_MSC_VER)

std::uint32_t RunTrapping(void (*run)(void*), void* context) {
  const void* const frame = _AddressOfReturnAddress();
  std::uint32_t code = 0;
  __try {
    run(context);
  } __except (IsToBeCaught(code = GetExceptionCode(), frame) ? EXCEPTION_EXECUTE_HANDLER
                                                             : EXCEPTION_CONTINUE_SEARCH) {
    return Recovered(code);
  }
  return 0;
}

#else

// A frame that calls run(context). It returns 0, or the code with which its handler unwound it.
extern "C" std::uint32_t DataBindingRunInFrame(void (*run)(void*), void* context);
extern "C" const char DataBindingFrameEnd[];

asm(R"(
  .text
  .p2align 4
  .def DataBindingRunInFrame; .scl 2; .type 32; .endef
  .seh_proc DataBindingRunInFrame
DataBindingRunInFrame:
  subq $40, %rsp
  .seh_stackalloc 40
  .seh_endprologue
  .seh_handler DataBindingFrameHandler, @except
  movq %rcx, %rax
  movq %rdx, %rcx
  call *%rax
  xorl %eax, %eax
DataBindingFrameEnd:
  nop
  addq $40, %rsp
  ret
  .seh_endproc
)");

extern "C" __attribute__((used)) EXCEPTION_DISPOSITION DataBindingFrameHandler(
    EXCEPTION_RECORD* record, void* frame, CONTEXT* context, DISPATCHER_CONTEXT* dispatcher) {
  constexpr DWORD unwinding = 0x2 | 0x4;  // this frame is being left, or the thread ends
  if ((record->ExceptionFlags & unwinding) != 0) return ExceptionContinueSearch;
  if (!IsToBeCaught(record->ExceptionCode, frame)) return ExceptionContinueSearch;
  RtlUnwindEx(frame, const_cast<char*>(DataBindingFrameEnd), record,
              reinterpret_cast<void*>(static_cast<std::uintptr_t>(record->ExceptionCode)), context,
              dispatcher->HistoryTable);
  return ExceptionContinueSearch;
}

std::uint32_t RunTrapping(void (*run)(void*), void* context) {
  const CatchState exceptions = CatchState::OfThread();
  const std::uintptr_t outerBarrier = barrier;
  const std::uint32_t code = DataBindingRunInFrame(run, context);
  if (code != 0) {
    CatchState::OfThread() = exceptions;
    barrier = outerBarrier;
  }
  return Recovered(code);
}

#endif

void RunUntrapped(void (*run)(void*), void* context) {
  struct Raised {
    std::uintptr_t outer = std::exchange(barrier, FrameAddress());
    ~Raised() { barrier = outer; }
  } raised;
  run(context);
}

#endif

}  // namespace DataBinding::details

// The one place that speaks the structured-exception dialect of the Windows compilers. Nothing but windows.h: what
// compiles it need not know the standard library of the rest.
#pragma once

#include <windows.h>

namespace platform::win32 {

// Asked on the faulting thread before anything is unwound; a filter result of Windows (EXCEPTION_EXECUTE_HANDLER, ...).
using ExceptionFilter = long (*)(void* state, EXCEPTION_POINTERS* exception);

// Runs work(argument) in a guarded block. False when the filter has taken an exception; what it does not take goes on
// outward.
bool runInGuardedBlock(void (*work)(void* argument), void* argument, ExceptionFilter filter, void* state);

}  // namespace platform::win32

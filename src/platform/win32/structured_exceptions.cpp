#include "platform/win32/structured_exceptions.h"

namespace platform::win32 {

bool runInGuardedBlock(void (*work)(void* argument), void* argument, ExceptionFilter filter, void* state) {
  __try {
    work(argument);
    return true;
  } __except (filter(state, GetExceptionInformation())) {
    return false;
  }
}

}  // namespace platform::win32

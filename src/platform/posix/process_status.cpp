#include "platform/process_status.h"

#include <sys/wait.h>

namespace platform {

ProcessEnd processEnd(int nativeStatus) {
  if (WIFSIGNALED(nativeStatus)) return {WTERMSIG(nativeStatus), true};
  return {WEXITSTATUS(nativeStatus), false};
}

}  // namespace platform

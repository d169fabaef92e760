#include "platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace platform {

bool outputIsTerminal() { return isatty(STDOUT_FILENO) == 1; }

int terminalWidth() {
  winsize size{};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return 80;
  return size.ws_col;
}

}  // namespace platform

#include "platform/terminal.h"

#include <windows.h>

namespace platform {

bool outputIsTerminal() {
  DWORD mode = 0;
  return ::GetConsoleMode(::GetStdHandle(STD_OUTPUT_HANDLE), &mode) != 0;
}

int terminalWidth() {
  CONSOLE_SCREEN_BUFFER_INFO screen{};
  if (::GetConsoleScreenBufferInfo(::GetStdHandle(STD_OUTPUT_HANDLE), &screen) == 0) return 80;
  return screen.srWindow.Right - screen.srWindow.Left + 1;
}

}  // namespace platform

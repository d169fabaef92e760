// What the worker asks of the terminal it writes to.
#pragma once

namespace platform {

// Whether standard output is a terminal.
bool outputIsTerminal();
// Columns of the terminal behind standard output; 80 when it is none or does not tell.
int terminalWidth();

}  // namespace platform

// What the process learns of its surroundings.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace platform {

// An environment variable as UTF-16 text, undecodable bytes replaced by U+FFFD; nullopt when it is not set.
std::optional<std::u16string> environmentVariable(const std::u16string& name);

// The folder for data that all users share (CSIDL_COMMON_APPDATA, created if missing; on POSIX
// $CORVANTIS_COMMON_APPDATA, else /var/lib when writable, else ~/.local/share); empty text when there is none.
std::u16string commonApplicationDataFolder();

// The machine's name in its network; empty text when it has none.
std::u16string computerName();

// The calling thread's number as the system's own tools show it.
std::uint32_t currentThreadId();

// Removes and dispatches every message waiting in the calling thread's message queue; returns at once. Where threads
// have no such queue it only counts the call.
void pumpMessages();
// How often pumpMessages() has run in this process.
std::uint64_t pumpCount();

// Whether standard output is a terminal.
bool outputIsTerminal();
// Columns of the terminal behind standard output; 80 when it is none or does not tell.
int terminalWidth();

// How a child process ended.
struct ProcessEnd {
  int code = 0;            // exit code, or the signal's number
  bool signalled = false;  // ended by a signal (never on Windows)
};
// Reads the platform's own wait status.
ProcessEnd processEnd(int nativeStatus);

}  // namespace platform

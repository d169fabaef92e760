// The diagnostic log: one plain-text file, rewritten from empty by every load of the library. It never reports its own
// failures: a log that could not be opened, or written once, swallows everything.
//
//   log_file << "Loading " << fileName << LogFile::endl;
//
// Any thread may write: what a statement writes up to a line end reaches the file in one piece. Opening and closing is
// for when no other thread uses the log.
#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "plugin/util/text.h"

namespace corvantis {

class LogFile;

// What one statement writes, on its way to the log. Nothing is locked while its pieces are made: making one may log
// itself, throw or run into a machine fault.
class LogLine {
 public:
  template <class Piece>
  LogLine(LogFile& log, const Piece& first) : log_(log) {
    *this << first;
  }
  // What no line end has brought to the file goes there now.
  ~LogLine() { flush(); }
  LogLine(const LogLine&) = delete;
  LogLine& operator=(const LogLine&) = delete;

  // Narrow text as it is; wide text through to_string; numbers in the classic locale, floating-point ones with six
  // significant digits; booleans as 1 or 0; pointers in hexadecimal. Null texts write nothing.
  LogLine& operator<<(std::string_view text);
  LogLine& operator<<(const std::string& text) { return *this << std::string_view(text); }
  LogLine& operator<<(const char* text) { return text == nullptr ? *this : *this << std::string_view(text); }
  LogLine& operator<<(char character) { return *this << std::string_view(&character, 1); }
  LogLine& operator<<(const std::u16string& text) { return *this << to_string(text); }
  LogLine& operator<<(const char16_t* text) { return *this << to_string(text); }
  LogLine& operator<<(std::same_as<bool> auto value) { return *this << (value ? '1' : '0'); }
  LogLine& operator<<(PlainInteger auto value) { return *this << to_string(value); }
  LogLine& operator<<(float value) { return *this << to_string(value); }
  LogLine& operator<<(double value);
  LogLine& operator<<(const void* pointer);
  LogLine& operator<<(LogLine& (*manipulator)(LogLine&)) { return manipulator(*this); }

 private:
  friend class LogFile;
  void flush();

  LogFile& log_;
  std::string text_;
};

class LogFile {
 public:
  constexpr LogFile() noexcept = default;
  ~LogFile() { close(); }
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Opens the file for writing from empty; others may read it meanwhile. When a file is open already it stays so, and
  // the log fails.
  void open(const std::u16string& path);
  // The log is then as before its first open.
  void close();

  bool isOpen() const { return file_ != nullptr; }
  // Set by a failed open or write; writes are then discarded.
  bool failed() const { return failed_; }

  // Begins a line with its first piece, of any kind that LogLine takes.
  template <class Piece>
  LogLine operator<<(const Piece& first) {
    return LogLine(*this, first);
  }
  // Ends the line and brings it to the file at once.
  static LogLine& endl(LogLine& line);

  // For a machine fault's last words: takes no lock and allocates nothing, the system's write is all there is (on
  // Windows line ends still cost memory).
  void writeUnlocked(std::string_view text) noexcept;

 private:
  friend class LogLine;
  void write(std::string_view text);

  std::unique_ptr<platform::TextFile> file_;
  std::unique_ptr<std::mutex> turn_;  // of the threads that write; there as long as file_ is
  std::atomic<bool> failed_{false};
};

// The process's log. There before any dynamic initialiser runs and never destroyed, so that every static object may
// write to it, in its destructor too. Whoever wants the file closed closes it.
extern LogFile& log_file;

// Opens "corvantis.log" in the folder that the first of the environment variables TMP, PATH and USERPROFILE names that
// is set; an empty value means the current folder. With none of them set nothing is opened.
void openLogFile(LogFile& log);

}  // namespace corvantis

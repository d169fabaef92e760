// The diagnostic log: one plain-text file, rewritten from empty by every load of the library. It never reports its own
// failures: a log that could not be opened, or written once, swallows everything.
//
//   log_file << "Loading " << fileName << LogFile::endl;
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "platform/files.h"
#include "plugin/util/text.h"

namespace corvantis {

// Not for two threads at once.
class LogFile {
 public:
  constexpr LogFile() noexcept = default;
  ~LogFile();
  LogFile(const LogFile&) = delete;
  LogFile& operator=(const LogFile&) = delete;

  // Opens the file for writing from empty; others may read it meanwhile. When a file is open already it stays so, and
  // the log fails.
  void open(const std::u16string& path);
  // Writes what is pending; the log is then as before its first open.
  void close();

  bool isOpen() const { return file_ != nullptr; }
  // Set by a failed open or write; writes are then discarded.
  bool failed() const { return failed_; }

  // Narrow text as it is; wide text through to_string; numbers in the classic locale, floating-point ones with six
  // significant digits; booleans as 1 or 0; pointers in hexadecimal. Null texts write nothing.
  LogFile& operator<<(std::string_view text);
  LogFile& operator<<(const std::string& text) { return *this << std::string_view(text); }
  LogFile& operator<<(const char* text) { return text == nullptr ? *this : *this << std::string_view(text); }
  LogFile& operator<<(char character) { return *this << std::string_view(&character, 1); }
  LogFile& operator<<(const std::u16string& text) { return *this << to_string(text); }
  LogFile& operator<<(const char16_t* text) { return *this << to_string(text); }
  LogFile& operator<<(std::same_as<bool> auto value) { return *this << (value ? '1' : '0'); }
  LogFile& operator<<(PlainInteger auto value) { return *this << to_string(value); }
  LogFile& operator<<(float value) { return *this << to_string(value); }
  LogFile& operator<<(double value);
  LogFile& operator<<(const void* pointer);

  // Ends the line and brings it to the file at once.
  static LogFile& endl(LogFile& log);
  LogFile& operator<<(LogFile& (*manipulator)(LogFile&)) { return manipulator(*this); }

 private:
  void flush();

  std::unique_ptr<platform::TextFile> file_;
  std::unique_ptr<std::string> pending_;  // the pieces of the line being written; there as long as file_ is
  bool failed_ = false;
};

// The process's log. There before any dynamic initialiser runs and never destroyed, so that every static object may
// write to it, in its destructor too. Whoever wants the file closed closes it.
extern LogFile& log_file;

// Opens "corvantis.log" in the folder that the first of the environment variables TMP, PATH and USERPROFILE names that
// is set; an empty value means the current folder. With none of them set nothing is opened.
void openLogFile(LogFile& log);

}  // namespace corvantis

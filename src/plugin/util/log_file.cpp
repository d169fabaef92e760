#include "plugin/util/log_file.h"

#include <array>
#include <charconv>

#include "platform/environment.h"
#include "plugin/util/paths.h"

namespace corvantis {

namespace {

// A union destroys nothing by itself.
union Undying {
  LogFile log;
  constexpr Undying() : log() {}
  ~Undying() {}
};
constinit Undying processLog;

}  // namespace

constinit LogFile& log_file = processLog.log;

LogFile::~LogFile() { close(); }

void LogFile::open(const std::u16string& path) {
  if (isOpen()) {
    failed_ = true;
    return;
  }
  file_ = platform::openTextFile(path);
  failed_ = file_ == nullptr;
  if (file_) pending_ = std::make_unique<std::string>();
}

void LogFile::close() {
  flush();
  file_.reset();
  pending_.reset();
  failed_ = false;
}

LogFile& LogFile::operator<<(std::string_view text) {
  if (file_ && !failed_) pending_->append(text);
  return *this;
}

LogFile& LogFile::operator<<(double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 6);
  return *this << std::string_view(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
}

LogFile& LogFile::operator<<(const void* pointer) {
  std::array<char, 32> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), reinterpret_cast<std::uintptr_t>(pointer), 16);
  return *this << "0x" << std::string_view(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
}

LogFile& LogFile::endl(LogFile& log) {
  log << '\n';
  log.flush();
  return log;
}

void LogFile::flush() {
  if (!file_ || failed_ || pending_->empty()) return;
  failed_ = !file_->write(*pending_);
  pending_->clear();
}

void openLogFile(LogFile& log) {
  for (const char16_t* variable : {u"TMP", u"PATH", u"USERPROFILE"}) {
    if (const auto folder = platform::environmentVariable(variable)) {
      log.open(ensure_trailing_backslash(*folder) + u"corvantis.log");
      return;
    }
  }
}

}  // namespace corvantis

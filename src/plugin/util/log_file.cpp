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

LogLine& LogLine::operator<<(std::string_view text) {
  text_.append(text);
  return *this;
}

LogLine& LogLine::operator<<(double value) {
  std::array<char, 32> buffer;
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, std::chars_format::general, 6);
  return *this << std::string_view(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
}

LogLine& LogLine::operator<<(const void* pointer) {
  std::array<char, 32> buffer;
  const auto end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), reinterpret_cast<std::uintptr_t>(pointer), 16);
  return *this << "0x" << std::string_view(buffer.data(), static_cast<std::size_t>(end.ptr - buffer.data()));
}

void LogLine::flush() {
  if (!text_.empty()) log_.write(text_);
  text_.clear();
}

void LogFile::open(const std::u16string& path) {
  if (isOpen()) {
    failed_ = true;
    return;
  }
  file_ = platform::openTextFile(path);
  failed_ = file_ == nullptr;
  if (file_) turn_ = std::make_unique<std::mutex>();
}

void LogFile::close() {
  file_.reset();
  turn_.reset();
  failed_ = false;
}

LogLine& LogFile::endl(LogLine& line) {
  line << '\n';
  line.flush();
  return line;
}

void LogFile::write(std::string_view text) {
  if (!file_) return;
  const std::lock_guard lock(*turn_);
  if (!failed_) failed_ = !file_->write(text);
}

void LogFile::writeUnlocked(std::string_view text) noexcept {
  if (file_) (void)file_->write(text);
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

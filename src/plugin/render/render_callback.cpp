#include "plugin/render/render_callback.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cwctype>
#include <exception>
#include <utility>

#include "platform/clock.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::int64_t kReportInterval = 1000;  // milliseconds

// When the last progress was reported, by any callback of the process: the pause between reports also spans frames and
// passes, which have a callback object each.
std::atomic<std::uint32_t> lastProgressTick{0};

std::u16string lowerCase(std::u16string text) {
  for (char16_t& c : text) c = static_cast<char16_t>(std::towlower(c));
  return text;
}

bool contains(const std::u16string& text, const char16_t* part) { return text.find(part) != std::u16string::npos; }

// Line ends at the end vanish, those within become blanks.
std::u16string cleanTitle(const char16_t* title) {
  std::u16string text = title ? title : u"";
  text.erase(text.find_last_not_of(u"\r\n") + 1);
  std::replace(text.begin(), text.end(), u'\n', u' ');
  text.erase(std::remove(text.begin(), text.end(), u'\r'), text.end());
  return text;
}

// Whether a title names the rendering phase itself, whatever its letter case.
bool isRenderingTitle(const std::u16string& text) {
  const std::u16string lower = lowerCase(text);
  return contains(lower, u"rendering image") || lower == u"rendering..." || contains(lower, u"quality reached:") ||
         contains(lower, u"%  rendering") || lower == u"rendering";
}

bool preparesScene(const std::u16string& text) {
  const std::u16string lower = lowerCase(text);
  return contains(lower, u"loading bitmaps ") || contains(lower, u"updating object ") ||
         contains(lower, u"updating instances ") || contains(lower, u"updating transformation matrices ") ||
         contains(lower, u"compiling geometry ");
}

// Whether a report is due now; the time of the last one then moves.
bool takeTurn(std::int32_t total) {
  const std::uint32_t now = platform::clock().tickCount();
  const std::int64_t difference = static_cast<std::int32_t>(now - lastProgressTick.load(std::memory_order_relaxed));
  if (std::abs(difference) < kReportInterval || total == 0) return false;
  lastProgressTick.store(now, std::memory_order_relaxed);
  return true;
}

std::u16string oneDecimal(float number) {
  std::array<char, 64> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed, 1);
  return std::u16string(text.data(), end.ptr);
}

}  // namespace

CorvantisRenderCallback::CorvantisRenderCallback(win32::simple_socket& connection, std::u16string passPrefix)
    : connection_(connection), passPrefix_(std::move(passPrefix)) {}

CorvantisRenderCallback::~CorvantisRenderCallback() = default;

bool CorvantisRenderCallback::isInformative(const std::u16string& text) const {
  return !isRenderingTitle(text) && !(isRendererB && preparesScene(text));
}

void CorvantisRenderCallback::SetTitle(const char16_t* title) {
  const std::lock_guard guard(lock_);
  std::u16string text = cleanTitle(title);
  if (isInformative(text)) {
    try {
      relayStdoutLine(connection_, text);
    } catch (...) {  // a log line that cannot be sent is not worth a frame
    }
  }
  title_ = std::move(text);
}

int CorvantisRenderCallback::Progress(int done, int total) {
  if (title_ == u"Initializing Ray Server") return 1;
  if (!takeTurn(total)) return 1;
  pump_messages();
  done = std::min(done, total);

  const std::lock_guard guard(lock_);
  try {
    sendProgress(static_cast<float>(done) * 100.0F / static_cast<float>(total));
  } catch (const win32::simple_socket_error& e) {
    // "excetion" is spelled as the system spells it.
    log_file << "caught simple socket excetion when handling progress: " << e.what() << LogFile::endl;
  } catch (const std::exception& e) {
    log_file << "progress could not be reported: " << e.what() << LogFile::endl;
  }
  return 1;
}

void CorvantisRenderCallback::sendProgress(float percent) {
  bool rendering = false;
  if (percent > 0.0F) {
    postTitle(connection_, passPrefix_ + title_ + u" - " + oneDecimal(percent) + u"%");
    rendering = isRenderingTitle(title_);
  }
  postProgress(connection_, rendering ? percent * passScale_ + passOffset_ : protocol::notice::kUnmeasured);
}

void CorvantisRenderCallback::setPass(std::int32_t pass, std::int32_t passCount) {
  const std::lock_guard guard(lock_);
  passPrefix_ = u"Pass " + to_wstring(pass) + u" of " + to_wstring(passCount) + u" - ";
  passOffset_ = static_cast<float>(pass * 100 - 100) / static_cast<float>(passCount);
  passScale_ = 1.0F / static_cast<float>(passCount);
}

}  // namespace corvantis

#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

#include "platform/fault_guard.h"
#include "platform/page_reads.h"

namespace platform {
namespace {

// Copies within one page: all of it or nothing.
bool readWithinPage(std::uintptr_t address, char* out, std::size_t count) {
  const iovec local{out, count};
  // NOLINTNEXTLINE(performance-no-int-to-ptr): addresses come from the machine, as numbers
  auto* const place = reinterpret_cast<void*>(address);
  const iovec remote{place, count};
  const ssize_t copied = ::process_vm_readv(::getpid(), &local, 1, &remote, 1, 0);
  if (copied >= 0 || (errno != ENOSYS && errno != EPERM)) return copied == static_cast<ssize_t>(count);
  // Where the call is forbidden: the kernel refuses to write from memory that is not there.
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return false;
  const bool passed = ::write(ends[1], place, count) == static_cast<ssize_t>(count) &&
                      ::read(ends[0], out, count) == static_cast<ssize_t>(count);
  ::close(ends[0]);
  ::close(ends[1]);
  return passed;
}

// The lines of /proc/self/maps through a fixed buffer; of a longer line only the beginning is given.
class MapLines {
 public:
  MapLines() : descriptor_(::open("/proc/self/maps", O_RDONLY | O_CLOEXEC)) {}
  ~MapLines() {
    if (descriptor_ >= 0) ::close(descriptor_);
  }
  MapLines(const MapLines&) = delete;
  MapLines& operator=(const MapLines&) = delete;

  bool isOpen() const { return descriptor_ >= 0; }

  bool next(std::string_view& line) {
    std::size_t length = 0;
    char byte = 0;
    while (nextByte(byte)) {
      if (byte == '\n') {
        line = {line_.data(), length};
        return true;
      }
      if (length < line_.size()) line_[length++] = byte;
    }
    return false;
  }

 private:
  bool nextByte(char& byte) {
    if (position_ == filled_) {
      ssize_t count = -1;
      do count = ::read(descriptor_, buffer_.data(), buffer_.size());
      while (count < 0 && errno == EINTR);
      if (count <= 0) return false;
      filled_ = static_cast<std::size_t>(count);
      position_ = 0;
    }
    byte = buffer_[position_++];
    return true;
  }

  int descriptor_;
  std::array<char, 4096> buffer_{};
  std::size_t filled_ = 0;
  std::size_t position_ = 0;
  std::array<char, 64> line_{};
};

std::uintptr_t takeHexadecimal(std::string_view& text) {
  std::uintptr_t value = 0;
  while (!text.empty()) {
    const char digit = text.front();
    const bool isDecimal = digit >= '0' && digit <= '9';
    if (!isDecimal && (digit < 'a' || digit > 'f')) break;
    value = value * 16 + static_cast<std::uintptr_t>(isDecimal ? digit - '0' : digit - 'a' + 10);
    text.remove_prefix(1);
  }
  return value;
}

// "begin-end rwxp ..."
bool isCodeRange(std::string_view line, std::uintptr_t address, bool& contains) {
  const std::uintptr_t begin = takeHexadecimal(line);
  line.remove_prefix(std::min<std::size_t>(1, line.size()));
  const std::uintptr_t end = takeHexadecimal(line);
  contains = address >= begin && address < end;
  return line.size() > 3 && line[1] == 'r' && line[3] == 'x';
}

}  // namespace

std::size_t readMemory(std::uintptr_t address, void* out, std::size_t count) {
  return readByPages(address, out, count, &readWithinPage);
}

bool isCodeAddress(std::uintptr_t address) {
  MapLines lines;
  if (!lines.isOpen()) {
    char probe = 0;
    return readMemory(address, &probe, 1) == 1;
  }
  bool contains = false;
  for (std::string_view line; lines.next(line);) {
    const bool isCode = isCodeRange(line, address, contains);
    if (contains) return isCode;
  }
  return false;
}

}  // namespace platform

#include <windows.h>

#include <algorithm>
#include <array>
#include <optional>

#include "platform/code_page.h"
#include "platform/system_layers.h"
#include "platform/win32/wide.h"

namespace platform {
namespace {

// The calls stop at a NUL, and would act on the shorter name.
bool isName(const std::u16string& path) { return path.find(u'\0') == std::u16string::npos; }

std::uint32_t outcome(BOOL succeeded) { return succeeded != 0 ? error::kSuccess : ::GetLastError(); }

// Where a file lies on which volume. Two servers may number alike: a time and a size that differ tell such files apart.
struct FileIdentity {
  std::uint64_t index;
  DWORD volume;
  std::uint64_t size, created, written;

  bool operator==(const FileIdentity&) const = default;
};

std::uint64_t joined(DWORD high, DWORD low) { return std::uint64_t{high} << 32 | low; }

// nullopt also where the file system numbers no files.
std::optional<FileIdentity> identityOf(const std::u16string& path, DWORD flags) {
  if (!isName(path)) return std::nullopt;
  const HANDLE file = ::CreateFileW(win32::wide(path), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, flags | FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return std::nullopt;
  BY_HANDLE_FILE_INFORMATION found{};
  const bool known = ::GetFileInformationByHandle(file, &found) != 0;
  ::CloseHandle(file);
  const std::uint64_t index = joined(found.nFileIndexHigh, found.nFileIndexLow);
  if (!known || index == 0) return std::nullopt;
  return FileIdentity{index, found.dwVolumeSerialNumber, joined(found.nFileSizeHigh, found.nFileSizeLow),
                      joined(found.ftCreationTime.dwHighDateTime, found.ftCreationTime.dwLowDateTime),
                      joined(found.ftLastWriteTime.dwHighDateTime, found.ftLastWriteTime.dwLowDateTime)};
}

class SystemFiles final : public Files {
 public:
  FileAttributes attributes(const std::u16string& path) override {
    if (!isName(path)) return {error::kInvalidName, false};
    WIN32_FILE_ATTRIBUTE_DATA data{};
    const std::uint32_t number = outcome(::GetFileAttributesExW(win32::wide(path), GetFileExInfoStandard, &data));
    return {number, number == error::kSuccess && (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0};
  }

  std::uint32_t createDirectory(const std::u16string& path) override {
    return isName(path) ? outcome(::CreateDirectoryW(win32::wide(path), nullptr)) : error::kInvalidName;
  }

  std::uint32_t copyFile(const std::u16string& source, const std::u16string& destination) override {
    if (!isName(source) || !isName(destination)) return error::kInvalidName;
    return outcome(::CopyFileW(win32::wide(source), win32::wide(destination), FALSE));
  }

  std::uint32_t deleteFile(const std::u16string& path) override {
    return isName(path) ? outcome(::DeleteFileW(win32::wide(path))) : error::kInvalidName;
  }

  bool isSameFile(const std::u16string& path, const std::u16string& file) override {
    const auto one = identityOf(path, FILE_FLAG_OPEN_REPARSE_POINT);
    return one && one == identityOf(file, 0);
  }
};

class Win32TextFile final : public TextFile {
 public:
  explicit Win32TextFile(HANDLE file) : file_(file) {}
  ~Win32TextFile() override { ::CloseHandle(file_); }

  bool write(std::string_view bytes) override {
    const std::string text = withLineEnds(bytes);
    DWORD written = 0;
    const auto size = static_cast<DWORD>(text.size());
    return ::WriteFile(file_, text.data(), size, &written, nullptr) != 0 && written == size;
  }

 private:
  static std::string withLineEnds(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + 2);
    for (const char byte : bytes) {
      if (byte == '\n') text += '\r';
      text += byte;
    }
    return text;
  }

  HANDLE file_;
};

}  // namespace

Files& systemFiles() {
  static SystemFiles instance;
  return instance;
}

std::u16string systemErrorText(std::uint32_t errorNumber) {
  std::array<wchar_t, 1024> buffer{};
  const DWORD size = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, errorNumber,
                                      0, buffer.data(), static_cast<DWORD>(buffer.size()), nullptr);
  std::u16string text(reinterpret_cast<const char16_t*>(buffer.data()), size);
  while (!text.empty() && (text.back() == u'\n' || text.back() == u'\r')) text.pop_back();
  return text;
}

std::string nativePath(std::u16string_view path) { return wideToMultibyte(path, CodePage::utf8).value_or(""); }

std::u16string windowsPath(std::string_view native) {
  std::u16string path = multibyteToWide(native, CodePage::utf8).value_or(u"");
  std::replace(path.begin(), path.end(), u'/', u'\\');
  return path;
}

std::uint32_t windowsErrorNumber(int nativeError) { return static_cast<std::uint32_t>(nativeError); }

std::unique_ptr<TextFile> openTextFile(const std::u16string& path) {
  if (!isName(path)) return nullptr;
  const HANDLE file = ::CreateFileW(win32::wide(path), GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
  return file == INVALID_HANDLE_VALUE ? nullptr : std::make_unique<Win32TextFile>(file);
}

}  // namespace platform

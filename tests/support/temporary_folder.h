// A folder that a test owns and that goes away with it.
#pragma once

#include <string>

namespace support {

class TemporaryFolder {
 public:
  TemporaryFolder();
  ~TemporaryFolder();
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;

  // Native path without a trailing separator, or of something below the folder.
  const std::string& path() const { return path_; }
  std::string path(const std::string& name) const { return path_ + "/" + name; }
  // The same as a Windows path in UTF-16.
  std::u16string wide(const std::string& name = "") const;

  // Writes a file below the folder, creating missing folders; returns its native path.
  std::string write(const std::string& name, const std::string& content) const;
  std::string read(const std::string& name) const;
  // The same for text, whose line ends are the platform's own: as "\n".
  std::string readText(const std::string& name) const;
  bool exists(const std::string& name) const;

 private:
  std::string path_;
};

}  // namespace support

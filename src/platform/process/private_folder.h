// A folder that only this user can read, with a random name, removed with the object. What a killed process left is
// removed by the next one that makes such a folder in the same place: each owner holds a lock for as long as it lives.
#pragma once

#include <string>

namespace platform {

// Where this machine keeps short-lived files, native: the first of TMPDIR, TMP and TEMP that is set, else the system's
// own. Not known to exist.
std::string temporaryFolder();

class PrivateFolder {
 public:
  // In the folder `parent`, named `prefix` and a random ending. std::runtime_error with the reason.
  PrivateFolder(const std::string& parent, const std::string& prefix);
  ~PrivateFolder();
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;

  // Native, without a trailing separator.
  const std::string& path() const { return path_; }

 private:
  std::string path_;
  int lock_ = -1;
};

}  // namespace platform

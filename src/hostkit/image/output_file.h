// A file written aside and renamed: complete or absent under its final name.
#pragma once

#include <fstream>
#include <string>
#include <vector>

namespace hostkit::image {

class OutputFile {
 public:
  // Creates the file that is written aside, in the destination's folder. std::runtime_error with the reason.
  explicit OutputFile(const std::string& nativePath);
  // Removes what was written aside unless commit() succeeded.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // std::runtime_error when not every byte reached the disk's cache.
  void write(const std::vector<unsigned char>& bytes);
  // Gives the file its final name, replacing what stood there. std::runtime_error when it cannot.
  void commit();

  const std::string& path() const { return path_; }

 private:
  std::string path_, aside_;
  std::ofstream stream_;
  bool committed_ = false;
};

}  // namespace hostkit::image

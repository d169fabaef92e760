#include "support/temporary_folder.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "support/platform_kind.h"

namespace support {
namespace fs = std::filesystem;

TemporaryFolder::TemporaryFolder() {
  std::random_device random;
  for (int attempt = 0; attempt < 100; ++attempt) {
    const fs::path candidate = fs::temp_directory_path() / ("corvantis-test-" + std::to_string(random()));
    if (fs::create_directory(candidate)) {
      path_ = candidate.generic_string();
      return;
    }
  }
  throw std::runtime_error("no temporary folder could be made below " + fs::temp_directory_path().string());
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  fs::remove_all(path_, ignored);
}

std::u16string TemporaryFolder::wide(const std::string& name) const {
  std::u16string text = fs::path(name.empty() ? path_ : path(name)).u16string();
  std::replace(text.begin(), text.end(), u'/', u'\\');
  return text;
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
  const fs::path file = path(name);
  fs::create_directories(file.parent_path());
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  if (!stream.flush()) throw std::runtime_error("cannot write " + file.string());
  return file.string();
}

std::string TemporaryFolder::read(const std::string& name) const {
  std::ifstream stream(path(name), std::ios::binary);
  if (!stream) throw std::runtime_error("cannot read " + path(name));
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

std::string TemporaryFolder::readText(const std::string& name) const {
  std::string text = read(name);
  if (kIsWindows) std::erase(text, '\r');
  return text;
}

bool TemporaryFolder::exists(const std::string& name) const { return fs::exists(path(name)); }

}  // namespace support

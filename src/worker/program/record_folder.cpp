#include "worker/program/record_folder.h"

#include <filesystem>

namespace worker {
namespace fs = std::filesystem;

std::string makeRecordFolder(const Job& job) {
  const fs::path named = job.output.empty() ? job.scene : job.output;
  const fs::path folder = fs::path(named).replace_extension(".job");
  std::error_code error;
  fs::create_directories(folder, error);
  if (error && job.output.empty()) return fs::absolute(folder.filename()).string();
  return folder.string();
}

}  // namespace worker

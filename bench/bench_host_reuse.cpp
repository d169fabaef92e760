// What it saves to render many frames in one host: ten frames of the small example scene in one job, against ten jobs
// of one frame, each with a host of its own.
#include <fmt/format.h>

#include <boost/process.hpp>
#include <chrono>
#include <filesystem>
#include <stdexcept>
#include <string>

#include "bench/report.h"

namespace {

namespace process = boost::process;

void render(const std::string& frames, const std::filesystem::path& folder) {
  const int exitCode = process::system(
      process::exe = CORVANTIS_BIN_DIR "/tessaryn-worker",
      process::args = {"render", CORVANTIS_SOURCE_DIR "/examples/cube.gltf", "--frames", frames, "--output",
                       (folder / "cube.exr").string(), "--set", "IgnoreRenderElements", "--quiet"},
      process::std_out > process::null);
  if (exitCode != 0) throw std::runtime_error(fmt::format("the job failed with exit code {}", exitCode));
}

template <class Work>
double seconds(Work&& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

int main() try {
  const auto folder = std::filesystem::temp_directory_path() / "corvantis-bench-host-reuse";
  std::filesystem::create_directories(folder);
  render("0", folder);  // the first start of all reads the libraries from the disk
  const double one = seconds([&] { render("0-9", folder); });
  const double ten = seconds([&] {
    for (int frame = 0; frame < 10; ++frame) render(std::to_string(frame), folder);
  });
  std::filesystem::remove_all(folder);
  bench::reportAtMost({"ten frames, one host against ten", one, ten, "s"}, 0.3);
  return 0;
} catch (const std::exception& e) {
  fmt::print(stderr, "bench_host_reuse: {}\n", e.what());
  return 1;
}

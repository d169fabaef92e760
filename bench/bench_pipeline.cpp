// What the frame pipeline itself takes of a frame of 1920 x 1080, with the log on, a worker that listens, and real
// folders to look at; and whether that, or the memory in use, grows with the number of frames rendered.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "bench/free_host.h"
#include "bench/ping_pong.h"
#include "bench/report.h"
#include "platform/files.h"
#include "plugin/render/render_frame.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace {

namespace fs = std::filesystem;

constexpr int kWarmUp = 100;      // frames until caches, allocator and socket buffers have settled
constexpr int kFrames = 5000;     // frames after that
constexpr int kWindow = 500;      // frames that stand for their start, or their end
constexpr double kBudget = 2000;  // microseconds a frame

double residentKilobytes() {
  std::ifstream status("/proc/self/statm");
  double pages = 0;
  status >> pages >> pages;
  return pages * 4;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// One job, told to render frame after frame.
class Job {
 public:
  Job(const fs::path& folder, int elements) {
    const std::u16string output = platform::windowsPath(folder.string());
    host_.core.output.SetName(output + u"\\beauty.exr");
    for (int i = 0; i < elements; ++i) {
      host_.core.elements.emplace_back(output + u"\\element" + corvantis::to_wstring(i) + u".exr");
    }
    corvantis::log_file.close();
    corvantis::log_file.open(output + u"\\corvantis.log");
    job_.jobRunning = true;
    connection_.connect("127.0.0.1", worker_.port(), 1);
  }

  double microsecondsOfFrame(int frame) {
    const auto start = std::chrono::steady_clock::now();
    corvantis::RenderFrame(job_, frame, connection_);
    return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
  }

 private:
  bench::FreeHost host_;
  bench::AnsweringServer worker_{{std::size_t{1} << 16, 0, 1}, ""};  // listens and says nothing
  corvantis::JobState job_;
  corvantis::win32::simple_socket connection_;
};

void measure(const std::string& what, int elements) {
  const fs::path folder = fs::temp_directory_path() / ("corvantis-bench-pipeline-" + std::to_string(elements));
  fs::create_directories(folder);
  {
    Job job(folder, elements);
    for (int frame = 0; frame < kWarmUp; ++frame) job.microsecondsOfFrame(frame);
    const double memoryAtStart = residentKilobytes();
    std::vector<double> times;
    times.reserve(kFrames);
    for (int frame = 0; frame < kFrames; ++frame) times.push_back(job.microsecondsOfFrame(kWarmUp + frame));
    const double memoryAtEnd = residentKilobytes();
    const std::vector<double> first(times.begin(), times.begin() + kWindow);
    const std::vector<double> last(times.end() - kWindow, times.end());
    bench::reportAtMost({"pipeline a frame against its budget, " + what, median(times), kBudget, "us"}, 1.0);
    bench::reportAtMost({"pipeline after 5000 frames against before, " + what, median(last), median(first), "us"},
                        1.25);
    bench::reportAtMost({"memory after 5000 frames against before, " + what, memoryAtEnd, memoryAtStart, "KiB"}, 1.05);
  }
  corvantis::log_file.close();
  fs::remove_all(folder);
}

}  // namespace

int main() {
  measure("no elements", 0);
  measure("8 elements", 8);
}

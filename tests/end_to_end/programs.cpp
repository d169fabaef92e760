#include "programs.h"

#include <algorithm>
#include <boost/process.hpp>
#include <cmath>
#include <future>
#include <iterator>
#include <stdexcept>

#include "hostkit/codec/image_codec_library.h"
#include "support/build_folders.h"

namespace end_to_end {
namespace process = boost::process;

namespace {

std::string readAll(process::ipstream& stream) { return {std::istreambuf_iterator<char>(stream), {}}; }

}  // namespace

Finished run(const std::string& program, const std::vector<std::string>& arguments, const std::string& logFolder) {
  process::environment environment = boost::this_process::environment();
  if (!logFolder.empty()) environment["TMP"] = logFolder;
  process::ipstream output, errors;
  process::child child(process::exe = support::programFolder() + "/" + program, process::args = arguments,
                       process::std_in<process::null, process::std_out> output, process::std_err > errors, environment);
  auto errorText = std::async(std::launch::async, [&] { return readAll(errors); });
  Finished finished;
  finished.output = readAll(output);
  finished.errors = errorText.get();
  child.wait();
  finished.exitCode = child.exit_code();
  return finished;
}

hostkit::image::DecodedImage readImage(const std::string& path) {
  static hostkit::image::ImageCodecLibrary codecs(support::programFolder() + "/libimage_codec.so");
  return codecs.decode(path);
}

Difference compare(const hostkit::image::DecodedImage& a, const hostkit::image::DecodedImage& b) {
  if (a.width != b.width || a.height != b.height) throw std::runtime_error("images of different sizes");
  Difference difference;
  double sum = 0;
  for (std::size_t i = 0; i < a.pixels.size(); ++i) {
    const double d = std::abs(static_cast<double>(a.pixels[i]) - b.pixels[i]);
    difference.largest = std::max(difference.largest, d);
    sum += d * d;
  }
  difference.rms = std::sqrt(sum / static_cast<double>(std::max<std::size_t>(a.pixels.size(), 1)));
  return difference;
}

}  // namespace end_to_end

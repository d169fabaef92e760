// Runs the built programs as a user would.
#pragma once

#include <string>
#include <vector>

#include "hostkit/codec/image_codec.h"

namespace end_to_end {

struct Finished {
  int exitCode = -1;
  std::string output;  // standard output
  std::string errors;  // standard error
};

// Runs a program of the build ("tessaryn-worker") to its end. The log goes to `logFolder` when it is not empty.
Finished run(const std::string& program, const std::vector<std::string>& arguments, const std::string& logFolder = "");

// Reads an image file back.
hostkit::image::DecodedImage readImage(const std::string& path);

// The largest difference of any channel, and the root mean square over all.
struct Difference {
  double largest = 0, rms = 0;
};
Difference compare(const hostkit::image::DecodedImage& a, const hostkit::image::DecodedImage& b);

}  // namespace end_to_end

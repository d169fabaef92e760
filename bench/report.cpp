#include "bench/report.h"

#include <fmt/core.h>

#include <cstdio>

namespace bench {
namespace {

std::string inUnit(double value, const std::string& unit) {
  return fmt::format("{:.{}f} {}", value, value < 100 ? 1 : 0, unit);
}

void print(const Measurement& measurement, const char* relation, double goal, bool met) {
  fmt::print("{} | {} | {} | {:.2f} | {} {:g} | {}\n", measurement.name, inUnit(measurement.ours, measurement.unit),
             inUnit(measurement.peer, measurement.unit), measurement.ours / measurement.peer, relation, goal,
             met ? "met" : "missed");
  std::fflush(stdout);
}

}  // namespace

void reportAtMost(const Measurement& measurement, double goal) {
  print(measurement, "<=", goal, measurement.ours <= goal * measurement.peer);
}

void reportAtLeast(const Measurement& measurement, double goal) {
  print(measurement, ">=", goal, measurement.ours >= goal * measurement.peer);
}

}  // namespace bench

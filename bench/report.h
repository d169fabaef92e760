// The lines that benchmark programs print and bench.sh passes on:
//
//   name | ours | peer | ratio | goal | met
//   socket round trip p50 | 14.1 us | 13.0 us | 1.08 | <= 1.3 | met
#pragma once

#include <string>

namespace bench {

struct Measurement {
  std::string name;
  double ours = 0;
  double peer = 0;
  std::string unit;
};

// The goal is an upper limit of ours / peer (less is better, as with times).
void reportAtMost(const Measurement& measurement, double goal);
// The goal is a lower limit of ours / peer (more is better, as with rates).
void reportAtLeast(const Measurement& measurement, double goal);

}  // namespace bench

// Regular expressions in expectations, of one kind on every system.
#pragma once

#include <gmock/gmock.h>

#include <regex>
#include <string>

namespace support {

// The whole text, by an ECMAScript expression.
MATCHER_P(MatchesPattern, pattern, "matches " + std::string(pattern)) {
  return std::regex_match(std::string(arg), std::regex(std::string(pattern)));
}

}  // namespace support

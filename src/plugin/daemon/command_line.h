// A command line as the worker sends it: comma-separated fields with quotes and backslash escapes.
#pragma once

#include <string>
#include <vector>

namespace corvantis {

// A comma outside double quotes ends a field; double quotes are dropped wherever they stand; a backslash makes the next
// character literal (backslash, comma, double quote) or, before n, a line feed. Blanks stay. An empty line has no
// field, a final comma gives a final empty one. Throws std::runtime_error "unknown escape sequence" for any other
// character after a backslash and "cannot end with escape" for a backslash at the end.
std::vector<std::u16string> splitCommandLine(const std::u16string& line);

}  // namespace corvantis

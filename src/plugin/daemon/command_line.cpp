#include "plugin/daemon/command_line.h"

#include <boost/tokenizer.hpp>

namespace corvantis {

std::vector<std::u16string> splitCommandLine(const std::u16string& line) {
  using Separator = boost::escaped_list_separator<char16_t>;
  using Fields = boost::tokenizer<Separator, std::u16string::const_iterator, std::u16string>;
  const Fields fields(line, Separator(u'\\', u',', u'"'));
  return {fields.begin(), fields.end()};
}

}  // namespace corvantis

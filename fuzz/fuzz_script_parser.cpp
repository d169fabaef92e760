// Any bytes as a script file: decoded and parsed. Errors are the parser's; a crash or a hang is a find.
#include <cstddef>
#include <cstdint>

#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/parser.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace hostkit::script;
  const std::string bytes(data, data + size);
  const auto source = std::make_shared<const Source>(Source{u"fuzz.ms", decodeScript(bytes)});
  try {
    ScriptParser parser(source, [](const std::u16string&) { return nullptr; });
    for (;;) {
      Tree tree;
      if (!parser.nextExpression(tree)) break;
    }
  } catch (const ScriptError& error) {
    if (!error.isSyntax() || !error.place().source) __builtin_trap();
  }
  return 0;
}

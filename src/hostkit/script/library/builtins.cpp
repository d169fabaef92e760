#include "hostkit/script/library/builtins.h"

#include <array>

namespace hostkit::script {

std::span<const BuiltinFamily> builtinFamilies() {
  static const std::array<BuiltinFamily, 19> families{{
      {u"strings", stringBuiltins()},
      {u"arrays", arrayBuiltins()},
      {u"dictionaries", dictionaryBuiltins()},
      {u"mathematics", mathBuiltins()},
      {u"geometry", geometryBuiltins()},
      {u"bits", bitBuiltins()},
      {u"output", outputBuiltins()},
      {u"text streams", textStreamBuiltins()},
      {u"binary streams", binaryStreamBuiltins()},
      {u"file system", fileSystemBuiltins()},
      {u"file names", fileNameBuiltins()},
      {u"INI files", iniBuiltins()},
      {u"system", systemBuiltins()},
      {u"scripts", scriptBuiltins()},
      {u"classes", classBuiltins()},
      {u"scene", sceneBuiltins()},
      {u"callbacks", callbackBuiltins()},
      {u"user interface", interfaceBuiltins()},
      {u"unsupported", unsupportedBuiltins()},
  }};
  return families;
}

}  // namespace hostkit::script

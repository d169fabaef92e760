#include "hostkit/script/library/library.h"

namespace hostkit::script {

Library standardLibrary() {
  Library library;
  library.functions = {stringBuiltins(),     collectionBuiltins(),   mathBuiltins(),       geometryBuiltins(),
                       textStreamBuiltins(), binaryStreamBuiltins(), fileSystemBuiltins(), iniBuiltins(),
                       systemBuiltins(),     scriptBuiltins(),       classBuiltins(),      sceneBuiltins(),
                       interfaceBuiltins()};
  library.classes = plainClassRows();
  for (ClassRow& row : geometricClassRows()) library.classes.push_back(std::move(row));
  library.defineConstants = defineConstants;
  return library;
}

void requireFileAccess(Runtime& runtime) {
  if (!runtime.options().fileAccess) throwRuntimeError(u"File access is switched off in this host");
}

}  // namespace hostkit::script

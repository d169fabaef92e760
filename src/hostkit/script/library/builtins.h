// The built-in functions, one family a file, all registered from one table.
#pragma once

#include <span>
#include <string_view>

#include "hostkit/script/machine/code.h"

namespace hostkit::script {

// A name with a dot ("bit.and") is a function of the built-in structure before the dot.
struct BuiltinFamily {
  std::u16string_view name;
  std::span<const BuiltinEntry> entries;
};

std::span<const BuiltinFamily> builtinFamilies();

// Each defined in its file.
std::span<const BuiltinEntry> stringBuiltins();
std::span<const BuiltinEntry> arrayBuiltins();
std::span<const BuiltinEntry> dictionaryBuiltins();
std::span<const BuiltinEntry> mathBuiltins();
std::span<const BuiltinEntry> geometryBuiltins();
std::span<const BuiltinEntry> bitBuiltins();
std::span<const BuiltinEntry> outputBuiltins();
std::span<const BuiltinEntry> textStreamBuiltins();
std::span<const BuiltinEntry> binaryStreamBuiltins();
std::span<const BuiltinEntry> fileSystemBuiltins();
std::span<const BuiltinEntry> fileNameBuiltins();
std::span<const BuiltinEntry> iniBuiltins();
std::span<const BuiltinEntry> systemBuiltins();
std::span<const BuiltinEntry> scriptBuiltins();
std::span<const BuiltinEntry> classBuiltins();
std::span<const BuiltinEntry> sceneBuiltins();
std::span<const BuiltinEntry> callbackBuiltins();
std::span<const BuiltinEntry> interfaceBuiltins();
std::span<const BuiltinEntry> unsupportedBuiltins();

}  // namespace hostkit::script

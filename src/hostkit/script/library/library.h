// What scripts find in every runtime: built-in functions, one family a file, the classes of values, and constants.
#pragma once

#include <ctime>
#include <span>
#include <string>
#include <vector>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

// All of it, to furnish a runtime with.
Library standardLibrary();

// The families, each defined in its file. A name with a dot ("bit.and") is a function of the built-in structure before
// the dot.
std::span<const BuiltinEntry> stringBuiltins();
std::span<const BuiltinEntry> collectionBuiltins();
std::span<const BuiltinEntry> mathBuiltins();
std::span<const BuiltinEntry> geometryBuiltins();
std::span<const BuiltinEntry> textStreamBuiltins();
std::span<const BuiltinEntry> binaryStreamBuiltins();
std::span<const BuiltinEntry> fileSystemBuiltins();
std::span<const BuiltinEntry> iniBuiltins();
std::span<const BuiltinEntry> systemBuiltins();
std::span<const BuiltinEntry> scriptBuiltins();
std::span<const BuiltinEntry> classBuiltins();
std::span<const BuiltinEntry> sceneBuiltins();
std::span<const BuiltinEntry> interfaceBuiltins();

// The classes; a superclass stands before its classes.
std::vector<ClassRow> plainClassRows();      // numbers, texts, collections, functions
std::vector<ClassRow> geometricClassRows();  // points, colors, rotations, matrices, intervals

// `sysInfo`: what a script may learn of the machine.
void defineSystemInfo(Runtime& runtime);

// A moment as scripts show it, in local time: "11/22/2026 9:30:05 PM".
std::u16string dateText(std::time_t moment);
// The path that an argument names, where a name with '$' may stand for a folder.
std::u16string filePath(const Call& call, std::size_t index);
// Throws a script error when the host was set up without file access.
void requireFileAccess(Runtime& runtime);

}  // namespace hostkit::script

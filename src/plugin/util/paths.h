// Windows paths as text. Every function works on the text alone; all but splitScenePath first normalise the path where
// they decompose it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace corvantis {

// "/" becomes "\"; then each pair of "\" becomes one, in a single pass from the left (a run of three or four leaves
// two). The two backslashes that begin a network path stay.
std::u16string normalize_path(std::u16string path);

// Empty stays empty; else a "\" is appended unless the text ends in "\" (a "/" does not count).
std::u16string ensure_trailing_backslash(std::u16string folder);

// Everything before the last component, without a trailing separator unless it is a root ("C:\", "\", "\\server\");
// empty when there is no folder part. A path that ends in a separator has the component "." after it, so the parent
// of "a\b\" is "a\b" and that of "C:\" is "C:\".
std::u16string parent_of(const std::u16string& path);
// The last component: "." when the path ends in a separator; the server with its backslashes when the path is nothing
// else.
std::u16string file_name_of(const std::u16string& path);
// The last component up to its last "."; the whole of it when it has none.
std::u16string stem_of(const std::u16string& path);
// The last component from its last "." on; empty when it has none or is "." or "..".
std::u16string extension_of(const std::u16string& path);

// The path with `tail` in place of its extension: the parent, a backslash unless the parent is empty or ends in "\",
// "/" or ":", then the stem and `tail`.
std::u16string replace_file_name(const std::u16string& path, const std::u16string& tail);

// Decimal digits, zero-padded on the left to `width`; the minus sign of a negative number counts toward the width.
std::u16string pad_frame_number(std::int32_t number, std::size_t width);

// The path with the number, padded to four, between stem and extension.
std::u16string make_numbered_name(const std::u16string& name, std::int32_t number);

// The scene file's path, taken apart for the scripts that ask for its name and folder.
struct ScenePath {
  std::u16string fileName;
  std::u16string folder;
};

// Takes a path with backslashes apart as it stands: "C:\scenes\a.max" is "a.max" in "C:\scenes". The folder of a file
// in a root keeps the root's separator ("C:\"), a path that ends in a separator has the file name ".", a root is its
// own file name, a drive without a separator is a folder ("C:a.max" is "a.max" in "C:").
ScenePath splitScenePath(const std::u16string& path);

}  // namespace corvantis

// A script's text and places in it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace hostkit::script {

struct LineColumn {
  std::size_t line = 1, column = 1;
};

struct Source {
  std::u16string name;  // the file's path, or "" for text that has no file
  std::u16string text;

  LineColumn lineColumn(std::size_t offset) const;
  std::u16string_view line(std::size_t number) const;  // from 1; without its line end
};

struct Place {
  std::shared_ptr<const Source> source;  // null: unknown
  std::size_t offset = 0;
};

// A script file's bytes as text: by byte-order mark, else UTF-8 if valid, else the ANSI code page.
std::u16string decodeScript(std::string_view bytes);

// nullopt when the file cannot be read.
std::optional<std::string> readBytes(const std::u16string& path);
std::shared_ptr<const Source> readSource(const std::u16string& path);  // null when it cannot be read

}  // namespace hostkit::script

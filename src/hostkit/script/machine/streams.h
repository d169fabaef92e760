// Streams that scripts open: text in memory, text files, binary files.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "hostkit/script/machine/value.h"

namespace hostkit::script {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using FileHandle = std::unique_ptr<std::FILE, CloseFile>;

// Text in memory, or a text file. A file open for reading is held whole and read from memory; one open for writing is
// written as UTF-8 at once.
class TextStreamObject : public Object {
 public:
  static constexpr Kind kKind = Kind::textStream;
  explicit TextStreamObject(std::u16string text) : Object(kKind), content_(std::move(text)) {}
  TextStreamObject(std::u16string path, std::u16string content, bool writes)
      : Object(kKind), path_(std::move(path)), content_(std::move(content)), isFile_(true), writes_(writes) {}
  std::size_t footprint() const override { return 160 + content_.capacity() * 2; }

  // Null when the file cannot be opened. Mode as for fopen: r, r+, w, w+, a, a+, with b or t ignored.
  static bool open(TextStreamObject& stream, std::u16string_view mode);

  bool isFile() const { return isFile_; }
  bool isOpen() const { return open_; }
  bool writes() const { return writes_; }
  const std::u16string& path() const { return path_; }
  const std::u16string& content() const { return content_; }

  // At the end of what is there. Memory past kMaxStringLength is a script error, a full disk too.
  void write(std::u16string_view text);
  void flush();
  void close();

  // Reading. The position counts code units from 0.
  std::size_t position() const { return position_; }
  void seek(std::size_t position) { position_ = position < content_.size() ? position : content_.size(); }
  bool atEnd() const { return position_ >= content_.size(); }
  std::u16string_view rest() const { return std::u16string_view(content_).substr(position_); }

 private:
  std::u16string path_, content_;
  std::size_t position_ = 0;
  bool isFile_ = false, writes_ = true, open_ = true;
  FileHandle file_;
};

struct BinaryStreamObject : Object {
  static constexpr Kind kKind = Kind::binaryStream;
  BinaryStreamObject(std::u16string filePath, FileHandle handle)
      : Object(kKind), path(std::move(filePath)), file(std::move(handle)) {}
  std::u16string path;
  FileHandle file;  // null once closed
};

}  // namespace hostkit::script

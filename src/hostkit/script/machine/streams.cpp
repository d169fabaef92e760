#include "hostkit/script/machine/streams.h"

#include "hostkit/script/machine/objects.h"
#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/source.h"
#include "hostkit/script/syntax/text.h"
#include "platform/files.h"

namespace hostkit::script {

bool TextStreamObject::open(TextStreamObject& stream, std::u16string_view mode) {
  const bool appends = mode.find(u'a') != std::u16string_view::npos;
  const bool creates = mode.find(u'w') != std::u16string_view::npos;
  const bool updates = mode.find(u'+') != std::u16string_view::npos;
  stream.writes_ = appends || creates || updates;
  if (!creates) {
    const auto bytes = readBytes(stream.path_);
    if (!bytes && !appends) return false;
    if (bytes) stream.content_ = decodeScript(*bytes);
  }
  if (!stream.writes_) return true;
  const char* native = creates ? "wb" : appends ? "ab" : "r+b";
  stream.file_.reset(std::fopen(platform::nativePath(stream.path_).c_str(), native));
  if (stream.file_ && !creates && !appends) std::fseek(stream.file_.get(), 0, SEEK_END);
  return stream.file_ != nullptr;
}

void TextStreamObject::write(std::u16string_view text) {
  if (!open_) throwRuntimeError(u"File is not open: " + path_);
  if (!writes_) throwRuntimeError(u"File is not open for writing: " + path_);
  if (content_.size() + text.size() > kMaxStringLength) throwRuntimeError(u"Stream too long");
  content_ += text;
  if (!file_) return;
  const std::string bytes = toUtf8(text);
  if (std::fwrite(bytes.data(), 1, bytes.size(), file_.get()) != bytes.size())
    throwRuntimeError(u"File cannot be written: " + path_);
}

void TextStreamObject::flush() {
  if (file_) std::fflush(file_.get());
}

void TextStreamObject::close() {
  file_.reset();
  if (isFile_) open_ = false;
}

}  // namespace hostkit::script

// Binary files, little-endian.
#include <array>
#include <bit>
#include <cstring>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/text.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

std::FILE* file(const Call& call) {
  const auto* stream = as<BinaryStreamObject>(call[0]);
  if (!stream) throwUnableToConvert(printed(call.runtime, call[0]), u"BinStream");
  if (!stream->file) throwRuntimeError(u"File is not open: " + stream->path);
  return stream->file.get();
}

Value open(const Call& call) {
  requireFileAccess(call.runtime);
  const std::u16string path = filePath(call, 0);
  const std::u16string_view mode = toString(call.runtime, call[1]);
  if (mode.empty() || std::u16string_view(u"rwa").find(mode[0]) == std::u16string_view::npos)
    throwRuntimeError(u"Bad file mode: " + std::u16string(mode));
  std::string native(1, static_cast<char>(mode[0]));
  native += mode.find(u'+') == std::u16string::npos ? "b" : "+b";
  FileHandle handle(std::fopen(platform::nativePath(path).c_str(), native.c_str()));
  if (!handle) return {};
  return call.runtime.heap().make<BinaryStreamObject>(path, std::move(handle));
}

Value close(const Call& call) {
  file(call);
  as<BinaryStreamObject>(call[0])->file.reset();
  return Value::ofBoolean(true);
}
Value flush(const Call& call) { return Value::ofBoolean(std::fflush(file(call)) == 0); }

Value seek(const Call& call) {
  const std::u16string& from = toName(call.runtime, call[2])->folded;
  const int origin = from == u"seek_end" ? SEEK_END : from == u"seek_cur" ? SEEK_CUR : SEEK_SET;
  return Value::ofBoolean(std::fseek(file(call), toInteger(call.runtime, call[1]), origin) == 0);
}
Value tell(const Call& call) { return Value::ofInteger(static_cast<std::int32_t>(std::ftell(file(call)))); }

// undefined past the end.
template <std::size_t Bytes, bool Real>
Value read(const Call& call) {
  std::array<unsigned char, 8> bytes{};
  if (std::fread(bytes.data(), 1, Bytes, file(call)) != Bytes) return {};
  std::uint64_t bits = 0;
  for (std::size_t i = 0; i < Bytes; ++i) bits |= std::uint64_t{bytes[i]} << (8 * i);
  if constexpr (Real && Bytes == 4) return Value::ofFloat(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
  if constexpr (Real && Bytes == 8) return Value::ofDouble(std::bit_cast<double>(bits));
  const bool isUnsigned = call.count() > 1 && toName(call.runtime, call[1])->folded == u"unsigned";
  if constexpr (Bytes == 8) return Value::ofInteger64(static_cast<std::int64_t>(bits));
  if (isUnsigned) return Value::ofInteger(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
  if constexpr (Bytes == 1) return Value::ofInteger(static_cast<std::int8_t>(bits));
  if constexpr (Bytes == 2) return Value::ofInteger(static_cast<std::int16_t>(bits));
  return Value::ofInteger(static_cast<std::int32_t>(static_cast<std::uint32_t>(bits)));
}

template <std::size_t Bytes, bool Real>
Value write(const Call& call) {
  std::uint64_t bits = 0;
  if constexpr (Real && Bytes == 4) bits = std::bit_cast<std::uint32_t>(toFloat(call.runtime, call[1]));
  if constexpr (Real && Bytes == 8) bits = std::bit_cast<std::uint64_t>(toDouble(call.runtime, call[1]));
  if constexpr (!Real) bits = static_cast<std::uint64_t>(toInteger64(call.runtime, call[1]));
  std::array<unsigned char, 8> bytes{};
  for (std::size_t i = 0; i < Bytes; ++i) bytes[i] = static_cast<unsigned char>(bits >> (8 * i));
  return Value::ofBoolean(std::fwrite(bytes.data(), 1, Bytes, file(call)) == Bytes);
}

// Up to a zero byte.
Value readString(const Call& call) {
  std::string text;
  for (int c; (c = std::fgetc(file(call))) != EOF && c != 0 && text.size() < kMaxStringLength;)
    text += static_cast<char>(c);
  return call.runtime.newString(fromUtf8(text));
}
Value writeString(const Call& call) {
  const std::string text = toUtf8(toString(call.runtime, call[1]));
  return Value::ofBoolean(std::fwrite(text.c_str(), 1, text.size() + 1, file(call)) == text.size() + 1);
}

constexpr BuiltinEntry kEntries[] = {
    {u"fopen", 2, 2, open},
    {u"fclose", 1, 1, close},
    {u"fflush", 1, 1, flush},
    {u"fseek", 3, 3, seek},
    {u"ftell", 1, 1, tell},
    {u"readByte", 1, 2, read<1, false>},
    {u"readShort", 1, 2, read<2, false>},
    {u"readLong", 1, 2, read<4, false>},
    {u"readLongLong", 1, 2, read<8, false>},
    {u"readFloat", 1, 1, read<4, true>},
    {u"readDouble", 1, 1, read<8, true>},
    {u"readString", 1, 1, readString},
    {u"writeByte", 2, 3, write<1, false>},
    {u"writeShort", 2, 3, write<2, false>},
    {u"writeLong", 2, 3, write<4, false>},
    {u"writeLongLong", 2, 3, write<8, false>},
    {u"writeFloat", 2, 2, write<4, true>},
    {u"writeDouble", 2, 2, write<8, true>},
    {u"writeString", 2, 2, writeString},
};

}  // namespace

std::span<const BuiltinEntry> binaryStreamBuiltins() { return kEntries; }

}  // namespace hostkit::script

// What the lexer makes of the text.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/script/syntax/source.h"

namespace hostkit::script {

enum class TokenKind : std::uint8_t {
  end,
  identifier,        // text as written
  keyword,           // text in lower case
  quotedIdentifier,  // 'text'
  name,              // #text
  string,
  number,
  path,       // $text, without the '$'
  symbol,     // text is the symbol
  arrayOpen,  // #(
  bitsOpen,   // #{
  invalid,    // text is the complaint
};

// A number or time as written. A time is minutes and seconds as ticks, plus frames and further ticks.
struct NumberLiteral {
  enum class Kind : std::uint8_t { integer, integer64, integerPtr, real, doubleReal, time, normalizedTime };
  Kind kind = Kind::integer;
  std::int64_t whole = 0;
  double number = 0;             // real, doubleReal, normalizedTime
  double frames = 0, ticks = 0;  // time
};

struct Token {
  TokenKind kind = TokenKind::end;
  bool afterNewline = false;  // a line end or ';' stands before it
  bool afterBlank = false;    // something blank stands before it
  bool beforeBlank = false;   // something blank, or the end, stands after it
  bool beforeColon = false;   // an identifier that a single ':' follows at once
  std::u16string text;
  std::vector<std::size_t> percents;  // of a string: where a percent sign was written \%
  NumberLiteral number;
  Place place;
  std::size_t endOffset = 0;

  bool isSymbol(std::u16string_view symbol) const { return kind == TokenKind::symbol && text == symbol; }
  bool isKeyword(std::u16string_view word) const { return kind == TokenKind::keyword && text == word; }
};

}  // namespace hostkit::script

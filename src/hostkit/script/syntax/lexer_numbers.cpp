// Numbers and times.
#include <cstdlib>
#include <limits>

#include "hostkit/script/syntax/lexer.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

constexpr double kTicksPerSecond = 4800.0;

}  // namespace

void Lexer::scanNumber(Token& token) {
  token.kind = TokenKind::number;
  if (!scanHex(token) && !scanTime(token)) scanDecimal(token);
}

// Written with 0x: the low 32 bits.
bool Lexer::scanHex(Token& token) {
  if (peek() != u'0' || foldCase(peek(1)) != u'x' || hexDigit(peek(2)) < 0) return false;
  reading().at += 2;
  std::uint64_t bits = 0;
  for (; hexDigit(peek()) >= 0; ++reading().at) bits = bits << 4 | static_cast<std::uint64_t>(hexDigit(peek()));
  token.number.kind = NumberLiteral::Kind::integer;
  token.number.whole = static_cast<std::int32_t>(static_cast<std::uint32_t>(bits));
  if (foldCase(peek()) == u'l' && !isLetter(peek(1)) && !isDigit(peek(1))) {
    ++reading().at;
    token.number.kind = NumberLiteral::Kind::integer64;
    token.number.whole = static_cast<std::int64_t>(bits);
  }
  return true;
}

// Steps over digits with at most one point; false when the next thing is a range ("1..5") or no fraction.
bool Lexer::scanFraction() {
  while (isDigit(peek())) ++reading().at;
  if (peek() != u'.' || peek(1) == u'.') return false;
  ++reading().at;
  while (isDigit(peek())) ++reading().at;
  return true;
}

// "1m15s", "125f", "1f20t", "0.45n", "2:10.0"; gives everything back when it is none of these.
bool Lexer::scanTime(Token& token) {
  const std::size_t start = reading().at;
  const auto& text = reading().source->text;
  NumberLiteral time;
  time.kind = NumberLiteral::Kind::time;
  std::size_t order = 0;
  bool any = false;
  while (isDigit(peek()) || (peek() == u'.' && isDigit(peek(1)))) {
    const std::size_t from = reading().at;
    const bool fraction = scanFraction();
    const double number = std::strtod(narrow(text.substr(from, reading().at - from)).c_str(), nullptr);
    const char16_t unit = foldCase(peek());
    if (!any && !fraction && peek() == u':' && isDigit(peek(1))) {
      ++reading().at;
      const std::size_t seconds = reading().at;
      if (scanFraction() && isDigit(text[reading().at - 1])) {
        const std::string rest = narrow(text.substr(seconds, reading().at - seconds));
        time.ticks = (number * 60 + std::strtod(rest.substr(0, rest.find('.')).c_str(), nullptr)) * kTicksPerSecond;
        time.frames = std::strtod(rest.substr(rest.find('.') + 1).c_str(), nullptr);
        token.number = time;
        return true;
      }
      break;
    }
    const std::size_t place = std::u16string_view(u"msft").find(unit);
    if (unit == u'n' && !any && !isLetter(peek(1)) && !isDigit(peek(1))) {
      ++reading().at;
      time.kind = NumberLiteral::Kind::normalizedTime;
      time.number = number;
      token.number = time;
      return true;
    }
    if (place == std::u16string_view::npos || unit == 0 || place + 1 <= order) break;
    order = place + 1;
    any = true;
    ++reading().at;
    (place == 2 ? time.frames : time.ticks) += number * (place == 0   ? 60 * kTicksPerSecond
                                                         : place == 1 ? kTicksPerSecond
                                                                      : 1.0);
    if (!isDigit(peek()) && !isLetter(peek())) {
      token.number = time;
      return true;
    }
  }
  reading().at = start;
  return false;
}

void Lexer::scanDecimal(Token& token) {
  const std::size_t start = reading().at;
  const auto& text = reading().source->text;
  bool real = scanFraction(), isDouble = false;
  const char16_t exponent = foldCase(peek());
  if (exponent == u'e' || exponent == u'd') {
    const std::size_t digits = peek(1) == u'+' || peek(1) == u'-' ? 2 : 1;
    if (isDigit(peek(digits))) {
      isDouble = exponent == u'd';
      real = true;
      reading().at += digits;
      while (isDigit(peek())) ++reading().at;
    }
  }
  std::string digits = narrow(text.substr(start, reading().at - start));
  for (char& c : digits)
    if (c == 'd' || c == 'D') c = 'e';
  token.number.number = std::strtod(digits.c_str(), nullptr);
  if (real) {
    token.number.kind = isDouble ? NumberLiteral::Kind::doubleReal : NumberLiteral::Kind::real;
    return;
  }
  const char16_t suffix = foldCase(peek());
  const bool suffixed = (suffix == u'l' || suffix == u'p') && !isLetter(peek(1)) && !isDigit(peek(1));
  token.number.whole = std::strtoll(digits.c_str(), nullptr, 10);
  if (suffixed) {
    ++reading().at;
    token.number.kind = suffix == u'l' ? NumberLiteral::Kind::integer64 : NumberLiteral::Kind::integerPtr;
  } else if (token.number.whole > std::numeric_limits<std::int32_t>::max()) {
    // More than 32 bits hold: the nearest float, as arithmetic would go on.
    token.number.kind = NumberLiteral::Kind::real;
  }
}

}  // namespace hostkit::script

#include "hostkit/script/syntax/lexer.h"

#include <algorithm>
#include <array>

#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

// In alphabetical order. `on off throw from` and the like act as operands; the parser knows.
constexpr std::array<std::u16string_view, 50> kReserved{
    u"about",    u"and",      u"animate",  u"as",    u"at",         u"attributes",  u"by",     u"case",   u"catch",
    u"collect",  u"continue", u"coordsys", u"do",    u"else",       u"exit",        u"fn",     u"for",    u"from",
    u"function", u"global",   u"if",       u"in",    u"local",      u"macroscript", u"mapped", u"max",    u"not",
    u"of",       u"off",      u"on",       u"or",    u"parameters", u"persistent",  u"plugin", u"rcmenu", u"return",
    u"rollout",  u"set",      u"struct",   u"then",  u"throw",      u"to",          u"tool",   u"try",    u"undo",
    u"utility",  u"when",     u"where",    u"while", u"with"};

bool startsNumber(char16_t first, char16_t second) { return isDigit(first) || (first == u'.' && isDigit(second)); }

}  // namespace

Lexer::Lexer(std::shared_ptr<const Source> source, SourceFinder finder) : finder_(std::move(finder)) {
  readings_.push_back({std::move(source), 0});
}

bool Lexer::isReserved(std::u16string_view folded) {
  return std::binary_search(kReserved.begin(), kReserved.end(), folded);
}

char16_t Lexer::peek(std::size_t ahead) const {
  const auto& text = reading().source->text;
  const std::size_t at = reading().at + ahead;
  return at < text.size() ? text[at] : u'\0';
}

bool Lexer::atEnd() const { return reading().at >= reading().source->text.size(); }

Token Lexer::next() {
  Token token = scan();
  const bool isInclude = token.kind == TokenKind::identifier && !afterDot_ && !token.beforeColon &&
                         equalFolded(token.text, u"include") && (peek() == u' ' || peek() == u'\t' || peek() == u'"');
  if (isInclude) {
    const Reading before = reading();
    Token file = scan();
    if (file.kind == TokenKind::string) {
      const auto found = readings_.size() <= kMaxIncludeDepth ? finder_(file.text) : nullptr;
      if (found) {
        readings_.push_back({found, 0});
        Token first = next();
        first.afterNewline |= token.afterNewline;
        first.afterBlank = true;
        return first;
      }
      file.kind = TokenKind::invalid;
      file.text =
          readings_.size() > kMaxIncludeDepth ? u"includes nest too deep" : u"include file not found: " + file.text;
      return file;
    }
    reading() = before;
  }
  afterDot_ = token.isSymbol(u".");
  return token;
}

Token Lexer::scan() {
  Token token;
  skipBlanks(token);
  while (atEnd() && readings_.size() > 1) {  // an included file is over
    readings_.pop_back();
    token.afterBlank = token.afterNewline = true;
    skipBlanks(token);
  }
  token.place = {reading().source, reading().at};
  const char16_t c = peek();
  if (atEnd()) {
    token.kind = TokenKind::end;
  } else if (startsNumber(c, peek(1))) {
    scanNumber(token);
  } else if (isLetter(c)) {
    scanIdentifier(token);
  } else if (c == u'\'') {
    scanQuotedIdentifier(token);
  } else if (c == u'"') {
    scanString(token);
  } else if (c == u'@' && peek(1) == u'"') {
    scanVerbatimString(token);
  } else if (c == u'#') {
    scanName(token);
  } else if (c == u'$') {
    scanPath(token);
  } else {
    scanSymbol(token);
  }
  finish(token);
  return token;
}

void Lexer::finish(Token& token) {
  token.endOffset = reading().at;
  token.beforeBlank = atEnd() || isBlank(peek());
  token.beforeColon = peek() == u':' && peek(1) != u':';
}

void Lexer::skipBlanks(Token& token) {
  while (!atEnd()) {
    const char16_t c = peek();
    if (c == u';' || c == u'\n' || c == u'\r') {
      token.afterNewline = true;
      ++reading().at;
    } else if (isBlank(c)) {
      ++reading().at;
    } else if (!skipComment(token) && !(c == u'\\' && skipContinuation())) {
      return;
    }
    token.afterBlank = true;
  }
}

bool Lexer::skipComment(Token& token) {
  if (peek() == u'-' && peek(1) == u'-') {
    while (!atEnd() && peek() != u'\n' && peek() != u'\r') ++reading().at;
    return true;
  }
  if (peek() != u'/' || peek(1) != u'*') return false;
  const auto& text = reading().source->text;
  const std::size_t end = text.find(u"*/", reading().at + 2);
  const std::size_t stop = end == std::u16string::npos ? text.size() : end + 2;
  const std::u16string_view comment = std::u16string_view(text).substr(reading().at, stop - reading().at);
  if (comment.find_first_of(u"\r\n") != std::u16string_view::npos) token.afterNewline = true;
  reading().at = stop;
  return true;
}

// A '\' as the last thing on a line takes the line end with it. Comments may follow it.
bool Lexer::skipContinuation() {
  const auto& text = reading().source->text;
  std::size_t at = reading().at + 1;
  while (at < text.size() && text[at] != u'\n' && text[at] != u'\r') {
    if (text.compare(at, 2, u"--") == 0) {
      at = std::min(text.find_first_of(u"\r\n", at), text.size());
    } else if (text.compare(at, 2, u"/*") == 0) {
      const std::size_t end = text.find(u"*/", at + 2);
      if (end == std::u16string::npos) return false;
      at = end + 2;
    } else if (isBlank(text[at])) {
      ++at;
    } else {
      return false;
    }
  }
  if (at + 1 < text.size() && text[at] == u'\r' && text[at + 1] == u'\n') ++at;
  reading().at = std::min(at + 1, text.size());
  return true;
}

void Lexer::scanSymbol(Token& token) {
  static constexpr std::array<std::u16string_view, 12> kLong{u"...", u"..", u"==", u"!=", u"<=", u">=",
                                                             u"+=",  u"-=", u"*=", u"/=", u"::", u""};
  static constexpr std::u16string_view kSingle = u"+-*/^=<>()[]{},:.&?";
  const std::u16string_view rest = std::u16string_view(reading().source->text).substr(reading().at);
  token.kind = TokenKind::symbol;
  for (const auto symbol : kLong) {
    if (symbol.empty() || rest.substr(0, symbol.size()) != symbol) continue;
    token.text = symbol;
    reading().at += symbol.size();
    return;
  }
  token.text = rest.substr(0, 1);
  ++reading().at;
  if (kSingle.find(token.text[0]) == std::u16string_view::npos) {
    token.kind = TokenKind::invalid;
    token.text = u"unexpected character: " + token.text;
  }
}

}  // namespace hostkit::script

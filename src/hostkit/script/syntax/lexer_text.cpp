// Words, strings, names and scene paths.
#include "hostkit/script/syntax/lexer.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

bool isWordPart(char16_t c) { return (isLetter(c) && !isBlank(c)) || isDigit(c); }

}  // namespace

void Lexer::scanIdentifier(Token& token) {
  while (!atEnd() && isWordPart(peek())) token.text += reading().source->text[reading().at++];
  std::u16string folded = fold(token.text);
  token.kind = TokenKind::identifier;
  // Any word is allowed after '.' and before the ':' of a keyword argument.
  if (afterDot_ || !isReserved(folded)) return;
  if (peek() == u':' && peek(1) != u':') return;
  token.kind = TokenKind::keyword;
  token.text = std::move(folded);
}

void Lexer::scanQuotedIdentifier(Token& token) {
  ++reading().at;
  token.kind = TokenKind::quotedIdentifier;
  while (!atEnd() && peek() != u'\'') token.text += reading().source->text[reading().at++];
  if (atEnd()) {
    token.kind = TokenKind::invalid;
    token.text = u"unterminated quoted name";
    return;
  }
  ++reading().at;
}

void Lexer::scanName(Token& token) {
  ++reading().at;
  std::size_t ahead = 0;
  while (isBlank(peek(ahead)) && reading().at + ahead < reading().source->text.size()) ++ahead;
  if (peek(ahead) == u'(' || peek(ahead) == u'{') {
    token.kind = peek(ahead) == u'(' ? TokenKind::arrayOpen : TokenKind::bitsOpen;
    token.text = peek(ahead) == u'(' ? u"#(" : u"#{";
    reading().at += ahead + 1;
    return;
  }
  if (peek() == u'\'') {
    scanQuotedIdentifier(token);
  } else {
    while (!atEnd() && isWordPart(peek())) token.text += reading().source->text[reading().at++];
    token.kind = TokenKind::quotedIdentifier;
    if (token.text.empty()) token.kind = TokenKind::invalid;
  }
  if (token.kind == TokenKind::invalid) {
    token.text = u"bad name literal";
  } else {
    token.kind = TokenKind::name;
  }
}

void Lexer::scanString(Token& token) {
  ++reading().at;
  token.kind = TokenKind::string;
  while (!atEnd() && peek() != u'"') {
    if (peek() == u'\\') {
      scanEscape(token);
    } else {
      token.text += reading().source->text[reading().at++];
    }
  }
  if (atEnd()) {
    token.kind = TokenKind::invalid;
    token.text = u"unterminated string";
    return;
  }
  ++reading().at;
}

// A backslash that starts no escape stands for itself, and so does what follows it.
void Lexer::scanEscape(Token& token) {
  const char16_t c = peek(1);
  reading().at += 2;
  switch (c) {
    case u'n':
      token.text += u'\n';
      return;
    case u'r':
      token.text += u'\r';
      return;
    case u't':
      token.text += u'\t';
      return;
    case u'"':
    case u'\\':
    case u'*':
    case u'?':
      token.text += c;
      return;
    case u'%':
      token.percents.push_back(token.text.size());
      token.text += c;
      return;
    default:
      break;
  }
  if (c == u'x' && hexDigit(peek()) >= 0) {
    unsigned code = 0;
    for (int digits = 0; digits < 4 && hexDigit(peek()) >= 0; ++digits, ++reading().at)
      code = code * 16 + static_cast<unsigned>(hexDigit(peek()));
    token.text += static_cast<char16_t>(code);
    return;
  }
  token.text += u'\\';
  --reading().at;  // what follows is read as usual
}

void Lexer::scanVerbatimString(Token& token) {
  const auto& text = reading().source->text;
  const std::size_t start = reading().at + 2, end = text.find(u'"', start);
  token.kind = end == std::u16string::npos ? TokenKind::invalid : TokenKind::string;
  token.text = end == std::u16string::npos ? std::u16string(u"unterminated string") : text.substr(start, end - start);
  reading().at = end == std::u16string::npos ? text.size() : end + 1;
}

// The parts keep their quotes and escapes: what reads the path takes them apart.
void Lexer::scanPath(Token& token) {
  ++reading().at;
  token.kind = TokenKind::path;
  while (!atEnd() && token.kind == TokenKind::path && scanPathPart(token)) {
  }
}

bool Lexer::scanPathPart(Token& token) {
  const char16_t c = peek();
  if (c == u'\'') {
    const auto& text = reading().source->text;
    const std::size_t end = text.find(u'\'', reading().at + 1);
    if (end == std::u16string::npos) {
      token.kind = TokenKind::invalid;
      token.text = u"unterminated quoted name";
      reading().at = text.size();
      return false;
    }
    token.text += text.substr(reading().at, end + 1 - reading().at);
    reading().at = end + 1;
    return true;
  }
  if (c == u'.' && peek(1) == u'.' && peek(2) == u'.') {
    token.text += u"...";
    reading().at += 3;
    return true;
  }
  if (c == u'\\') {  // an escaped wildcard, or the continuation of the line
    if (isBlank(peek(1))) return false;
    token.text += c;
    token.text += peek(1);
    reading().at += 2;
    return reading().at <= reading().source->text.size();
  }
  if (!isWordPart(c) && c != u'*' && c != u'?' && c != u'/') return false;
  if (c == u'/' && peek(1) == u'*') return false;  // a comment
  token.text += c;
  ++reading().at;
  return true;
}

}  // namespace hostkit::script

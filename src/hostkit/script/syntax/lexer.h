// Cuts a script into tokens, one at a time. `include "file"` is carried out here: the file's tokens take its place.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/script/syntax/token.h"

namespace hostkit::script {

// Finds the file of an include or fileIn; null when there is none.
using SourceFinder = std::function<std::shared_ptr<const Source>(const std::u16string& path)>;

class Lexer {
 public:
  Lexer(std::shared_ptr<const Source> source, SourceFinder finder);

  // After the last token: TokenKind::end, again and again. Nothing is thrown: what cannot be read is an invalid token.
  Token next();

  // The word in lower case is one of the language's reserved words.
  static bool isReserved(std::u16string_view folded);

 private:
  struct Reading {
    std::shared_ptr<const Source> source;
    std::size_t at = 0;
  };
  static constexpr std::size_t kMaxIncludeDepth = 16;

  char16_t peek(std::size_t ahead = 0) const;
  bool atEnd() const;
  Reading& reading() { return readings_.back(); }
  const Reading& reading() const { return readings_.back(); }

  Token scan();
  void skipBlanks(Token& token);
  bool skipComment(Token& token);
  bool skipContinuation();
  void scanIdentifier(Token& token);
  void scanQuotedIdentifier(Token& token);
  void scanName(Token& token);
  void scanString(Token& token);
  void scanVerbatimString(Token& token);
  void scanEscape(Token& token);
  void scanPath(Token& token);
  bool scanPathPart(Token& token);
  void scanSymbol(Token& token);
  void scanNumber(Token& token);
  bool scanHex(Token& token);
  bool scanTime(Token& token);
  void scanDecimal(Token& token);
  bool scanFraction();
  void finish(Token& token);

  std::vector<Reading> readings_;
  SourceFinder finder_;
  bool afterDot_ = false;
};

}  // namespace hostkit::script

// Reads tokens into a tree, one top-level expression at a time.
#pragma once

#include <deque>
#include <string>
#include <string_view>

#include "hostkit/script/syntax/lexer.h"
#include "hostkit/script/syntax/syntax_tree.h"

namespace hostkit::script {

// Throws ScriptError (isSyntax, with its place) with the text
// "-- Syntax error: at <token>, expected <what>" + newline + "--  In line: <text up to the error>".
class ScriptParser {
 public:
  ScriptParser(std::shared_ptr<const Source> source, SourceFinder finder);

  // The next expression of the script, made in `tree`; null after the last one.
  Node* nextExpression(Tree& tree);
  // How much of the text has been read, up to the end of the last expression and what blanks follow it.
  std::size_t consumed();

 private:
  // Nesting that is an error past this: what keeps the native stack bounded here and in the compiler.
  static constexpr int kMaxDepth = 400;
  class Nesting;

  // tokens
  const Token& peek(std::size_t ahead = 0);
  Token take();
  bool isSymbol(std::u16string_view symbol) { return peek().isSymbol(symbol); }
  bool isSymbolHere(std::u16string_view symbol) { return isSymbol(symbol) && !peek().afterNewline; }
  bool isKeyword(std::u16string_view word) { return peek().isKeyword(word); }
  bool isWord(std::u16string_view word);  // an identifier or keyword spelled so
  bool acceptSymbol(std::u16string_view symbol);
  bool acceptKeyword(std::u16string_view word);
  void expectSymbol(std::u16string_view symbol);
  void expectKeyword(std::u16string_view word);
  std::u16string expectIdentifier();
  [[noreturn]] void fail(std::u16string_view expected);
  [[noreturn]] void failCompile(std::u16string_view text);
  [[noreturn]] void failAt(const Token& token, std::u16string_view message);

  // expressions
  Node* expression();
  Node* assignment();
  Node* binary(int level);
  Node* logicalNot();
  Node* power();
  Node* conversion();
  Node* unary();
  Node* call();
  void arguments(CallNode& into);
  bool atArgument(const Node& callee, bool first);
  Node* argument();
  Node* operand();
  Node* signedOperand();
  Node* accessors(Node* base);
  bool bracketHoldsComma();
  bool startsOperand(const Token& token);
  Node* factor();
  Node* keywordFactor();
  Node* block();
  Node* arrayLiteral();
  Node* bitArrayLiteral();
  Node* pointLiteral();

  // statements
  Node* statement(std::u16string_view word);
  Node* declaration(bool isGlobal);
  Node* ifStatement();
  Node* whileLoop();
  Node* doLoop();
  Node* forLoop();
  Node* caseStatement();
  Node* caseLabel();
  Node* tryStatement();
  Node* exitStatement();
  Node* returnStatement();
  FunctionNode* functionDefinition();
  void parameterList(FunctionNode& function);
  StructNode* structDefinition();
  void structMember(StructNode& into, bool& isPrivate);

  // contexts
  bool startsContext();
  Node* contextExpression();
  bool contextPart(ContextNode& into);
  bool startsBoolean();
  Node* contextBoolean();
  Node* coordinateSystem();
  Node* setContext();
  Node* maxCommand();
  Node* whenHandler();

  // definitions of user interface
  Node* definition();
  void definitionHead(bool isPlugin, DefinitionNode& into);
  void namedOperands(bool acrossLines);
  void body();
  void bodyItem();
  bool isHandler();
  bool isControl();
  void control();
  void group();
  void submenu();
  void handler();
  void parameterBlock();

  Lexer lexer_;
  std::deque<Token> ahead_;
  Tree* tree_ = nullptr;
  int depth_ = 0;
};

// Counts how deep the parser stands in its own recursion.
class ScriptParser::Nesting {
 public:
  // With 0 levels it only counts what deeper() adds.
  explicit Nesting(ScriptParser& parser, int levels = 1) : parser_(parser), levels_(levels) {
    if (parser_.depth_ + levels > kMaxDepth) parser_.failCompile(u"Expressions nest too deep");
    parser_.depth_ += levels;
  }
  ~Nesting() { parser_.depth_ -= levels_; }
  Nesting(const Nesting&) = delete;
  Nesting& operator=(const Nesting&) = delete;
  // A chain of operators or accessors makes the tree deeper without recursion here.
  void deeper() {
    if (parser_.depth_ >= kMaxDepth) parser_.failCompile(u"Expressions nest too deep");
    ++parser_.depth_;
    ++levels_;
  }

 private:
  ScriptParser& parser_;
  int levels_;
};

}  // namespace hostkit::script

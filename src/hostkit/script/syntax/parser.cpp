// Tokens, the levels of operators, and calls.
#include "hostkit/script/syntax/parser.h"

#include <array>

#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

struct OperatorLevel {
  std::u16string_view symbol;
  int level;
  BinaryOperator op;
};
constexpr std::array<OperatorLevel, 10> kOperators{{{u"==", 2, BinaryOperator::equal},
                                                    {u"!=", 2, BinaryOperator::notEqual},
                                                    {u"<", 2, BinaryOperator::less},
                                                    {u">", 2, BinaryOperator::greater},
                                                    {u"<=", 2, BinaryOperator::lessEqual},
                                                    {u">=", 2, BinaryOperator::greaterEqual},
                                                    {u"+", 3, BinaryOperator::add},
                                                    {u"-", 3, BinaryOperator::subtract},
                                                    {u"*", 4, BinaryOperator::multiply},
                                                    {u"/", 4, BinaryOperator::divide}}};
constexpr int kOrLevel = 0, kAndLevel = 1, kCompareLevel = 2, kPowerLevel = 5;

const OperatorLevel* operatorAt(const Token& token, int level) {
  if (token.kind != TokenKind::symbol || token.afterNewline) return nullptr;
  for (const auto& each : kOperators)
    if (each.level == level && each.symbol == token.text) return &each;
  return nullptr;
}

}  // namespace

ScriptParser::ScriptParser(std::shared_ptr<const Source> source, SourceFinder finder)
    : lexer_(std::move(source), std::move(finder)) {}

Node* ScriptParser::nextExpression(Tree& tree) {
  tree_ = &tree;
  depth_ = 0;
  if (peek().kind == TokenKind::end) return nullptr;
  return expression();
}

std::size_t ScriptParser::consumed() { return peek().place.offset; }

const Token& ScriptParser::peek(std::size_t ahead) {
  while (ahead_.size() <= ahead) ahead_.push_back(lexer_.next());
  return ahead_[ahead];
}

Token ScriptParser::take() {
  Token token = peek();
  if (token.kind == TokenKind::invalid) failAt(token, u"-- Syntax error: " + token.text);
  ahead_.pop_front();
  return token;
}

bool ScriptParser::isWord(std::u16string_view word) {
  const Token& token = peek();
  return (token.kind == TokenKind::identifier || token.kind == TokenKind::keyword) && equalFolded(token.text, word);
}

bool ScriptParser::acceptSymbol(std::u16string_view symbol) {
  if (!isSymbol(symbol)) return false;
  take();
  return true;
}

bool ScriptParser::acceptKeyword(std::u16string_view word) {
  if (!isKeyword(word)) return false;
  take();
  return true;
}

void ScriptParser::expectSymbol(std::u16string_view symbol) {
  if (!acceptSymbol(symbol)) fail(symbol);
}

void ScriptParser::expectKeyword(std::u16string_view word) {
  if (!acceptKeyword(word)) fail(word);
}

std::u16string ScriptParser::expectIdentifier() {
  const Token& token = peek();
  const bool operandWord =
      token.kind == TokenKind::keyword &&
      (token.text == u"on" || token.text == u"off" || token.text == u"from" || token.text == u"max" ||
       token.text == u"throw" || token.text == u"parameters" || token.text == u"tool");
  if (token.kind != TokenKind::identifier && token.kind != TokenKind::quotedIdentifier && !operandWord) fail(u"<name>");
  return take().text;
}

void ScriptParser::fail(std::u16string_view expected) {
  const Token& token = peek();
  if (token.kind == TokenKind::invalid) failAt(token, u"-- Syntax error: " + token.text);
  if (token.kind == TokenKind::end) failAt(token, u"-- Compile error: Unexpected end of script");
  const auto& text = token.place.source->text;
  const std::u16string shown = text.substr(token.place.offset, token.endOffset - token.place.offset);
  failAt(token, u"-- Syntax error: at " + shown + u", expected " + std::u16string(expected));
}

void ScriptParser::failCompile(std::u16string_view text) {
  failAt(peek(), u"-- Compile error: " + std::u16string(text));
}

void ScriptParser::failAt(const Token& token, std::u16string_view message) {
  const auto& source = *token.place.source;
  const LineColumn at = source.lineColumn(token.place.offset);
  const std::size_t shown = at.column - 1 + (token.endOffset - token.place.offset);
  std::u16string_view line = source.line(at.line);
  ScriptError error(std::u16string(message) + u"\n--  In line: " + std::u16string(line.substr(0, shown)), token.place);
  error.setSyntax();
  throw error;
}

Node* ScriptParser::expression() {
  const Nesting nesting(*this);
  const Token& token = peek();
  if (startsContext()) return contextExpression();
  if (token.kind == TokenKind::keyword) {
    const std::u16string word = token.text;  // the token goes when it is taken
    if (Node* made = statement(word)) return made;
  }
  return assignment();
}

Node* ScriptParser::assignment() {
  Node* target = binary(kOrLevel);
  const Token& token = peek();
  if (token.kind != TokenKind::symbol || token.afterNewline) return target;
  auto* made = tree_->make<AssignNode>(token.place);
  if (token.text == u"+=") {
    made->op = BinaryOperator::add;
  } else if (token.text == u"-=") {
    made->op = BinaryOperator::subtract;
  } else if (token.text == u"*=") {
    made->op = BinaryOperator::multiply;
  } else if (token.text == u"/=") {
    made->op = BinaryOperator::divide;
  } else if (token.text != u"=") {
    return target;
  }
  take();
  made->target = target;
  made->value = expression();
  return made;
}

Node* ScriptParser::binary(int level) {
  if (level == kCompareLevel && isKeyword(u"not")) return logicalNot();
  if (level == kPowerLevel) return power();
  Nesting nesting(*this, 0);
  Node* left = binary(level + 1);
  for (;;) {
    const Token token = peek();
    if (level == kOrLevel || level == kAndLevel) {
      if (token.afterNewline || !token.isKeyword(level == kOrLevel ? u"or" : u"and")) return left;
      take();
      auto* made = tree_->make<LogicalNode>(token.place);
      made->isAnd = level == kAndLevel;
      made->left = left;
      made->right = binary(level + 1);
      left = made;
    } else {
      const OperatorLevel* found = operatorAt(token, level);
      if (!found) return left;
      take();
      auto* made = tree_->make<BinaryNode>(token.place);
      made->op = found->op;
      made->left = left;
      made->right = binary(level + 1);
      left = made;
    }
    nesting.deeper();
  }
}

Node* ScriptParser::logicalNot() {
  const Nesting nesting(*this);
  auto* made = tree_->make<UnaryNode>(take().place, NodeKind::logicalNot);
  made->operand = binary(kCompareLevel);
  return made;
}

Node* ScriptParser::power() {
  Node* base = conversion();
  if (!isSymbolHere(u"^")) return base;
  const Nesting nesting(*this);
  auto* made = tree_->make<BinaryNode>(take().place);
  made->op = BinaryOperator::power;
  made->left = base;
  made->right = power();
  return made;
}

Node* ScriptParser::conversion() {
  Nesting nesting(*this, 0);
  Node* value = unary();
  while (isKeyword(u"as") && !peek().afterNewline) {
    auto* made = tree_->make<ConvertNode>(take().place);
    made->operand = value;
    made->target = operand();
    value = made;
    nesting.deeper();
  }
  return value;
}

Node* ScriptParser::unary() {
  const bool negates = isSymbol(u"-");
  if (!negates && !isSymbol(u"*")) return call();
  const Nesting nesting(*this);
  auto* made = tree_->make<UnaryNode>(take().place, negates ? NodeKind::negate : NodeKind::dereference);
  made->operand = unary();
  return made;
}

Node* ScriptParser::call() {
  if (isSymbol(u"&")) return argument();
  Node* callee = operand();
  for (Nesting nesting(*this, 0); isSymbolHere(u"(") && peek(1).isSymbol(u")"); nesting.deeper()) {
    auto* made = tree_->make<CallNode>(callee->place);
    take();
    take();
    made->callee = callee;
    const bool goesOn = !peek().afterBlank && (isSymbol(u".") || isSymbol(u"["));  // f().x
    if (!goesOn) return made;
    callee = accessors(made);
  }
  if (!atArgument(*callee, true)) return callee;
  auto* made = tree_->make<CallNode>(callee->place);
  made->callee = callee;
  arguments(*made);
  return made;
}

void ScriptParser::arguments(CallNode& into) {
  for (bool first = true; atArgument(*into.callee, first); first = false) {
    const Token& token = peek();
    if (token.kind == TokenKind::identifier && token.beforeColon) {
      std::u16string name = take().text;
      expectSymbol(u":");
      into.keywords.emplace_back(std::move(name), argument());
    } else {
      into.arguments.push_back(argument());
    }
  }
}

// An argument stands on the line of the call. A '-' starts one only when a blank stands before it and none after.
bool ScriptParser::atArgument(const Node& callee, bool first) {
  const Token& token = peek();
  if (token.afterNewline) return false;
  if (token.isSymbol(u"-")) {
    const bool literal = callee.kind == NodeKind::number || callee.kind == NodeKind::text;
    return token.afterBlank && !token.beforeBlank && !(first && literal);
  }
  if (token.isSymbol(u"&")) return true;
  return startsOperand(token);
}

Node* ScriptParser::argument() {
  if (!isSymbol(u"&")) return signedOperand();
  auto* made = tree_->make<UnaryNode>(take().place, NodeKind::reference);
  made->operand = operand();
  return made;
}

Node* ScriptParser::signedOperand() {
  if (!isSymbol(u"-")) return operand();
  const Nesting nesting(*this);
  auto* made = tree_->make<UnaryNode>(take().place, NodeKind::negate);
  made->operand = signedOperand();
  return made;
}

}  // namespace hostkit::script

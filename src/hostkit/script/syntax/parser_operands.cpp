// Operands: literals, variables, brackets, and what is hung on them with '.' and '[ ]'.
#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

template <class T>
T* word(Tree& tree, NodeKind kind, const Token& token) {
  T* made = tree.make<T>(token.place, kind);
  made->text = token.text;
  made->percents = token.percents;
  return made;
}

// Reserved words that stand for values or plain variables.
bool isOperandWord(std::u16string_view text) {
  return text == u"on" || text == u"off" || text == u"from" || text == u"throw" || text == u"max" || text == u"tool" ||
         text == u"parameters";
}

}  // namespace

bool ScriptParser::startsOperand(const Token& token) {
  switch (token.kind) {
    case TokenKind::identifier:
    case TokenKind::quotedIdentifier:
    case TokenKind::name:
    case TokenKind::string:
    case TokenKind::number:
    case TokenKind::path:
    case TokenKind::arrayOpen:
    case TokenKind::bitsOpen:
      return true;
    case TokenKind::keyword:
      return isOperandWord(token.text);
    case TokenKind::symbol:
      return token.text == u"(" || token.text == u"[" || token.text == u"::" || token.text == u"?";
    case TokenKind::end:
    case TokenKind::invalid:
      break;
  }
  return false;
}

Node* ScriptParser::operand() { return accessors(factor()); }

Node* ScriptParser::accessors(Node* base) {
  Nesting nesting(*this, 0);
  for (;;) {
    if (isSymbolHere(u".")) {
      auto* made = tree_->make<PropertyNode>(take().place);
      const Token name = take();
      if (name.kind != TokenKind::identifier && name.kind != TokenKind::quotedIdentifier &&
          name.kind != TokenKind::keyword)
        failAt(name, u"-- Syntax error: at " + name.text + u", expected <property name>");
      made->base = base;
      made->name = name.text;
      made->place = name.place;
      base = made;
    } else if (isSymbolHere(u"[") && !bracketHoldsComma()) {
      auto* made = tree_->make<IndexNode>(take().place);
      made->base = base;
      made->index = expression();
      expectSymbol(u"]");
      base = made;
    } else {
      return base;
    }
    nesting.deeper();
  }
}

// The bracket that opens here is a point, not an index.
bool ScriptParser::bracketHoldsComma() {
  int open = 0;
  for (std::size_t i = 0;; ++i) {
    const Token& token = peek(i);
    if (token.kind == TokenKind::end || token.kind == TokenKind::invalid) return false;
    if (token.kind == TokenKind::arrayOpen || token.kind == TokenKind::bitsOpen) ++open;
    if (token.kind != TokenKind::symbol) continue;
    if (token.text == u"(" || token.text == u"[" || token.text == u"{") ++open;
    if (token.text == u")" || token.text == u"]" || token.text == u"}") --open;
    if (open <= 0) return false;
    if (open == 1 && token.text == u",") return true;
  }
}

Node* ScriptParser::factor() {
  const Token& token = peek();
  switch (token.kind) {
    case TokenKind::number: {
      const Token taken = take();
      auto* made = tree_->make<NumberNode>(taken.place);
      made->number = taken.number;
      return made;
    }
    case TokenKind::string:
      return word<WordNode>(*tree_, NodeKind::text, take());
    case TokenKind::name:
      return word<WordNode>(*tree_, NodeKind::name, take());
    case TokenKind::path:
      return word<WordNode>(*tree_, NodeKind::path, take());
    case TokenKind::quotedIdentifier:
    case TokenKind::identifier:
      return word<WordNode>(*tree_, NodeKind::variable, take());
    case TokenKind::keyword:
      return keywordFactor();
    case TokenKind::arrayOpen:
      return arrayLiteral();
    case TokenKind::bitsOpen:
      return bitArrayLiteral();
    case TokenKind::symbol:
      break;
    case TokenKind::end:
    case TokenKind::invalid:
      fail(u"<factor>");
  }
  if (token.text == u"(") return block();
  if (token.text == u"[") return pointLiteral();
  if (token.text == u"?") return tree_->make<ListNode>(take().place, NodeKind::lastResult);
  if (token.text != u"::") fail(u"<factor>");
  take();
  const Place place = peek().place;
  auto* made = tree_->make<WordNode>(place, NodeKind::variable);
  made->text = expectIdentifier();
  made->forceGlobal = true;
  return made;
}

Node* ScriptParser::keywordFactor() {
  const Token& token = peek();
  if (!isOperandWord(token.text)) fail(u"<factor>");
  if (token.text == u"on" || token.text == u"off") {
    auto* made = tree_->make<BooleanNode>(token.place);
    made->value = token.text == u"on";
    take();
    return made;
  }
  return word<WordNode>(*tree_, NodeKind::variable, take());
}

Node* ScriptParser::block() {
  auto* made = tree_->make<ListNode>(take().place, NodeKind::block);
  while (!isSymbol(u")")) {
    if (peek().kind == TokenKind::end) fail(u")");
    made->items.push_back(expression());
  }
  take();
  return made;
}

Node* ScriptParser::arrayLiteral() {
  auto* made = tree_->make<ListNode>(take().place, NodeKind::array);
  if (acceptSymbol(u")")) return made;
  do {
    made->items.push_back(expression());
  } while (acceptSymbol(u","));
  expectSymbol(u")");
  return made;
}

Node* ScriptParser::bitArrayLiteral() {
  auto* made = tree_->make<BitArrayNode>(take().place);
  if (acceptSymbol(u"}")) return made;
  do {
    Node* first = expression();
    Node* last = acceptSymbol(u"..") ? expression() : nullptr;
    made->ranges.emplace_back(first, last);
  } while (acceptSymbol(u","));
  expectSymbol(u"}");
  return made;
}

Node* ScriptParser::pointLiteral() {
  auto* made = tree_->make<ListNode>(take().place, NodeKind::point);
  do {
    made->items.push_back(expression());
  } while (acceptSymbol(u","));
  if (made->items.size() < 2 || made->items.size() > 4) fail(u"<2 to 4 coordinates>");
  expectSymbol(u"]");
  return made;
}

}  // namespace hostkit::script

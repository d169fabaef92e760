// Statements: declarations, conditionals, loops, case and try.
#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

// Null when the word starts no statement.
Node* ScriptParser::statement(std::u16string_view word) {
  if (word == u"if") return ifStatement();
  if (word == u"for") return forLoop();
  if (word == u"local" || word == u"global" || word == u"persistent") {
    take();
    if (word == u"persistent") expectKeyword(u"global");
    return declaration(word != u"local");
  }
  if (word == u"fn" || word == u"function" || word == u"mapped") return functionDefinition();
  if (word == u"struct") return structDefinition();
  if (word == u"while") return whileLoop();
  if (word == u"do") return doLoop();
  if (word == u"case") return caseStatement();
  if (word == u"try") return tryStatement();
  if (word == u"return") return returnStatement();
  if (word == u"exit") return exitStatement();
  if (word == u"continue") return tree_->make<ListNode>(take().place, NodeKind::continueLoop);
  if (word == u"set") return setContext();
  if (word == u"when") return whenHandler();
  if (word == u"max") {
    const Token& after = peek(1);
    const bool command = !after.afterNewline && !after.beforeColon &&
                         (after.kind == TokenKind::identifier || after.kind == TokenKind::keyword) &&
                         !after.isKeyword(u"as") && !after.isKeyword(u"and") && !after.isKeyword(u"or") &&
                         !after.isKeyword(u"then") && !after.isKeyword(u"do") && !after.isKeyword(u"to");
    return command ? maxCommand() : nullptr;
  }
  const bool defines = word == u"rollout" || word == u"utility" || word == u"tool" || word == u"rcmenu" ||
                       word == u"macroscript" || word == u"attributes" || word == u"plugin";
  const Token& after = peek(1);
  if (defines && !after.afterNewline && (word != u"tool" || after.kind == TokenKind::identifier)) return definition();
  return nullptr;
}

Node* ScriptParser::declaration(bool isGlobal) {
  if (isKeyword(u"fn") || isKeyword(u"function") || isKeyword(u"mapped")) {
    FunctionNode* made = functionDefinition();
    made->declaredGlobal = isGlobal;
    return made;
  }
  if (isKeyword(u"struct")) {
    StructNode* made = structDefinition();
    made->declaredGlobal = isGlobal;
    return made;
  }
  if (isKeyword(u"rollout")) {
    auto* made = static_cast<DefinitionNode*>(definition());
    made->declaredGlobal = isGlobal;
    return made;
  }
  auto* made = tree_->make<DeclareNode>(peek().place);
  made->isGlobal = isGlobal;
  do {
    std::u16string name = expectIdentifier();
    Node* value = nullptr;
    if (isSymbolHere(u"=")) {
      take();
      value = expression();
    }
    made->variables.emplace_back(std::move(name), value);
  } while (acceptSymbol(u","));
  return made;
}

Node* ScriptParser::ifStatement() {
  auto* made = tree_->make<IfNode>(take().place);
  made->test = expression();
  if (acceptKeyword(u"do")) {
    made->then = expression();
    return made;
  }
  if (!acceptKeyword(u"then")) fail(u"then or do");
  made->then = expression();
  if (acceptKeyword(u"else")) made->otherwise = expression();
  return made;
}

Node* ScriptParser::whileLoop() {
  auto* made = tree_->make<LoopNode>(take().place, NodeKind::whileDo);
  made->test = expression();
  expectKeyword(u"do");
  made->body = expression();
  return made;
}

Node* ScriptParser::doLoop() {
  auto* made = tree_->make<LoopNode>(take().place, NodeKind::doWhile);
  made->body = expression();
  expectKeyword(u"while");
  made->test = expression();
  return made;
}

Node* ScriptParser::forLoop() {
  auto* made = tree_->make<ForNode>(take().place);
  do {
    made->names.push_back(expectIdentifier());
  } while (made->names.size() < 3 && acceptSymbol(u","));
  if (!acceptSymbol(u"=")) expectKeyword(u"in");
  made->from = expression();
  if (acceptKeyword(u"to")) {
    made->to = expression();
    if (acceptKeyword(u"by")) made->by = expression();
  }
  if (acceptKeyword(u"while")) made->whileTest = expression();
  if (acceptKeyword(u"where")) made->where = expression();
  made->collects = acceptKeyword(u"collect");
  if (!made->collects && !acceptKeyword(u"do")) fail(u"do or collect");
  made->body = expression();
  return made;
}

Node* ScriptParser::caseStatement() {
  auto* made = tree_->make<CaseNode>(take().place);
  if (!isKeyword(u"of")) made->subject = expression();
  expectKeyword(u"of");
  expectSymbol(u"(");
  while (!isSymbol(u")")) {
    const bool isDefault =
        peek().kind == TokenKind::identifier && equalFolded(peek().text, u"default") && peek(1).isSymbol(u":");
    Node* label = nullptr;
    if (isDefault) {
      take();
    } else {
      label = caseLabel();
    }
    expectSymbol(u":");
    Node* value = expression();
    made->items.emplace_back(label, value);
  }
  take();
  return made;
}

// Before its ':' every word is a name to the lexer; here `on` and `off` are what they are elsewhere.
Node* ScriptParser::caseLabel() {
  const Token& token = peek();
  const bool isOn = equalFolded(token.text, u"on");
  if (token.kind != TokenKind::identifier || !(isOn || equalFolded(token.text, u"off")) || !peek(1).isSymbol(u":"))
    return signedOperand();
  auto* made = tree_->make<BooleanNode>(take().place);
  made->value = isOn;
  return made;
}

Node* ScriptParser::tryStatement() {
  auto* made = tree_->make<TryNode>(take().place);
  made->body = expression();
  expectKeyword(u"catch");
  made->handler = expression();
  return made;
}

Node* ScriptParser::exitStatement() {
  auto* made = tree_->make<UnaryNode>(take().place, NodeKind::exitLoop);
  if (isKeyword(u"with") && !peek().afterNewline) {
    take();
    made->operand = expression();
  }
  return made;
}

Node* ScriptParser::returnStatement() {
  auto* made = tree_->make<UnaryNode>(take().place, NodeKind::returnFrom);
  const Token& token = peek();
  const bool bare = token.afterNewline || token.kind == TokenKind::end || token.isSymbol(u")") ||
                    token.isKeyword(u"else") || token.isKeyword(u"catch");
  if (!bare) made->operand = expression();
  return made;
}

}  // namespace hostkit::script

// Contexts (`with undo off`, `at time 10`, `in coordsys world`, ...), `set`, max commands and when handlers.
#include <array>

#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

constexpr std::array<std::u16string_view, 7> kWithWords{u"quiet",
                                                        u"pivot",
                                                        u"printAllElements",
                                                        u"dontRepeatMessages",
                                                        u"macroRecorderEmitterEnabled",
                                                        u"mxsCallstackCaptureEnabled",
                                                        u"defaultAction"};

}  // namespace

bool ScriptParser::startsContext() {
  const Token& token = peek();
  if (token.kind != TokenKind::keyword) return false;
  return token.text == u"with" || token.text == u"animate" || token.text == u"undo" || token.text == u"at" ||
         token.text == u"in" || token.text == u"coordsys" || token.text == u"about";
}

Node* ScriptParser::contextExpression() {
  auto* made = tree_->make<ContextNode>(peek().place);
  do {
    if (!contextPart(*made)) fail(u"<context>");
  } while (acceptSymbol(u",") || startsContext());
  made->body = expression();
  return made;
}

bool ScriptParser::contextPart(ContextNode& into) {
  acceptKeyword(u"with");
  ContextPart part;
  if (acceptKeyword(u"animate")) {
    part = {u"animate", contextBoolean()};
  } else if (acceptKeyword(u"undo")) {
    part.word = u"undo";
    part.operand = contextBoolean();
    if (part.operand->kind == NodeKind::text || startsBoolean()) {  // it was the label
      part.label = part.operand;
      part.operand = contextBoolean();
    }
  } else if (acceptKeyword(u"at")) {
    if (!isWord(u"time") && !isWord(u"level")) fail(u"time or level");
    part.word = u"at " + fold(take().text);
    part.operand = signedOperand();
  } else if (acceptKeyword(u"in")) {
    if (isKeyword(u"coordsys")) return contextPart(into);
    part = {u"in", operand()};
  } else if (acceptKeyword(u"coordsys")) {
    part = {u"coordsys", coordinateSystem()};
  } else if (acceptKeyword(u"about")) {
    part.word = u"about";
    if (!acceptKeyword(u"coordsys")) part.operand = operand();
  } else if (isWord(u"redraw")) {
    take();
    part = {u"redraw", contextBoolean()};
  } else {
    for (const auto word : kWithWords)
      if (isWord(word)) part.word = fold(word);
    if (part.word.empty()) return false;
    take();
    part.operand = operand();
  }
  into.parts.push_back(std::move(part));
  return true;
}

bool ScriptParser::startsBoolean() {
  return isKeyword(u"on") || isKeyword(u"off") || isWord(u"true") || isWord(u"false");
}

Node* ScriptParser::contextBoolean() { return operand(); }

// Null for `local`.
Node* ScriptParser::coordinateSystem() { return acceptKeyword(u"local") ? nullptr : operand(); }

Node* ScriptParser::setContext() {
  auto* made = tree_->make<ContextNode>(take().place);
  const Token word = take();
  const std::u16string name = fold(word.text);
  const bool known = name == u"animate" || name == u"time" || name == u"coordsys" || name == u"about" ||
                     name == u"level" || name == u"in" || name == u"undo";
  if (!known) failAt(word, u"-- Syntax error: at " + word.text + u", expected <context>");
  made->parts.push_back({u"set " + name, coordinateSystem()});
  return made;
}

Node* ScriptParser::maxCommand() {
  auto* made = tree_->make<DefinitionNode>(peek().place, NodeKind::maxCommand);
  made->what = take().text;
  while (!peek().afterNewline && (peek().kind == TokenKind::identifier || peek().kind == TokenKind::keyword ||
                                  peek().kind == TokenKind::number))
    made->what += u" " + take().text;
  return made;
}

// Read for its syntax; the handler is not kept.
Node* ScriptParser::whenHandler() {
  auto* made = tree_->make<DefinitionNode>(take().place, NodeKind::when);
  made->what = u"when";
  while (!isKeyword(u"do")) {
    if (peek().kind == TokenKind::identifier && peek().beforeColon) {
      take();
      expectSymbol(u":");
    } else {
      operand();
    }
  }
  take();
  expression();
  return made;
}

}  // namespace hostkit::script

// Definitions of user interface (rollouts, utilities, macros, plugins, menus, tools): read for their syntax. Of what
// they hold nothing is kept but the name.
#include <algorithm>
#include <array>

#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

constexpr std::array<std::u16string_view, 31> kControls{
    u"activexcontrol", u"angle",          u"bitmap",       u"button",       u"checkbox",      u"checkbutton",
    u"colorpicker",    u"combobox",       u"curvecontrol", u"custom",       u"dotnetcontrol", u"dropdownlist",
    u"edittext",       u"groupbox",       u"hyperlink",    u"imgtag",       u"label",         u"listbox",
    u"mapbutton",      u"materialbutton", u"menuitem",     u"multilistbox", u"pickbutton",    u"popupmenu",
    u"progressbar",    u"radiobuttons",   u"separator",    u"slider",       u"spinner",       u"subrollout",
    u"timer"};

}  // namespace

Node* ScriptParser::definition() {
  const Nesting nesting(*this);
  auto* made = tree_->make<DefinitionNode>(peek().place, NodeKind::definition);
  made->what = take().text;
  definitionHead(made->what == u"plugin", *made);
  expectSymbol(u"(");
  body();
  expectSymbol(u")");
  return made;
}

void ScriptParser::definitionHead(bool isPlugin, DefinitionNode& into) {
  into.name = expectIdentifier();
  if (isPlugin) into.name = expectIdentifier();
  const Token& title = peek();
  const bool hasTitle = !isPlugin && !title.beforeColon && startsOperand(title) &&
                        (!title.isSymbol(u"(") || !title.afterNewline) &&
                        !(title.kind == TokenKind::identifier && title.beforeColon);
  // A parenthesis is a title only if the body follows it: a lone one is the body.
  if (hasTitle && !title.isSymbol(u"(")) {
    operand();
  } else if (title.isSymbol(u"(")) {
    int open = 0;
    std::size_t i = 0;
    do {
      const Token& token = peek(i++);
      if (token.kind == TokenKind::end || token.kind == TokenKind::invalid) break;
      if (token.isSymbol(u"(") || token.kind == TokenKind::arrayOpen) ++open;
      if (token.isSymbol(u")")) --open;
    } while (open > 0);
    const Token& after = peek(i);
    if (after.isSymbol(u"(") || (after.kind == TokenKind::identifier && after.beforeColon && !after.afterNewline))
      operand();
  }
  namedOperands(true);
}

void ScriptParser::namedOperands(bool acrossLines) {
  while (peek().kind == TokenKind::identifier && peek().beforeColon && (acrossLines || !peek().afterNewline)) {
    take();
    expectSymbol(u":");
    argument();
  }
}

void ScriptParser::body() {
  const Nesting nesting(*this);
  while (!isSymbol(u")")) {
    if (peek().kind == TokenKind::end) fail(u")");
    bodyItem();
  }
}

void ScriptParser::bodyItem() {
  if (isHandler()) {
    handler();
  } else if (isKeyword(u"parameters")) {
    parameterBlock();
  } else if (isWord(u"group") && (peek(1).kind == TokenKind::string || peek(1).isSymbol(u"("))) {
    group();
  } else if (isWord(u"submenu") && peek(1).kind == TokenKind::string) {
    submenu();
  } else if (isControl()) {
    control();
  } else {
    expression();
  }
}

bool ScriptParser::isHandler() {
  return isKeyword(u"on") && !peek(1).afterNewline &&
         (peek(1).kind == TokenKind::identifier || peek(1).kind == TokenKind::quotedIdentifier ||
          peek(1).kind == TokenKind::keyword);
}

bool ScriptParser::isControl() {
  const Token& word = peek();
  if (word.kind != TokenKind::identifier || word.beforeColon) return false;
  if (std::find(kControls.begin(), kControls.end(), fold(word.text)) == kControls.end()) return false;
  const Token& name = peek(1);
  return !name.afterNewline && (name.kind == TokenKind::identifier || name.kind == TokenKind::quotedIdentifier ||
                                name.kind == TokenKind::keyword);
}

void ScriptParser::control() {
  take();
  take();
  // On one line the next clause of the body may follow.
  const auto continues = [&] {
    return !peek().afterNewline && startsOperand(peek()) && !peek().beforeColon && !isHandler() && !isControl();
  };
  if (continues() || peek().kind == TokenKind::string) operand();
  while (continues()) operand();
  namedOperands(true);
}

void ScriptParser::group() {
  take();
  if (peek().kind == TokenKind::string) take();
  expectSymbol(u"(");
  body();
  expectSymbol(u")");
}

void ScriptParser::submenu() {
  take();
  take();
  namedOperands(true);
  expectSymbol(u"(");
  body();
  expectSymbol(u")");
}

void ScriptParser::handler() {
  take();
  while (!isKeyword(u"do") && !isKeyword(u"return")) {
    const TokenKind kind = peek().kind;
    if (kind != TokenKind::identifier && kind != TokenKind::quotedIdentifier && kind != TokenKind::keyword)
      fail(u"do or return");
    take();
  }
  take();
  expression();
}

void ScriptParser::parameterBlock() {
  take();
  expectIdentifier();
  namedOperands(true);
  expectSymbol(u"(");
  while (!isSymbol(u")")) {
    if (isKeyword(u"on")) {
      handler();
      continue;
    }
    expectIdentifier();
    while (peek().kind == TokenKind::identifier && peek().beforeColon) {
      take();
      expectSymbol(u":");
      if (!isSymbol(u"(")) {
        argument();
        continue;
      }
      take();  // a list of controls, or an expression
      while (!isSymbol(u")")) {
        expression();
        acceptSymbol(u",");
      }
      take();
    }
    acceptSymbol(u",");
  }
  take();
}

}  // namespace hostkit::script

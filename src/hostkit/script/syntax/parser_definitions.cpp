// Functions and structures.
#include "hostkit/script/syntax/errors.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

FunctionNode* ScriptParser::functionDefinition() {
  auto* made = tree_->make<FunctionNode>(peek().place);
  made->isMapped = acceptKeyword(u"mapped");
  if (!acceptKeyword(u"fn") && !acceptKeyword(u"function")) fail(u"fn");
  made->name = expectIdentifier();
  parameterList(*made);
  expectSymbol(u"=");
  made->body = expression();
  return made;
}

void ScriptParser::parameterList(FunctionNode& function) {
  while (!isSymbol(u"=")) {
    Parameter parameter;
    parameter.byReference = acceptSymbol(u"&");
    const bool keyword = peek().beforeColon;
    parameter.name = expectIdentifier();
    if (keyword) {
      parameter.isKeyword = true;
      expectSymbol(u":");
      const Token& token = peek();
      const bool nextParameter = (token.kind == TokenKind::identifier && token.beforeColon) || token.isSymbol(u"=");
      if (!nextParameter && (startsOperand(token) || token.isSymbol(u"-"))) parameter.defaultValue = signedOperand();
    }
    for (const Parameter& earlier : function.parameters)
      if (equalFolded(earlier.name, parameter.name)) failCompile(u"Duplicate parameter name: " + parameter.name);
    function.parameters.push_back(std::move(parameter));
  }
}

StructNode* ScriptParser::structDefinition() {
  auto* made = tree_->make<StructNode>(take().place);
  made->name = expectIdentifier();
  expectSymbol(u"(");
  bool isPrivate = false;
  while (!isSymbol(u")")) {
    structMember(*made, isPrivate);
    if (!acceptSymbol(u",")) break;
  }
  expectSymbol(u")");
  return made;
}

void ScriptParser::structMember(StructNode& into, bool& isPrivate) {
  while (isWord(u"private") || isWord(u"public")) isPrivate = equalFolded(take().text, u"private");
  if (isSymbol(u")")) return;
  StructMember member;
  member.isPrivate = isPrivate;
  if (isKeyword(u"fn") || isKeyword(u"function") || isKeyword(u"mapped")) {
    member.function = functionDefinition();
    member.name = member.function->name;
  } else if (isKeyword(u"on") && peek(1).kind == TokenKind::identifier) {
    const Place place = take().place;
    member.isHandler = true;
    member.name = u"on " + fold(expectIdentifier());
    member.function = tree_->make<FunctionNode>(place);
    member.function->name = member.name;
    expectKeyword(u"do");
    member.function->body = expression();
  } else {
    member.name = expectIdentifier();
    if (acceptSymbol(u"=")) member.value = expression();
  }
  for (const StructMember& earlier : into.members)
    if (equalFolded(earlier.name, member.name)) failCompile(u"Duplicate struct member name: " + member.name);
  into.members.push_back(std::move(member));
}

}  // namespace hostkit::script

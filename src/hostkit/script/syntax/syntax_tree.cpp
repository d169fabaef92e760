#include "hostkit/script/syntax/syntax_tree.h"

namespace hostkit::script {
namespace {

using Visit = std::function<void(const Node&)>;

template <class T>
const T& to(const Node& node) {
  return static_cast<const T&>(node);
}

void visitAll(const Visit& visit, std::initializer_list<const Node*> nodes) {
  for (const Node* each : nodes)
    if (each) visit(*each);
}
void visitAll(const Visit& visit, const NodeList& nodes) {
  for (const Node* each : nodes) visit(*each);
}

void visitStructure(const Visit& visit, const StructNode& node) {
  for (const StructMember& member : node.members) visitAll(visit, {member.value, member.function});
}
void visitContext(const Visit& visit, const ContextNode& node) {
  for (const ContextPart& part : node.parts) visitAll(visit, {part.label, part.operand});
  visitAll(visit, {node.body});
}
void visitCall(const Visit& visit, const CallNode& node) {
  visit(*node.callee);
  visitAll(visit, node.arguments);
  for (const auto& [name, value] : node.keywords) visitAll(visit, {value});
}

}  // namespace

void forEachChild(const Node& node, const Visit& visit) {
  switch (node.kind) {
    case NodeKind::number:
    case NodeKind::text:
    case NodeKind::name:
    case NodeKind::path:
    case NodeKind::boolean:
    case NodeKind::variable:
    case NodeKind::lastResult:
    case NodeKind::continueLoop:
    case NodeKind::maxCommand:
    case NodeKind::when:
    case NodeKind::definition:
      return;
    case NodeKind::block:
    case NodeKind::array:
    case NodeKind::point:
      return visitAll(visit, to<ListNode>(node).items);
    case NodeKind::bitArray:
      for (const auto& [first, last] : to<BitArrayNode>(node).ranges) visitAll(visit, {first, last});
      return;
    case NodeKind::property:
      return visitAll(visit, {to<PropertyNode>(node).base});
    case NodeKind::index:
      return visitAll(visit, {to<IndexNode>(node).base, to<IndexNode>(node).index});
    case NodeKind::call:
      return visitCall(visit, to<CallNode>(node));
    case NodeKind::negate:
    case NodeKind::logicalNot:
    case NodeKind::dereference:
    case NodeKind::reference:
    case NodeKind::returnFrom:
    case NodeKind::exitLoop:
      return visitAll(visit, {to<UnaryNode>(node).operand});
    case NodeKind::binary:
      return visitAll(visit, {to<BinaryNode>(node).left, to<BinaryNode>(node).right});
    case NodeKind::logical:
      return visitAll(visit, {to<LogicalNode>(node).left, to<LogicalNode>(node).right});
    case NodeKind::convert:
      return visitAll(visit, {to<ConvertNode>(node).operand, to<ConvertNode>(node).target});
    case NodeKind::assign:
      return visitAll(visit, {to<AssignNode>(node).target, to<AssignNode>(node).value});
    case NodeKind::declare:
      for (const auto& [name, value] : to<DeclareNode>(node).variables) visitAll(visit, {value});
      return;
    case NodeKind::ifThen:
      return visitAll(visit, {to<IfNode>(node).test, to<IfNode>(node).then, to<IfNode>(node).otherwise});
    case NodeKind::whileDo:
    case NodeKind::doWhile:
      return visitAll(visit, {to<LoopNode>(node).test, to<LoopNode>(node).body});
    case NodeKind::forLoop: {
      const auto& loop = to<ForNode>(node);
      return visitAll(visit, {loop.from, loop.to, loop.by, loop.whileTest, loop.where, loop.body});
    }
    case NodeKind::caseOf:
      visitAll(visit, {to<CaseNode>(node).subject});
      for (const auto& [label, value] : to<CaseNode>(node).items) visitAll(visit, {label, value});
      return;
    case NodeKind::tryCatch:
      return visitAll(visit, {to<TryNode>(node).body, to<TryNode>(node).handler});
    case NodeKind::function:
      for (const Parameter& parameter : to<FunctionNode>(node).parameters) visitAll(visit, {parameter.defaultValue});
      return visitAll(visit, {to<FunctionNode>(node).body});
    case NodeKind::structure:
      return visitStructure(visit, to<StructNode>(node));
    case NodeKind::context:
    case NodeKind::setContext:
      return visitContext(visit, to<ContextNode>(node));
  }
}

}  // namespace hostkit::script

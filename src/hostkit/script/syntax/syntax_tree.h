// The tree that the parser builds and the compiler reads. Nodes belong to their Tree; children are borrowed from it.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "hostkit/script/syntax/token.h"

namespace hostkit::script {

enum class NodeKind : std::uint8_t {
  number,
  text,
  name,
  path,
  boolean,
  variable,
  lastResult,
  block,
  array,
  bitArray,
  point,
  property,
  index,
  call,
  negate,
  logicalNot,
  dereference,
  reference,
  binary,
  logical,
  convert,
  assign,
  declare,
  ifThen,
  whileDo,
  doWhile,
  forLoop,
  caseOf,
  tryCatch,
  function,
  structure,
  returnFrom,
  exitLoop,
  continueLoop,
  context,
  setContext,
  maxCommand,
  when,
  definition,
};

struct Node {
  explicit Node(NodeKind nodeKind) : kind(nodeKind) {}
  virtual ~Node() = default;
  const NodeKind kind;
  Place place;
};

using NodeList = std::vector<Node*>;

struct NumberNode : Node {
  NumberNode() : Node(NodeKind::number) {}
  NumberLiteral number;
};
// A text, name or path literal, or a variable; which of them the kind tells.
struct WordNode : Node {
  using Node::Node;
  std::u16string text;
  bool forceGlobal = false;           // variable: written ::name
  std::vector<std::size_t> percents;  // text: where a percent sign was written \%
};
struct BooleanNode : Node {
  BooleanNode() : Node(NodeKind::boolean) {}
  bool value = false;
};
// Block, array or point: the items in order.
struct ListNode : Node {
  using Node::Node;
  NodeList items;
};
struct BitArrayNode : Node {
  BitArrayNode() : Node(NodeKind::bitArray) {}
  std::vector<std::pair<Node*, Node*>> ranges;  // second null: a single bit
};
struct PropertyNode : Node {
  PropertyNode() : Node(NodeKind::property) {}
  Node* base = nullptr;
  std::u16string name;
};
struct IndexNode : Node {
  IndexNode() : Node(NodeKind::index) {}
  Node *base = nullptr, *index = nullptr;
};
struct CallNode : Node {
  CallNode() : Node(NodeKind::call) {}
  Node* callee = nullptr;
  NodeList arguments;
  std::vector<std::pair<std::u16string, Node*>> keywords;
};
// Negation, not, dereference, reference, return, exit: the operand may be null for the last two.
struct UnaryNode : Node {
  using Node::Node;
  Node* operand = nullptr;
};
enum class BinaryOperator : std::uint8_t {
  add,
  subtract,
  multiply,
  divide,
  power,
  equal,
  notEqual,
  less,
  greater,
  lessEqual,
  greaterEqual
};
struct BinaryNode : Node {
  BinaryNode() : Node(NodeKind::binary) {}
  BinaryOperator op = BinaryOperator::add;
  Node *left = nullptr, *right = nullptr;
};
struct LogicalNode : Node {
  LogicalNode() : Node(NodeKind::logical) {}
  bool isAnd = false;
  Node *left = nullptr, *right = nullptr;
};
struct ConvertNode : Node {
  ConvertNode() : Node(NodeKind::convert) {}
  Node *operand = nullptr, *target = nullptr;
};
struct AssignNode : Node {
  AssignNode() : Node(NodeKind::assign) {}
  std::optional<BinaryOperator> op;  // += and its like
  Node *target = nullptr, *value = nullptr;
};
struct DeclareNode : Node {
  DeclareNode() : Node(NodeKind::declare) {}
  bool isGlobal = false;
  std::vector<std::pair<std::u16string, Node*>> variables;  // second null: no value
};
struct IfNode : Node {
  IfNode() : Node(NodeKind::ifThen) {}
  Node *test = nullptr, *then = nullptr, *otherwise = nullptr;
};
// while ... do and do ... while
struct LoopNode : Node {
  using Node::Node;
  Node *test = nullptr, *body = nullptr;
};
struct ForNode : Node {
  ForNode() : Node(NodeKind::forLoop) {}
  std::vector<std::u16string> names;                   // variable, index in the source, index among the kept
  Node *from = nullptr, *to = nullptr, *by = nullptr;  // to null: over a collection
  Node *whileTest = nullptr, *where = nullptr, *body = nullptr;
  bool collects = false;
};
struct CaseNode : Node {
  CaseNode() : Node(NodeKind::caseOf) {}
  Node* subject = nullptr;                     // null: case of
  std::vector<std::pair<Node*, Node*>> items;  // label null: default
};
struct TryNode : Node {
  TryNode() : Node(NodeKind::tryCatch) {}
  Node *body = nullptr, *handler = nullptr;
};
struct Parameter {
  std::u16string name;
  bool byReference = false, isKeyword = false;
  Node* defaultValue = nullptr;
};
struct FunctionNode : Node {
  FunctionNode() : Node(NodeKind::function) {}
  std::u16string name;
  bool isMapped = false;
  std::vector<Parameter> parameters;
  Node* body = nullptr;
  std::optional<bool> declaredGlobal;  // `global fn` or `local fn`
};
struct StructMember {
  std::u16string name;
  bool isPrivate = false;
  Node* value = nullptr;             // data: default, may be null
  FunctionNode* function = nullptr;  // a method, or the handler of `on create` and `on clone`
  bool isHandler = false;
};
struct StructNode : Node {
  StructNode() : Node(NodeKind::structure) {}
  std::u16string name;
  std::vector<StructMember> members;
  std::optional<bool> declaredGlobal;
};
struct ContextPart {
  std::u16string word;      // "undo", "animate", "redraw", "quiet", "at time", "in", "coordsys", "about", ...
  Node* operand = nullptr;  // null where a word such as `local` stands
  Node* label = nullptr;    // of `undo`; null: none
};
struct ContextNode : Node {
  ContextNode() : Node(NodeKind::context) {}
  std::vector<ContextPart> parts;
  Node* body = nullptr;  // null: `set ...`
};
// Rollouts, plugins and their like; max commands; when handlers. Kept for their name only.
struct DefinitionNode : Node {
  using Node::Node;
  std::u16string what;  // "rollout", "max file open", ...
  std::u16string name;  // empty: defines no variable
  std::optional<bool> declaredGlobal;
};

// Owns the nodes of one parse.
class Tree {
 public:
  template <class T, class... A>
  T* make(const Place& place, A&&... arguments) {
    auto owned = std::make_unique<T>(std::forward<A>(arguments)...);
    T* node = owned.get();
    node->place = place;
    nodes_.push_back(std::move(owned));
    return node;
  }

 private:
  std::vector<std::unique_ptr<Node>> nodes_;
};

// The nodes directly below a node, in the order of the text.
void forEachChild(const Node& node, const std::function<void(const Node&)>& visit);

}  // namespace hostkit::script

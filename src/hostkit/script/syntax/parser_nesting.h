// Counts how deep the parser stands in its own recursion.
#pragma once

#include "hostkit/script/syntax/parser.h"

namespace hostkit::script {

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

// The printer behind printing.h.
#pragma once

#include <string>
#include <vector>

#include "hostkit/script/machine/runtime.h"

namespace hostkit::script {

struct Printer {
  explicit Printer(Runtime& printingRuntime) : runtime(printingRuntime) {}
  // Deeper values, and values within themselves, print as "...".
  static constexpr std::size_t kMaxDepth = 24;
  static constexpr std::size_t kMaxPrinted = std::size_t{1} << 24;  // code units; more is a script error

  void print(const Value& value);
  void number(const Value& value);
  void object(const Object& o);
  void array(const ArrayObject& o);
  void bits(const BitArrayObject& o);
  void components(const TupleObject& o, std::size_t from, std::size_t count, char16_t separator);
  void tuple(const TupleObject& o);
  void dictionary(const DictionaryObject& o);
  void pair(const DataPairObject& o);
  void structure(const StructObject& o);
  void instance(const InstanceObject& o);

  Runtime& runtime;
  std::u16string out;
  std::vector<const Object*> printing;  // from the outermost in
};

}  // namespace hostkit::script

// The base of everything the collector owns.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "hostkit/script/machine/value.h"

namespace hostkit::script {

enum class Kind : std::uint8_t {
  string,
  name,
  array,
  bitArray,
  tuple,
  interval,
  dictionary,
  dataPair,
  textStream,
  binaryStream,
  function,
  builtin,
  boundMethod,
  structure,
  instance,
  classValue,
  reference,
  host,
  nodeSet,
  definition,
  nameSpace,
  code,
  environment,
  cell,
  global,
};

// Collects what is reachable. Objects hand it everything they hold.
class Tracer {
 public:
  void mark(const Value& value) {
    if (value.tag == Tag::object) mark(value.o);
  }
  void mark(Object* object);
  template <class Range>
  void markAll(const Range& range) {
    for (const auto& held : range) mark(held);
  }

 private:
  friend class Heap;
  std::vector<Object*> waiting_;
};

class Object {
 public:
  explicit Object(Kind objectKind) : kind(objectKind) {}
  virtual ~Object() = default;
  Object(const Object&) = delete;
  Object& operator=(const Object&) = delete;

  virtual void trace(Tracer&) const {}
  // Bytes held, roughly; what the collector counts by.
  virtual std::size_t footprint() const { return 48; }

  const Kind kind;

 private:
  friend class Heap;
  friend class Tracer;
  bool marked_ = false;
  std::uint32_t size_ = 0;  // bytes of the whole object
  Object* next_ = nullptr;
};

// The object as a T if it is one, else null. T tells its kind as T::kKind.
template <class T>
T* as(const Value& value) {
  return value.tag == Tag::object && value.o->kind == T::kKind ? static_cast<T*>(value.o) : nullptr;
}

}  // namespace hostkit::script

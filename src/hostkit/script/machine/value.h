// Script values: small numbers and constants held directly, or references to the objects that the collector owns.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace hostkit::script {

class Object;

// As wide as the payload, and both are always written whole: a value that was just made is then read back without a
// stall.
enum class Tag : std::uint64_t {
  undefined,
  unsupplied,
  ok,
  dontCollect,
  silentValue,
  boolean,
  integer,
  real,
  time,  // ticks
  integer64,
  integerPtr,
  doubleReal,
  object,
};

struct Value {
  Tag tag;
  union {
    bool b;
    std::int32_t i;  // integer, time
    float f;
    std::int64_t l;  // integer64, integerPtr
    double d;
    Object* o;  // never null under Tag::object
  };

  constexpr Value() : tag(Tag::undefined), l(0) {}
  constexpr explicit Value(Tag constant) : tag(constant), l(0) {}
  // A null object is `undefined`.
  Value(Object* object)
      : tag(object ? Tag::object : Tag::undefined), o(object) {}  // NOLINT: values are made of objects

  static Value ofBoolean(bool v) { return with(Tag::boolean, v ? 1 : 0); }
  static Value ofInteger(std::int32_t v) { return with(Tag::integer, static_cast<std::uint32_t>(v)); }
  static Value ofFloat(float v) { return with(Tag::real, std::bit_cast<std::uint32_t>(v)); }
  static Value ofTime(std::int32_t ticks) { return with(Tag::time, static_cast<std::uint32_t>(ticks)); }
  static Value ofInteger64(std::int64_t v) { return with(Tag::integer64, static_cast<std::uint64_t>(v)); }
  static Value ofIntegerPtr(std::int64_t v) { return with(Tag::integerPtr, static_cast<std::uint64_t>(v)); }
  static Value ofDouble(double v) { return with(Tag::doubleReal, std::bit_cast<std::uint64_t>(v)); }
  static Value ok() { return Value(Tag::ok); }
  static Value unsupplied() { return Value(Tag::unsupplied); }

  // Copies the two halves one by one: they may have been written one by one a moment ago.
  void copyFrom(const Value& other) {
    tag = other.tag;
    l = other.l;
  }

  bool isUndefined() const { return tag == Tag::undefined; }
  bool isUnsupplied() const { return tag == Tag::unsupplied; }
  bool isBoolean() const { return tag == Tag::boolean; }
  bool isInteger() const { return tag == Tag::integer; }
  bool isObject() const { return tag == Tag::object; }
  bool isWhole() const { return tag == Tag::integer || tag == Tag::integer64 || tag == Tag::integerPtr; }
  bool isNumber() const { return isWhole() || tag == Tag::real || tag == Tag::doubleReal; }

 private:
  static Value with(Tag tag, std::uint64_t bits) {
    Value made(tag);
    made.l = static_cast<std::int64_t>(bits);
    return made;
  }
};

// The base of everything the collector owns.
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

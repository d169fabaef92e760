// The plain data that scripts work with: texts, names, collections, and small tuples of numbers.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <boost/smart_ptr/intrusive_ref_counter.hpp>

#include "hostkit/script/machine/value.h"

namespace hostkit::script {

// Larger ones are a script error.
inline constexpr std::size_t kMaxStringLength = std::size_t{1} << 26;  // code units
inline constexpr std::size_t kMaxArrayLength = std::size_t{1} << 24;   // elements, also bits and dictionary entries

// Texts that grow from one another share a buffer: building one piece by piece costs what the pieces cost. A buffer
// that others see is never changed, only continued behind its end.
class StringObject : public Object {
 public:
  static constexpr Kind kKind = Kind::string;
  explicit StringObject(std::u16string_view value);
  // The same text; shares its buffer.
  explicit StringObject(const StringObject* other);
  // The two, one after the other.
  StringObject(const StringObject* head, std::u16string_view tail);

  std::size_t footprint() const override;
  std::size_t length() const { return length_; }
  // Valid while this object lives and is not changed.
  std::u16string_view text() const { return {buffer_->text.data(), length_}; }
  void setCharacter(std::size_t index, char16_t character);
  void append(std::u16string_view more);

 private:
  struct Buffer : boost::intrusive_ref_counter<Buffer, boost::thread_unsafe_counter> {
    std::u16string text;
    static void* operator new(std::size_t size);
    static void operator delete(void* memory, std::size_t size);
  };
  void makeOwn(std::size_t capacity);

  boost::intrusive_ptr<Buffer> buffer_;  // never null
  std::size_t length_;                   // of the buffer's beginning that is this text
};

// One object for all spellings; shows the first spelling that a script used.
struct NameObject : Object {
  static constexpr Kind kKind = Kind::name;
  NameObject(std::u16string spelling, std::u16string lowerCase)
      : Object(kKind), text(std::move(spelling)), folded(std::move(lowerCase)) {}
  std::u16string text;
  const std::u16string folded;
  bool isSpelled = false;  // text is a script's spelling, not just that of a table of ours
};

struct ArrayObject : Object {
  static constexpr Kind kKind = Kind::array;
  ArrayObject() : Object(kKind) {}
  explicit ArrayObject(std::vector<Value> values) : Object(kKind), items(std::move(values)) {}
  void trace(Tracer& tracer) const override { tracer.markAll(items); }
  std::size_t footprint() const override { return 72 + items.capacity() * sizeof(Value); }
  std::vector<Value> items;
};

struct BitArrayObject : Object {
  static constexpr Kind kKind = Kind::bitArray;
  BitArrayObject() : Object(kKind) {}
  std::size_t footprint() const override { return 80 + bits.size() / 8; }
  // Bit 1 of the script is bits[0]; the size is the capacity that scripts see as count.
  std::vector<bool> bits;
};

// Values made of a few floats, changed in place by their properties.
enum class TupleKind : std::uint8_t { point2, point3, point4, color, quat, eulerAngles, angleAxis, ray, box2, matrix3 };
struct TupleShape {
  std::u16string_view word;  // as it prints; the class has the same name, caseless
  std::size_t size;          // floats
};
// In the order of the kinds.
inline constexpr std::array<TupleShape, 10> kTupleShapes{{{u"point2", 2},
                                                          {u"point3", 3},
                                                          {u"point4", 4},
                                                          {u"color", 4},
                                                          {u"quat", 4},
                                                          {u"eulerAngles", 3},
                                                          {u"angleAxis", 4},
                                                          {u"ray", 6},
                                                          {u"box2", 4},
                                                          {u"matrix3", 12}}};
struct TupleObject : Object {
  static constexpr Kind kKind = Kind::tuple;
  TupleObject(TupleKind tupleKind, std::array<float, 12> values) : Object(kKind), tuple(tupleKind), v(values) {}
  const TupleShape& shape() const { return kTupleShapes[static_cast<std::size_t>(tuple)]; }
  std::size_t size() const { return shape().size; }
  bool isPoint() const { return tuple <= TupleKind::point4; }
  const TupleKind tuple;
  std::array<float, 12> v;  // matrix3: three axes, then the translation
};

struct IntervalObject : Object {
  static constexpr Kind kKind = Kind::interval;
  IntervalObject(std::int32_t first, std::int32_t last) : Object(kKind), start(first), end(last) {}
  std::int32_t start, end;  // ticks
};

// Entries in the order they came.
struct DictionaryObject : Object {
  static constexpr Kind kKind = Kind::dictionary;
  enum class Keys : std::uint8_t { string, name, integer };
  explicit DictionaryObject(Keys keyKind) : Object(kKind), keys(keyKind) {}
  void trace(Tracer& tracer) const override {
    for (const auto& [key, value] : entries) {
      tracer.mark(key);
      tracer.mark(value);
    }
  }
  std::size_t footprint() const override { return 160 + entries.size() * 120; }

  // The key as a text that is equal for equal keys.
  static std::u16string indexOf(const Value& key);
  Value* find(const Value& key);
  void set(const Value& key, const Value& value);
  bool remove(const Value& key);

  const Keys keys;
  std::vector<std::pair<Value, Value>> entries;

 private:
  std::unordered_map<std::u16string, std::size_t> places_;
};

struct DataPairObject : Object {
  static constexpr Kind kKind = Kind::dataPair;
  DataPairObject(NameObject* name1, Value value1, NameObject* name2, Value value2)
      : Object(kKind), names{name1, name2}, values{value1, value2} {}
  void trace(Tracer& tracer) const override {
    tracer.markAll(names);
    tracer.markAll(values);
  }
  std::array<NameObject*, 2> names;
  std::array<Value, 2> values;
};

}  // namespace hostkit::script

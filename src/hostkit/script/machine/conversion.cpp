#include "hostkit/script/machine/conversion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/machine/tuples.h"
#include "hostkit/script/syntax/lexer.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

std::int32_t rounded(double ticks) {
  if (std::isnan(ticks)) return 0;
  return static_cast<std::int32_t>(std::lround(std::clamp(ticks, double{std::numeric_limits<std::int32_t>::min()},
                                                          double{std::numeric_limits<std::int32_t>::max()})));
}

[[noreturn]] void unable(Runtime& runtime, const Value& value, std::u16string_view type) {
  throwUnableToConvert(printed(runtime, value), type);
}

// "[1,2,3]" and nothing else.
Value readPoint(Runtime& runtime, std::u16string_view text, std::size_t count) {
  text = trimmed(text);
  if (text.size() < 2 || text.front() != u'[' || text.back() != u']') return {};
  text = text.substr(1, text.size() - 2);
  std::array<float, 12> v{};
  for (std::size_t i = 0; i < count; ++i) {
    const std::size_t comma = i + 1 < count ? text.find(u',') : text.size();
    if (comma == std::u16string_view::npos) return {};
    const Value number = readNumber(text.substr(0, comma));
    if (!number.isNumber()) return {};
    v[i] = toFloat(runtime, number);
    text = comma < text.size() ? text.substr(comma + 1) : std::u16string_view();
  }
  return newTuple(runtime, static_cast<TupleKind>(count - 2), v);
}

Value textTo(Runtime& runtime, const Value& value, std::u16string_view type) {
  const std::u16string_view text = as<StringObject>(value)->text();
  if (type == u"name") return runtime.name(text);
  if (type == u"stringstream") return runtime.heap().make<TextStreamObject>(std::u16string(text));
  if (type == u"booleanclass") {
    const std::u16string word = fold(trimmed(text));
    if (word == u"true" || word == u"on") return Value::ofBoolean(true);
    return word == u"false" || word == u"off" ? Value::ofBoolean(false) : Value();
  }
  if (type == u"point2" || type == u"point3" || type == u"point4") return readPoint(runtime, text, type[5] - u'0');
  static constexpr std::array<std::pair<std::u16string_view, Tag>, 5> kNumbers{{{u"integer", Tag::integer},
                                                                                {u"float", Tag::real},
                                                                                {u"double", Tag::doubleReal},
                                                                                {u"integer64", Tag::integer64},
                                                                                {u"time", Tag::time}}};
  const Value number = readNumber(text);
  if (type == u"number") return number;
  for (const auto& [name, tag] : kNumbers)
    if (name == type) return number.isUndefined() ? number : toNumber(runtime, number, tag);
  unable(runtime, value, type);
}

Value tupleTo(Runtime& runtime, const TupleObject& from, std::u16string_view type) {
  using K = TupleKind;
  const bool rotation =
      from.tuple == K::matrix3 || from.tuple == K::quat || from.tuple == K::eulerAngles || from.tuple == K::angleAxis;
  if (type == u"point3" && from.tuple == K::color) return newPoint3(runtime, from.v[0], from.v[1], from.v[2]);
  if (type == u"color" && from.tuple == K::point3)
    return newTuple(runtime, K::color, {from.v[0], from.v[1], from.v[2], 255});
  if (rotation && type == u"matrix3") return newTuple(runtime, K::matrix3, matrixOf(from));
  if (rotation && type == u"quat") return newTuple(runtime, K::quat, quatOf(from));
  if (rotation && type == u"eulerangles") return newTuple(runtime, K::eulerAngles, eulerOf(from));
  if (rotation && type == u"angleaxis") {
    const auto q = quatOf(from);
    const float half = std::acos(std::clamp(q[3], -1.0F, 1.0F)), s = std::sin(half);
    const float scale = s == 0 ? 0 : 1 / s;
    return newTuple(runtime, K::angleAxis,
                    {q[0] * scale, q[1] * scale, s == 0 ? 1 : q[2] * scale, half * 2 * 57.29577951F});
  }
  return {};
}

Value toBits(Runtime& runtime, const ArrayObject& array) {
  const Root made(runtime.heap(), runtime.heap().make<BitArrayObject>());
  for (const Value& item : array.items) setBits(runtime, *as<BitArrayObject>(made.value), item, item);
  return made.value;
}

}  // namespace

std::int32_t clampedInteger(double value) {
  if (std::isnan(value)) return 0;
  return static_cast<std::int32_t>(std::clamp(value, double{std::numeric_limits<std::int32_t>::min()},
                                              double{std::numeric_limits<std::int32_t>::max()}));
}

double toDouble(Runtime& runtime, const Value& value) {
  switch (value.tag) {
    case Tag::integer:
      return value.i;
    case Tag::real:
      return value.f;
    case Tag::doubleReal:
      return value.d;
    case Tag::integer64:
    case Tag::integerPtr:
      return static_cast<double>(value.l);
    case Tag::time:
      return framesOf(value.i, runtime.host());
    default:
      unable(runtime, value, u"Float");
  }
}

float toFloat(Runtime& runtime, const Value& value) { return static_cast<float>(toDouble(runtime, value)); }

std::int64_t toInteger64(Runtime& runtime, const Value& value) {
  if (value.tag == Tag::integer64 || value.tag == Tag::integerPtr) return value.l;
  if (value.isInteger()) return value.i;
  if (!value.isNumber() && value.tag != Tag::time) unable(runtime, value, u"Integer64");
  const double number = toDouble(runtime, value);
  return std::isnan(number) ? 0 : static_cast<std::int64_t>(std::clamp(number, -9.2e18, 9.2e18));
}

std::int32_t toInteger(Runtime& runtime, const Value& value) {
  if (value.isInteger()) return value.i;
  if (value.tag == Tag::integer64 || value.tag == Tag::integerPtr) return static_cast<std::int32_t>(value.l);
  if (!value.isNumber() && value.tag != Tag::time) unable(runtime, value, u"Integer");
  return clampedInteger(toDouble(runtime, value));
}

bool toBoolean(Runtime& runtime, const Value& value) {
  if (value.isBoolean()) return value.b;
  if (value.isInteger()) return value.i != 0;
  unable(runtime, value, u"BooleanClass");
}

std::int32_t toTicks(Runtime& runtime, const Value& value) {
  if (value.tag == Tag::time) return value.i;
  if (!value.isNumber()) unable(runtime, value, u"Time");
  return rounded(toDouble(runtime, value) * runtime.host().ticksPerFrame());
}

std::u16string_view toString(Runtime& runtime, const Value& value) {
  if (const auto* text = as<StringObject>(value)) return text->text();
  unable(runtime, value, u"String");
}

NameObject* toName(Runtime& runtime, const Value& value) {
  if (auto* name = as<NameObject>(value)) return name;
  if (const auto* text = as<StringObject>(value)) return runtime.name(text->text());
  unable(runtime, value, u"Name");
}

ArrayObject* toArray(Runtime& runtime, const Value& value) {
  if (auto* array = as<ArrayObject>(value)) return array;
  unable(runtime, value, u"Array");
}

TupleObject* toTuple(Runtime& runtime, const Value& value, TupleKind first, TupleKind last) {
  static constexpr std::array<std::u16string_view, 10> kNames{
      u"Point2", u"Point3", u"Point4", u"Color", u"Quat", u"EulerAngles", u"AngleAxis", u"Ray", u"Box2", u"Matrix3"};
  auto* tuple = as<TupleObject>(value);
  if (tuple && tuple->tuple >= first && tuple->tuple <= last) return tuple;
  unable(runtime, value, kNames[static_cast<std::size_t>(first)]);
}

TupleObject* toPoint3(Runtime& runtime, const Value& value) {
  return toTuple(runtime, value, TupleKind::point3, TupleKind::point3);
}

Value toNumber(Runtime& runtime, const Value& value, Tag tag) {
  switch (tag) {
    case Tag::integer:
      return Value::ofInteger(toInteger(runtime, value));
    case Tag::real:
      return Value::ofFloat(toFloat(runtime, value));
    case Tag::doubleReal:
      return Value::ofDouble(toDouble(runtime, value));
    case Tag::integer64:
      return Value::ofInteger64(toInteger64(runtime, value));
    case Tag::integerPtr:
      return Value::ofIntegerPtr(toInteger64(runtime, value));
    case Tag::time:
      return Value::ofTime(toTicks(runtime, value));
    default:
      return value;
  }
}

Value readNumber(std::u16string_view text) {
  text = trimmed(text);
  const bool negative = !text.empty() && text.front() == u'-';
  if (!text.empty() && (negative || text.front() == u'+')) text.remove_prefix(1);
  if (text.empty()) return {};
  Lexer lexer(std::make_shared<const Source>(Source{u"", std::u16string(text)}), [](const auto&) { return nullptr; });
  const Token token = lexer.next();
  if (token.kind != TokenKind::number || token.endOffset != text.size()) return {};
  const NumberLiteral& number = token.number;
  const std::int64_t whole = negative ? -number.whole : number.whole;
  const double real = negative ? -number.number : number.number;
  switch (number.kind) {
    case NumberLiteral::Kind::integer:
      return Value::ofInteger(static_cast<std::int32_t>(whole));
    case NumberLiteral::Kind::integer64:
      return Value::ofInteger64(whole);
    case NumberLiteral::Kind::integerPtr:
      return Value::ofIntegerPtr(whole);
    case NumberLiteral::Kind::real:
      return Value::ofFloat(static_cast<float>(real));
    case NumberLiteral::Kind::doubleReal:
      return Value::ofDouble(real);
    case NumberLiteral::Kind::time:
    case NumberLiteral::Kind::normalizedTime:
      break;
  }
  return {};
}

Value convert(Runtime& runtime, const Value& value, const Value& target) {
  const auto* type = as<ClassObject>(target);
  if (!type) throwTypeError(u"as requires a class, got: " + printed(runtime, target));
  const std::u16string& name = type->name->folded;
  if (type == runtime.classes().string) return runtime.newString(asText(runtime, value));
  if (nativeClassOf(runtime, value) == type) return value;
  if (as<StringObject>(value)) return textTo(runtime, value, name);
  if (value.isNumber() || value.tag == Tag::time) {
    static constexpr std::array<std::pair<std::u16string_view, Tag>, 6> kTags{{{u"integer", Tag::integer},
                                                                               {u"float", Tag::real},
                                                                               {u"double", Tag::doubleReal},
                                                                               {u"integer64", Tag::integer64},
                                                                               {u"integerptr", Tag::integerPtr},
                                                                               {u"time", Tag::time}}};
    for (const auto& [tagName, tag] : kTags)
      if (tagName == name) return toNumber(runtime, value, tag);
    if (name == u"number") return value.tag == Tag::time ? toNumber(runtime, value, Tag::real) : value;
    if (name == u"booleanclass" && value.isInteger()) return Value::ofBoolean(value.i != 0);
  }
  if (value.isBoolean() && name == u"integer") return Value::ofInteger(value.b ? 1 : 0);
  if (const auto* tuple = as<TupleObject>(value))
    if (const Value made = tupleTo(runtime, *tuple, name); !made.isUndefined()) return made;
  if (name == u"array" && isCollection(value)) {
    const Root elements(runtime.heap(), elementsOf(runtime, value));
    return runtime.heap().make<ArrayObject>(as<ArrayObject>(elements.value)->items);
  }
  if (name == u"bitarray" && as<ArrayObject>(value)) return toBits(runtime, *as<ArrayObject>(value));
  unable(runtime, value, type->title);
}

std::int32_t ticksOf(const NumberLiteral& time, HostBindings& host) {
  if (time.kind == NumberLiteral::Kind::normalizedTime) {
    const HostInterval segment = host.activeSegment();
    return rounded(segment.start + time.number * (static_cast<double>(segment.end) - segment.start));
  }
  return rounded(time.ticks + time.frames * host.ticksPerFrame());
}

double framesOf(std::int32_t ticks, HostBindings& host) { return static_cast<double>(ticks) / host.ticksPerFrame(); }

}  // namespace hostkit::script

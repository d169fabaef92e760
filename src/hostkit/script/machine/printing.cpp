#include "hostkit/script/machine/printing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

std::u16string formatted(const char* format, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, value);
  return widen(buffer);
}

std::u16string withPoint(const std::u16string& text) {
  return text.find_first_of(u".ein") == std::u16string::npos ? text + u".0" : text;
}

std::u16string integerText(std::int32_t value) {
  std::array<char, 12> digits{};
  const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
  return {digits.data(), end};
}

// Collects what an error or value prints.
class Collecting : public hostsdk::CharStream {
 public:
  Kind kind() const override { return Kind::other; }
  bool isTrue() const override { return false; }
  std::optional<std::u16string> text() const override { return collected; }
  void sprin1(hostsdk::CharStream& stream) override { stream.puts(collected); }
  hostsdk::Value* eval() override { return this; }
  hostsdk::Value* get_heap_ptr() override { return this; }
  void putch(char16_t character) override { collected += character; }
  void puts(std::u16string_view more) override { collected += more; }
  void close() override {}
  std::u16string collected;
};

// %g with six digits; with ".0" when nothing shows that it is no whole number. Magnitudes below the smallest step from
// 1 count as nothing.
std::u16string floatText(float value) {
  if (std::fabs(value) < 1.192092896e-07F) return u"0.0";
  return withPoint(formatted("%g", double{value}));
}

// Bare %g, as inside points.
std::u16string componentText(float value) { return formatted("%g", value == 0.0F ? 0.0 : double{value}); }

std::u16string doubleText(double value) { return withPoint(formatted("%.15g", value)) + u"d0"; }

// Builds one printed form, part by part.
struct Printer {
  explicit Printer(Runtime& printingRuntime) : runtime(printingRuntime) {}
  // Deeper values, and values within themselves, print as "...".
  static constexpr std::size_t kMaxDepth = 24;
  static constexpr std::size_t kMaxPrinted = std::size_t{1} << 24;  // code units; more is a script error

  void print(const Value& value);
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

}  // namespace

std::u16string printedText(const hostsdk::MAXScriptException& error) {
  Collecting stream;
  error.sprin1(stream);
  return stream.collected;
}

void Printer::print(const Value& value) {
  switch (value.tag) {
    case Tag::undefined:
      out += u"undefined";
      return;
    case Tag::unsupplied:
      out += u"unsupplied";
      return;
    case Tag::ok:
      out += u"OK";
      return;
    case Tag::dontCollect:
      out += u"dontcollect";
      return;
    case Tag::silentValue:
      out += u"silentValue";
      return;
    case Tag::boolean:
      out += value.b ? u"true" : u"false";
      return;
    case Tag::integer:
      out += widen(std::to_string(value.i));
      return;
    case Tag::integer64:
      out += widen(std::to_string(value.l)) + u"L";
      return;
    case Tag::integerPtr:
      out += widen(std::to_string(value.l)) + u"P";
      return;
    case Tag::real:
      out += floatText(value.f);
      return;
    case Tag::doubleReal:
      out += doubleText(value.d);
      return;
    case Tag::time:
      out += componentText(static_cast<float>(framesOf(value.i, runtime.host()))) + u"f";
      return;
    case Tag::object:
      break;
  }
  const bool within = std::find(printing.begin(), printing.end(), value.o) != printing.end();
  if (within || printing.size() >= kMaxDepth) {
    out += u"...";
    return;
  }
  if (out.size() > kMaxPrinted) throwRuntimeError(u"The printed form is too long");
  printing.push_back(value.o);
  object(*value.o);
  printing.pop_back();
}

void Printer::object(const Object& o) {
  switch (o.kind) {
    case Kind::string:
      out += u'"' + std::u16string(static_cast<const StringObject&>(o).text()) + u'"';
      break;
    case Kind::name:
      out += u'#' + static_cast<const NameObject&>(o).text;
      break;
    case Kind::array:
      array(static_cast<const ArrayObject&>(o));
      break;
    case Kind::bitArray:
      bits(static_cast<const BitArrayObject&>(o));
      break;
    case Kind::tuple:
      tuple(static_cast<const TupleObject&>(o));
      break;
    case Kind::interval:
      out += u"(interval ";
      print(Value::ofTime(static_cast<const IntervalObject&>(o).start));
      out += u' ';
      print(Value::ofTime(static_cast<const IntervalObject&>(o).end));
      out += u')';
      break;
    case Kind::dictionary:
      dictionary(static_cast<const DictionaryObject&>(o));
      break;
    case Kind::dataPair:
      pair(static_cast<const DataPairObject&>(o));
      break;
    case Kind::textStream: {
      const auto& stream = static_cast<const TextStreamObject&>(o);
      out += stream.isFile() ? u"<File:" + stream.path() + u">" : u"StringStream:\"" + stream.content() + u"\"";
      break;
    }
    case Kind::binaryStream:
      out += u"<BinStream:" + static_cast<const BinaryStreamObject&>(o).path + u">";
      break;
    case Kind::function:
      out += static_cast<const FunctionObject&>(o).code->name + u"()";
      break;
    case Kind::builtin:
      out += std::u16string(static_cast<const BuiltinObject&>(o).entry.name) + u"()";
      break;
    case Kind::boundMethod:
      out += static_cast<const BoundMethodObject&>(o).name->text + u"()";
      break;
    case Kind::structure:
      structure(static_cast<const StructObject&>(o));
      break;
    case Kind::instance:
      instance(static_cast<const InstanceObject&>(o));
      break;
    case Kind::classValue:
      out += static_cast<const ClassObject&>(o).title;
      break;
    case Kind::reference:
      out += u"<ValueRef>";
      break;
    case Kind::host:
      out += static_cast<const HostValueObject&>(o).host->printed();
      break;
    case Kind::nodeSet: {
      const auto& set = static_cast<const NodeSetObject&>(o);
      out += set.which == NodeSetObject::Which::path       ? u"$" + set.text
             : set.which == NodeSetObject::Which::selected ? u"$selection"
                                                           : u"$" + (set.text.empty() ? u"objects" : set.text);
      break;
    }
    case Kind::definition:
      out += u"<" + static_cast<const DefinitionObject&>(o).what + u":" + static_cast<const DefinitionObject&>(o).name +
             u">";
      break;
    case Kind::nameSpace:
      out += u"<struct:" + static_cast<const NamespaceObject&>(o).name->text + u">";
      break;
    case Kind::code:
    case Kind::environment:
    case Kind::cell:
    case Kind::global:
      out += u"<code>";
      break;
  }
}

void Printer::array(const ArrayObject& o) {
  constexpr std::size_t kShown = 20;
  out += u"#(";
  for (std::size_t i = 0; i < o.items.size(); ++i) {
    if (i > 0) out += u", ";
    if (i == kShown && !runtime.printAllElements) {
      out += u"...";
      break;
    }
    print(o.items[i]);
  }
  out += u')';
}

void Printer::bits(const BitArrayObject& o) {
  out += u"#{";
  bool first = true;
  for (std::size_t i = 0; i < o.bits.size(); ++i) {
    if (!o.bits[i]) continue;
    std::size_t last = i;
    while (last + 1 < o.bits.size() && o.bits[last + 1]) ++last;
    if (!first) out += u", ";
    first = false;
    out += toText(i + 1);
    if (last > i) out += u".." + toText(last + 1);
    i = last;
  }
  out += u'}';
}

void Printer::components(const TupleObject& o, std::size_t from, std::size_t count, char16_t separator) {
  for (std::size_t i = 0; i < count; ++i) {
    if (i > 0) out += separator;
    out += componentText(o.v[from + i]);
  }
}

void Printer::tuple(const TupleObject& o) {
  if (o.isPoint()) {
    out += u'[';
    components(o, 0, o.size(), u',');
    out += u']';
    return;
  }
  out += u'(' + std::u16string(o.shape().word) + u' ';
  if (o.tuple == TupleKind::matrix3 || o.tuple == TupleKind::ray) {
    for (std::size_t row = 0; row * 3 < o.size(); ++row) {
      if (row > 0) out += u' ';
      out += u'[';
      components(o, row * 3, 3, u',');
      out += u']';
    }
  } else if (o.tuple == TupleKind::angleAxis) {
    out += componentText(o.v[3]) + u" [";
    components(o, 0, 3, u',');
    out += u']';
  } else {
    components(o, 0, o.tuple == TupleKind::color ? 3 : o.size(), u' ');
  }
  out += u')';
}

void Printer::dictionary(const DictionaryObject& o) {
  static constexpr std::array<std::u16string_view, 3> kNames{u"#string", u"#name", u"#integer"};
  out += u"Dictionary " + std::u16string(kNames[static_cast<std::size_t>(o.keys)]) + u' ';
  for (const auto& [key, value] : o.entries) {
    if (const auto* name = as<NameObject>(key)) {
      out += name->text;
    } else {
      print(key);
    }
    out += u':';
    print(value);
    out += u' ';
  }
}

void Printer::pair(const DataPairObject& o) {
  out += u"(DataPair " + o.names[0]->text + u':';
  print(o.values[0]);
  out += u' ' + o.names[1]->text + u':';
  print(o.values[1]);
  out += u')';
}

void Printer::structure(const StructObject& o) {
  out += u"#Struct:" + o.name->text + u"(";
  bool first = true;
  for (const auto& member : o.members) {
    out += first ? u"\n  " : u",\n  ";
    first = false;
    out +=
        member.name->text + (member.isMethod ? u":<fn>; " : u":<data>; ") + (member.isPrivate ? u"Private" : u"Public");
  }
  out += u')';
}

void Printer::instance(const InstanceObject& o) {
  out += u'(' + o.structure->name->text;
  for (const auto& member : o.structure->members) {
    if (member.isMethod || member.isPrivate) continue;
    out += u' ' + member.name->text + u':';
    const Value& field = o.fields[member.field];
    if (const auto* name = as<NameObject>(field)) {
      out += name->text;
    } else {
      print(field);
    }
  }
  out += u')';
}

std::u16string printed(Runtime& runtime, const Value& value) {
  Printer printer(runtime);
  printer.print(value);
  return std::move(printer.out);
}

std::u16string asText(Runtime& runtime, const Value& value) {
  if (value.isInteger()) return integerText(value.i);
  if (const auto* text = as<StringObject>(value)) return std::u16string(text->text());
  if (const auto* name = as<NameObject>(value)) return name->text;
  if (const auto* stream = as<TextStreamObject>(value); stream && !stream->isFile()) return stream->content();
  return printed(runtime, value);
}

}  // namespace hostkit::script

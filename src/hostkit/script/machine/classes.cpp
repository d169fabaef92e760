#include "hostkit/script/machine/classes.h"

#include "hostkit/script/machine/streams.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {

Classes::Classes(Runtime& runtime, std::span<const ClassRow> rows) {
  value = add(runtime, u"Value", nullptr, nullptr);
  for (const ClassRow& row : rows) {
    ClassObject* super = find(fold(row.super));
    ClassObject* made = add(runtime, row.name, super ? super : value, row.constructor);
    for (const PropertyRow& property : row.properties)
      made->properties.push_back({runtime.name(property.name), property.get, property.set});
  }
  fillTables();
}

ClassObject* Classes::find(std::u16string_view name) const {
  const auto found = byName.find(name);
  return found == byName.end() ? nullptr : found->second;
}

ClassObject* Classes::add(Runtime& runtime, std::u16string_view name, ClassObject* super, BuiltinFunction constructor) {
  auto* made = runtime.heap().make<ClassObject>(runtime.name(name), std::u16string(name), super, constructor);
  byName[fold(name)] = made;
  GlobalObject* global = runtime.addGlobal(made->name);
  if (global->value.isUndefined() && !global->isHost) global->value = made;
  return made;
}

ClassObject* Classes::ofName(Runtime& runtime, std::u16string_view name, std::u16string_view super) {
  if (ClassObject* found = find(fold(name))) return found;
  return add(runtime, name, super.empty() ? value : ofName(runtime, super, u""), nullptr);
}

void Classes::fillTables() {
  static constexpr std::array<std::u16string_view, 12> kTags{
      u"undefinedclass", u"undefinedclass", u"okclass", u"dontcollectclass", u"silentvalueclass", u"booleanclass",
      u"integer",        u"float",          u"time",    u"integer64",        u"integerptr",       u"double"};
  static constexpr std::array<std::pair<Kind, std::u16string_view>, 13> kKinds{
      {{Kind::string, u"string"},
       {Kind::name, u"name"},
       {Kind::array, u"array"},
       {Kind::bitArray, u"bitarray"},
       {Kind::interval, u"interval"},
       {Kind::dictionary, u"dictionary"},
       {Kind::dataPair, u"datapair"},
       {Kind::binaryStream, u"binstream"},
       {Kind::function, u"maxscriptfunction"},
       {Kind::boundMethod, u"maxscriptfunction"},
       {Kind::structure, u"structdef"},
       {Kind::classValue, u"maxclass"},
       {Kind::reference, u"valueref"}}};
  for (std::size_t i = 0; i < kTags.size(); ++i) ofTag[i] = find(kTags[i]);
  for (std::size_t i = 0; i < kTupleShapes.size(); ++i) ofTuple[i] = find(fold(kTupleShapes[i].word));
  for (const auto& [kind, name] : kKinds) ofKind[static_cast<std::size_t>(kind)] = find(name);
  string = find(u"string");
}

ClassObject* nativeClassOf(Runtime& runtime, const Value& v) {
  Classes& classes = runtime.classes();
  if (!v.isObject()) return classes.ofTag[static_cast<std::size_t>(v.tag)];
  if (ClassObject* known = classes.ofKind[static_cast<std::size_t>(v.o->kind)]) return known;
  switch (v.o->kind) {
    case Kind::tuple:
      return classes.ofTuple[static_cast<std::size_t>(as<TupleObject>(v)->tuple)];
    case Kind::textStream:
      return classes.find(as<TextStreamObject>(v)->isFile() ? u"filestream" : u"stringstream");
    case Kind::builtin:
      return classes.find(as<BuiltinObject>(v)->entry.isMapped ? u"mappedgeneric" : u"primitive");
    case Kind::host: {
      const HostObject& host = *as<HostValueObject>(v)->host;
      return classes.ofName(runtime, host.className(), host.superClassName());
    }
    case Kind::nodeSet:
      return classes.find(as<NodeSetObject>(v)->which == NodeSetObject::Which::path ? u"pathname" : u"objectset");
    default:
      return classes.value;
  }
}

Value classOf(Runtime& runtime, const Value& v) {
  if (const auto* instance = as<InstanceObject>(v)) return instance->structure;
  if (const auto* definition = as<DefinitionObject>(v))
    return runtime.classes().ofName(runtime, definition->what + u"Class", u"");
  return nativeClassOf(runtime, v);
}

bool isKindOf(Runtime& runtime, const Value& v, const Value& type) {
  if (const auto* instance = as<InstanceObject>(v))
    if (Value(instance->structure).o == type.o && type.isObject()) return true;
  const auto* wanted = as<ClassObject>(type);
  if (!wanted) return false;
  for (const ClassObject* each = nativeClassOf(runtime, v); each; each = each->super)
    if (each == wanted) return true;
  return false;
}

}  // namespace hostkit::script

// Structures and their instances, references, classes, and what stands for the host's things.
#pragma once

#include <memory>
#include <optional>

#include "hostkit/script/machine/code.h"
#include "hostkit/script/machine/host_bindings.h"

namespace hostkit::script {

struct StructObject : Object {
  static constexpr Kind kKind = Kind::structure;
  struct Member {
    NameObject* name = nullptr;
    bool isPrivate = false;
    bool isMethod = false;
    FunctionObject* function = nullptr;  // of a method; null in the template of a definition that has not run yet
    std::size_t field = 0;               // of data
  };
  explicit StructObject(NameObject* structName) : Object(kKind), name(structName) {}
  void trace(Tracer& tracer) const override;
  std::size_t footprint() const override { return 200 + members.size() * 100; }
  const Member* find(const NameObject* member) const;
  void add(const Member& member);

  NameObject* name;
  std::vector<Member> members;
  std::size_t fields = 0;
  FunctionObject* initializer = nullptr;  // gives unset members their defaults; null: there are none
  FunctionObject *onCreate = nullptr, *onClone = nullptr;

 private:
  std::unordered_map<const NameObject*, std::size_t> places_;
};

struct InstanceObject : Object {
  static constexpr Kind kKind = Kind::instance;
  explicit InstanceObject(StructObject* type) : Object(kKind), structure(type), fields(type->fields) {}
  void trace(Tracer& tracer) const override {
    tracer.mark(structure);
    tracer.markAll(fields);
  }
  std::size_t footprint() const override { return 72 + fields.size() * sizeof(Value); }
  StructObject* structure;
  std::vector<Value> fields;
};

// What & makes: a place that can be read and written.
struct ReferenceObject : Object {
  static constexpr Kind kKind = Kind::reference;
  enum class To : std::uint8_t { cell, slot, global, property, element, member };
  ReferenceObject(To target, Value holder, Value selector) : Object(kKind), to(target), base(holder), key(selector) {}
  void trace(Tracer& tracer) const override {
    tracer.mark(base);
    tracer.mark(key);
  }
  To to;
  Value base;  // cell, environment, global, or the value with the property or element
  Value key;   // slot number, property name, index
};

// A class of values, which is also its constructor.
struct ClassObject : Object {
  static constexpr Kind kKind = Kind::classValue;
  using Getter = Value (*)(Runtime&, const Value& self);
  using Setter = void (*)(Runtime&, const Value& self, const Value& value);
  struct Property {
    NameObject* name = nullptr;
    Getter get = nullptr;
    Setter set = nullptr;  // null: read-only
  };
  ClassObject(NameObject* className, std::u16string shownName, ClassObject* superClass, BuiltinFunction make)
      : Object(kKind), name(className), title(std::move(shownName)), super(superClass), constructor(make) {}
  void trace(Tracer& tracer) const override;
  const Property* find(const NameObject* property) const;

  NameObject* name;
  const std::u16string title;   // as it prints
  ClassObject* super;           // null for Value
  BuiltinFunction constructor;  // null: cannot be made
  std::vector<Property> properties;
};

// A class and its properties as a table tells them.
struct PropertyRow {
  std::u16string_view name;
  ClassObject::Getter get;
  ClassObject::Setter set = nullptr;
};
struct ClassRow {
  std::u16string_view name, super;  // no superclass: Value
  BuiltinFunction constructor;      // null: none
  std::vector<PropertyRow> properties;
};

// A built-in collection of functions and settings: `bit`, `systemTools`, `callbacks`.
struct NamespaceObject : Object {
  static constexpr Kind kKind = Kind::nameSpace;
  explicit NamespaceObject(NameObject* namespaceName) : Object(kKind), name(namespaceName) {}
  void trace(Tracer& tracer) const override;
  const ClassObject::Property* find(const NameObject* property) const;  // null when there is none
  NameObject* name;
  std::unordered_map<const NameObject*, BuiltinObject*> functions;
  std::vector<ClassObject::Property> properties;
};

// A thing of the host.
struct HostValueObject : Object {
  static constexpr Kind kKind = Kind::host;
  explicit HostValueObject(std::shared_ptr<HostObject> thing) : Object(kKind), host(std::move(thing)) {}
  std::shared_ptr<HostObject> host;
};

// A collection of scene nodes that is worked out anew whenever it is used: `objects`, `lights`, $box*.
struct NodeSetObject : Object {
  static constexpr Kind kKind = Kind::nodeSet;
  enum class Which : std::uint8_t { all, ofClass, selected, path };
  NodeSetObject(Which kindOfSet, std::u16string what) : Object(kKind), which(kindOfSet), text(std::move(what)) {}
  Which which;
  std::u16string text;  // the superclass or the path
};

// A rollout, macro script, plugin or the like: it has a name and does nothing.
struct DefinitionObject : Object {
  static constexpr Kind kKind = Kind::definition;
  DefinitionObject(std::u16string definitionKind, std::u16string definitionName)
      : Object(kKind), what(std::move(definitionKind)), name(std::move(definitionName)) {}
  std::u16string what, name;
};

}  // namespace hostkit::script

#include "hostkit/script/machine/properties.h"

#include "hostkit/script/machine/classes.h"
#include "hostkit/script/machine/elements.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"

namespace hostkit::script {
namespace {

[[noreturn]] void throwUnknown(Runtime& runtime, const Value& value, const NameObject* name) {
  throw ScriptError(u"-- Unknown property: \"" + name->text + u"\" in " + printed(runtime, value));
}

const StructObject::Member* findMember(Runtime& runtime, const StructObject& structure, NameObject* name,
                                       const StructObject* from) {
  const auto* member = structure.find(name);
  if (member && member->isPrivate && from != &structure) throwPrivateMember(runtime, structure, name);
  return member;
}

// The property of an element, for every element.
Value mapped(Runtime& runtime, const Value& collection, NameObject* name) {
  const Root elements(runtime.heap(), elementsOf(runtime, collection));
  const Root made(runtime.heap(), runtime.heap().make<ArrayObject>());
  for (std::size_t i = 0; i < as<ArrayObject>(elements.value)->items.size(); ++i)
    appendTo(runtime, *as<ArrayObject>(made.value),
             getProperty(runtime, as<ArrayObject>(elements.value)->items[i], name, nullptr));
  return made.value;
}

std::optional<Value> find(Runtime& runtime, const Value& value, NameObject* name, const StructObject* from) {
  if (const auto* instance = as<InstanceObject>(value)) {
    const auto* member = findMember(runtime, *instance->structure, name, from);
    if (!member) return std::nullopt;
    if (!member->isMethod) return instance->fields[member->field];
    return runtime.heap().make<BoundMethodObject>(value, Value(member->function), name);
  }
  if (const auto* structure = as<StructObject>(value)) {
    const auto* member = findMember(runtime, *structure, name, from);
    if (!member || !member->isMethod) return std::nullopt;
    return runtime.heap().make<BoundMethodObject>(value, Value(member->function), name);
  }
  if (const auto* pair = as<DataPairObject>(value))
    for (std::size_t i = 0; i < 2; ++i)
      if (pair->names[i] == name) return pair->values[i];
  if (const auto* space = as<NamespaceObject>(value)) {
    const auto found = space->functions.find(name);
    if (found != space->functions.end()) return Value(found->second);
    if (const auto* property = space->find(name)) return property->get(runtime, value);
    return std::nullopt;
  }
  if (const auto* host = as<HostValueObject>(value)) {
    const AllocationFrame frame(runtime.port());
    if (const auto found = host->host->get(name->folded)) return fromHost(runtime, *found);
    for (const auto& function : host->host->functionNames())
      if (runtime.name(function) == name) return runtime.heap().make<BoundMethodObject>(value, Value(), name);
  }
  if (const auto* property = nativeClassOf(runtime, value)->find(name)) return property->get(runtime, value);
  if (as<NodeSetObject>(value)) return mapped(runtime, value, name);
  return std::nullopt;
}

}  // namespace

void throwPrivateMember(Runtime& runtime, const StructObject& structure, const NameObject* name) {
  throwRuntimeError(u"Attempting to access private member: \"" + name->text + u"\" in: " +
                    printed(runtime, Value(const_cast<StructObject*>(&structure))));
}

Value getProperty(Runtime& runtime, const Value& value, NameObject* name, const StructObject* from) {
  if (const auto found = find(runtime, value, name, from)) return *found;
  if (const auto* definition = as<DefinitionObject>(value))
    throwRuntimeError(u"User interface is not supported by this host: " + definition->what + u" " + definition->name);
  throwUnknown(runtime, value, name);
}

bool hasProperty(Runtime& runtime, const Value& value, NameObject* name) {
  if (const auto* instance = as<InstanceObject>(value)) {
    const auto* member = instance->structure->find(name);
    return member && !member->isPrivate;
  }
  if (const auto* host = as<HostValueObject>(value))
    if (host->host->get(name->folded)) return true;
  if (const auto* pair = as<DataPairObject>(value))
    if (pair->names[0] == name || pair->names[1] == name) return true;
  if (const auto* space = as<NamespaceObject>(value)) return space->find(name) || space->functions.contains(name);
  return nativeClassOf(runtime, value)->find(name) != nullptr;
}

std::vector<NameObject*> propertyNames(Runtime& runtime, const Value& value) {
  std::vector<NameObject*> names;
  const StructObject* structure = as<StructObject>(value);
  if (const auto* instance = as<InstanceObject>(value)) structure = instance->structure;
  if (structure) {
    for (const auto& member : structure->members)
      if (!member.isPrivate) names.push_back(member.name);
  } else if (const auto* host = as<HostValueObject>(value)) {
    for (const auto& name : host->host->propertyNames()) names.push_back(runtime.name(name));
  } else if (const auto* space = as<NamespaceObject>(value)) {
    for (const auto& property : space->properties) names.push_back(property.name);
  } else {
    for (const auto& property : nativeClassOf(runtime, value)->properties) names.push_back(property.name);
  }
  return names;
}

void setProperty(Runtime& runtime, const Value& target, NameObject* name, const Value& value,
                 const StructObject* from) {
  if (auto* instance = as<InstanceObject>(target)) {
    const auto* member = findMember(runtime, *instance->structure, name, from);
    if (!member || member->isMethod) throwUnknown(runtime, target, name);
    instance->fields[member->field] = value;
    return;
  }
  if (auto* pair = as<DataPairObject>(target)) {
    for (std::size_t i = 0; i < 2; ++i)
      if (pair->names[i] == name) {
        pair->values[i] = value;
        return;
      }
  }
  if (const auto* host = as<HostValueObject>(target)) {
    if (setOfHost(runtime, *host->host, *name, value)) return;
    if (host->host->get(name->folded)) throwRuntimeError(u"Property is read-only: " + name->text);
  }
  const auto* space = as<NamespaceObject>(target);
  const auto* property = space ? space->find(name) : nativeClassOf(runtime, target)->find(name);
  if (!property && (as<NodeSetObject>(target) || as<ArrayObject>(target))) {
    const Root elements(runtime.heap(), elementsOf(runtime, target));
    for (std::size_t i = 0; i < as<ArrayObject>(elements.value)->items.size(); ++i)
      setProperty(runtime, as<ArrayObject>(elements.value)->items[i], name, value, from);
    return;
  }
  if (!property) throwUnknown(runtime, target, name);
  if (!property->set) throwRuntimeError(u"Property is read-only: " + name->text);
  property->set(runtime, target, value);
}

}  // namespace hostkit::script

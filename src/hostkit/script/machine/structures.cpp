// What code, functions and structures hold, and look-up in them.
#include "hostkit/script/machine/structures.h"

namespace hostkit::script {

void CodeObject::trace(Tracer& tracer) const {
  tracer.markAll(constants);
  tracer.markAll(keywords);
  for (const auto& list : keywordLists) tracer.markAll(list);
}

Place CodeObject::placeOf(std::size_t instruction) const {
  if (instruction >= positions.size() || sources.empty()) return {};
  const Position& at = positions[instruction];
  return {sources[at.source], at.offset};
}

void FunctionObject::trace(Tracer& tracer) const {
  tracer.mark(code);
  tracer.mark(environment);
  tracer.mark(owner);
}

Value Call::keyword(std::u16string_view name) const {
  for (std::size_t i = 0; i < keywordNames.size(); ++i)
    if (keywordNames[i]->folded == name) return keywordValues[i];
  return Value::unsupplied();
}

void StructObject::trace(Tracer& tracer) const {
  tracer.mark(name);
  for (const Member& member : members) {
    tracer.mark(member.name);
    tracer.mark(member.function);
  }
  tracer.mark(initializer);
  tracer.mark(onCreate);
  tracer.mark(onClone);
}

const StructObject::Member* StructObject::find(const NameObject* member) const {
  const auto found = places_.find(member);
  return found == places_.end() ? nullptr : &members[found->second];
}

void StructObject::add(const Member& member) {
  places_[member.name] = members.size();
  members.push_back(member);
  if (!member.isMethod) members.back().field = fields++;
}

void ClassObject::trace(Tracer& tracer) const {
  tracer.mark(name);
  tracer.mark(super);
  for (const Property& property : properties) tracer.mark(property.name);
}

const ClassObject::Property* NamespaceObject::find(const NameObject* property) const {
  for (const ClassObject::Property& each : properties)
    if (each.name == property) return &each;
  return nullptr;
}

void NamespaceObject::trace(Tracer& tracer) const {
  tracer.mark(name);
  for (const auto& [key, function] : functions) tracer.mark(function);
  for (const auto& property : properties) tracer.mark(property.name);
}

const ClassObject::Property* ClassObject::find(const NameObject* property) const {
  for (const ClassObject* each = this; each; each = each->super)
    for (const Property& candidate : each->properties)
      if (candidate.name == property) return &candidate;
  return nullptr;
}

}  // namespace hostkit::script

// The base of what scripts see once in a host: the layers, the viewports, the renderers.
#pragma once

#include <memory>

#include "hostkit/bindings/table_object.h"
#include "standin/host/core.h"

namespace standin::bindings {

using hostkit::bindings::Arguments;
using hostkit::bindings::Function;
using hostkit::bindings::Property;
using hostkit::script::HostObject;
using hostkit::script::HostOk;
using hostkit::script::HostValue;

// `Object` names its class and its printed form as `kClassName` and `kPrinted`. All objects made of one core are the
// same to scripts.
template <class Object>
class SceneObject : public hostkit::bindings::TableObject<Object> {
 public:
  // `core` is borrowed.
  explicit SceneObject(host::Core& core) : core_(core) {}

  std::u16string className() const override { return Object::kClassName; }
  std::u16string printed() const override { return Object::kPrinted; }
  const void* identity() const override { return &core_; }

  // For the tables.
  host::Core& core() const { return core_; }
  scene::Scene& scene() const { return core_.live().description(); }

 private:
  host::Core& core_;
};

}  // namespace standin::bindings

// The host as scripts see it: time, render settings, files, renderer, nodes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/bindings/kept_settings.h"
#include "hostkit/bindings/table_object.h"
#include "standin/host/core.h"

namespace standin::bindings {

// What callbacks.notificationParam() answers for it: the path, the frame's time, or undefined.
hostkit::script::HostValue eventParameter(const host::EventParameter& parameter);

class ScriptBindings : public hostkit::bindings::TableObject<ScriptBindings, hostkit::script::HostBindings> {
 public:
  // `core` is borrowed.
  ScriptBindings(host::Core& core, std::function<void(const std::string&)> log);

  static std::span<const hostkit::bindings::Property<ScriptBindings>> properties();
  static std::span<const hostkit::bindings::Function<ScriptBindings>> functions();
  // The table's and the settings that are kept.
  std::vector<std::u16string> propertyNames() const override;
  std::optional<hostkit::script::HostValue> get(std::u16string_view name) override;
  bool set(std::u16string_view name, const hostkit::script::HostValue& value) override;

  std::vector<std::shared_ptr<hostkit::script::HostObject>> nodes() override;
  std::int32_t ticksPerFrame() override { return core_.TicksPerFrame(); }
  std::int32_t time() override { return core_.GetTime(); }
  void setTime(std::int32_t ticks) override { core_.SetTime(ticks, true); }
  hostkit::script::HostInterval activeSegment() override;
  void log(std::u16string_view text) override;

  // For the tables.
  host::Core& core() { return core_; }
  std::u16string& renderType() { return renderType_; }

 private:
  host::Core& core_;
  std::function<void(const std::string&)> log_;
  hostkit::bindings::KeptSettings settings_;
  std::u16string renderType_ = u"view";  // kept for scripts; the worker says what is rendered
};

}  // namespace standin::bindings

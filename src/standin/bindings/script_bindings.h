// The host as scripts see it: time, render settings, files, renderer, nodes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/script/machine/host_bindings.h"
#include "standin/bindings/script_settings.h"
#include "standin/host/core.h"

namespace standin::bindings {

class ScriptBindings : public hostkit::script::HostBindings {
 public:
  // `core` is borrowed.
  ScriptBindings(host::Core& core, std::function<void(const std::string&)> log);

  std::vector<std::u16string> propertyNames() const override;
  std::vector<std::u16string> functionNames() const override;
  std::optional<hostkit::script::HostValue> get(std::u16string_view name) override;
  bool set(std::u16string_view name, const hostkit::script::HostValue& value) override;
  std::optional<hostkit::script::HostValue> call(std::u16string_view name,
                                                 const std::vector<hostkit::script::HostValue>& arguments,
                                                 const hostkit::script::HostKeywords& keywords) override;

  std::vector<std::shared_ptr<hostkit::script::HostObject>> nodes() override;
  std::int32_t ticksPerFrame() override { return core_.TicksPerFrame(); }
  std::int32_t time() override { return core_.GetTime(); }
  void setTime(std::int32_t ticks) override { core_.SetTime(ticks, true); }
  hostkit::script::HostInterval activeSegment() override;
  void log(std::u16string_view text) override;

  host::Core& core() { return core_; }

 private:
  host::Core& core_;
  std::function<void(const std::string&)> log_;
  ScriptSettings settings_;
  std::u16string renderType_ = u"view";  // kept for scripts; the worker says what is rendered
};

}  // namespace standin::bindings

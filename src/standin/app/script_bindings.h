// The host as scripts see it: time, render settings, files, renderer, nodes.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "standin/app/core.h"
#include "standin/app/script_settings.h"
#include "standin/maxscript/host_bindings.h"

namespace standin::app {

class ScriptBindings : public maxscript::HostBindings {
 public:
  // `core` is borrowed.
  ScriptBindings(Core& core, std::function<void(const std::string&)> log);

  std::vector<std::u16string> propertyNames() const override;
  std::vector<std::u16string> functionNames() const override;
  std::optional<maxscript::HostValue> get(std::u16string_view name) override;
  bool set(std::u16string_view name, const maxscript::HostValue& value) override;
  std::optional<maxscript::HostValue> call(std::u16string_view name, const std::vector<maxscript::HostValue>& arguments,
                                           const maxscript::HostKeywords& keywords) override;

  std::vector<std::shared_ptr<maxscript::HostObject>> nodes() override;
  std::int32_t ticksPerFrame() override { return core_.TicksPerFrame(); }
  std::int32_t time() override { return core_.GetTime(); }
  void setTime(std::int32_t ticks) override { core_.SetTime(ticks, true); }
  maxscript::HostInterval activeSegment() override;
  void log(std::u16string_view text) override;

  Core& core() { return core_; }

 private:
  Core& core_;
  std::function<void(const std::string&)> log_;
  ScriptSettings settings_;
  std::u16string renderType_ = u"view";  // kept for scripts; the worker says what is rendered
};

}  // namespace standin::app

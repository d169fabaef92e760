// A host for script tests: a few globals and nodes, all kept in memory.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "hostkit/script/machine/host_bindings.h"

namespace tests {

using hostkit::script::HostObject;
using hostkit::script::HostValue;

// Properties by lower-case name.
class FakeNode : public HostObject {
 public:
  FakeNode(std::u16string type, std::u16string super, std::map<std::u16string, HostValue, std::less<>> properties)
      : type_(std::move(type)), super_(std::move(super)), properties_(std::move(properties)) {}
  std::u16string className() const override { return type_; }
  std::u16string superClassName() const override { return super_; }
  std::u16string printed() const override;
  std::vector<std::u16string> propertyNames() const override;
  std::optional<HostValue> get(std::u16string_view name) override;
  bool set(std::u16string_view name, const HostValue& value) override;

 private:
  std::u16string type_, super_;
  std::map<std::u16string, HostValue, std::less<>> properties_;
};

// Globals: renderWidth (a number), sliderTime, rendOutputFilename, testFolder (read-only), echo (an object whose
// function `twice` doubles a number and `fail` raises an error). Nodes: Camera01, "Key Light", box1 with its child
// box2.
class FakeScriptHost : public hostkit::script::HostBindings {
 public:
  explicit FakeScriptHost(std::u16string folder);
  std::vector<std::u16string> propertyNames() const override;
  std::vector<std::u16string> functionNames() const override { return {u"hostFunction"}; }
  std::optional<HostValue> get(std::u16string_view name) override;
  bool set(std::u16string_view name, const HostValue& value) override;
  std::optional<HostValue> call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                const hostkit::script::HostKeywords& keywords) override;
  std::vector<std::shared_ptr<HostObject>> nodes() override { return nodes_; }
  std::vector<std::pair<std::u16string, std::u16string>> classes() override { return {{u"Box", u"GeometryClass"}}; }
  std::int32_t time() override { return time_; }
  void setTime(std::int32_t ticks) override { time_ = ticks; }
  void log(std::u16string_view text) override { logged.emplace_back(text); }

  std::vector<std::u16string> logged;

 private:
  std::u16string folder_, output_;
  std::int32_t width_ = 640, time_ = 0;
  std::vector<std::shared_ptr<HostObject>> nodes_;
};

}  // namespace tests

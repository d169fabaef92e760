#include "fake_script_host.h"

#include "hostsdk/script_value.h"

namespace tests {
namespace {

using namespace hostkit::script;

class Echo : public HostObject {
 public:
  std::u16string className() const override { return u"Echo"; }
  std::u16string printed() const override { return u"<echo>"; }
  std::vector<std::u16string> functionNames() const override { return {u"twice", u"fail"}; }
  std::optional<HostValue> get(std::u16string_view) override { return std::nullopt; }
  std::optional<HostValue> call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                const HostKeywords&) override {
    if (name == u"twice") return std::get<std::int32_t>(arguments.at(0)) * 2;
    if (name == u"fail") throw hostsdk::RuntimeError(u"the host says no");
    return std::nullopt;
  }
};

}  // namespace

std::u16string FakeNode::printed() const {
  return u"$" + type_ + u":" + std::get<std::u16string>(properties_.at(u"name")) + u" @ [0.000000,0.000000,0.000000]";
}

std::vector<std::u16string> FakeNode::propertyNames() const {
  std::vector<std::u16string> names;
  for (const auto& [name, value] : properties_) names.push_back(name);
  return names;
}

std::optional<HostValue> FakeNode::get(std::u16string_view name) {
  const auto found = properties_.find(name);
  return found == properties_.end() ? std::nullopt : std::optional(found->second);
}

bool FakeNode::set(std::u16string_view name, const HostValue& value) {
  const auto found = properties_.find(name);
  if (found == properties_.end() || name == u"parent") return false;
  found->second = value;
  return true;
}

FakeScriptHost::FakeScriptHost(std::u16string folder) : folder_(std::move(folder)) {
  const auto node = [&](const char16_t* type, const char16_t* super, const char16_t* name, const HostValue& parent) {
    nodes_.push_back(std::make_shared<FakeNode>(
        type, super,
        std::map<std::u16string, HostValue, std::less<>>{{u"name", std::u16string(name)},
                                                         {u"parent", parent},
                                                         {u"ishidden", false},
                                                         {u"isselected", false},
                                                         {u"position", HostPoint3{1, 2, 3}}}));
    return nodes_.back();
  };
  node(u"Freecamera", u"camera", u"Camera01", {});
  node(u"Omnilight", u"light", u"Key Light", {});
  const auto parent = node(u"Box", u"GeometryClass", u"box1", {});
  node(u"Box", u"GeometryClass", u"box2", parent);
}

std::vector<std::u16string> FakeScriptHost::propertyNames() const {
  return {u"renderWidth", u"sliderTime", u"rendOutputFilename", u"testFolder", u"echo"};
}

std::optional<HostValue> FakeScriptHost::get(std::u16string_view name) {
  if (name == u"renderwidth") return width_;
  if (name == u"slidertime") return HostTime{time_};
  if (name == u"rendoutputfilename") return output_;
  if (name == u"testfolder") return folder_;
  if (name == u"echo") return std::make_shared<Echo>();
  return std::nullopt;
}

bool FakeScriptHost::set(std::u16string_view name, const HostValue& value) {
  if (name == u"renderwidth") {
    width_ = std::get<std::int32_t>(value);
  } else if (name == u"slidertime") {
    time_ = std::holds_alternative<HostTime>(value) ? std::get<HostTime>(value).ticks
                                                    : std::get<std::int32_t>(value) * ticksPerFrame();
  } else if (name == u"rendoutputfilename") {
    output_ = std::get<std::u16string>(value);
  } else {
    return false;
  }
  return true;
}

std::optional<HostValue> FakeScriptHost::call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                              const HostKeywords& keywords) {
  if (name != u"hostfunction") return std::nullopt;
  return static_cast<std::int32_t>(arguments.size() * 10 + keywords.size());
}

}  // namespace tests

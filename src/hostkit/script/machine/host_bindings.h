// What the script runtime asks of the host that it runs in. The host implements these; the runtime knows no scene.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace hostsdk {
class Value;
}

namespace hostkit::script {

class HostObject;

// A value on its way between host and script. monostate is `undefined`.
struct HostOk {};
struct HostTime {
  std::int32_t ticks = 0;
};
struct HostInterval {
  std::int32_t start = 0, end = 0;  // ticks
};
struct HostName {
  std::u16string text;  // without the '#'
};
struct HostPoint3 {
  float x = 0, y = 0, z = 0;
};
struct HostColor {
  float r = 0, g = 0, b = 0, a = 255;  // 0 to 255
};
struct HostQuat {
  float x = 0, y = 0, z = 0, w = 1;
};
struct HostMatrix3 {
  std::array<float, 12> rows{1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};  // three axes, then the translation
};
struct HostList;
using HostValue = std::variant<std::monostate, HostOk, bool, std::int32_t, std::int64_t, float, double, std::u16string,
                               HostName, HostTime, HostInterval, HostPoint3, HostColor, HostQuat, HostMatrix3,
                               std::shared_ptr<HostList>, std::shared_ptr<HostObject>, hostsdk::Value*>;
// An array. Values without a counterpart above travel as hostsdk::Value*, good until the call returns.
struct HostList {
  std::vector<HostValue> items;
};
// What a host throws when it is handed a value of another kind than it takes; the script's error is
// "-- Type error: renderWidth requires Integer, got: \"wide\"".
struct WrongValue {
  std::u16string what, wanted;
  HostValue got;
};
using HostKeywords = std::vector<std::pair<std::u16string, HostValue>>;

// Something of the host that scripts see as a value: a node, the renderer, a published interface.
// Names arrive in lower case. Any operation may throw hostsdk::RuntimeError, which becomes the script's error.
class HostObject {
 public:
  virtual ~HostObject() = default;

  virtual std::u16string className() const = 0;  // what classOf prints
  virtual std::u16string superClassName() const { return u"Value"; }
  virtual std::u16string printed() const = 0;
  // Two objects with the same identity are equal to scripts.
  virtual const void* identity() const { return this; }

  // Names as they are to be shown.
  virtual std::vector<std::u16string> propertyNames() const { return {}; }
  virtual std::vector<std::u16string> functionNames() const { return {}; }
  // nullopt or false: there is no such property.
  virtual std::optional<HostValue> get(std::u16string_view name) = 0;
  virtual bool set(std::u16string_view, const HostValue&) { return false; }
  // nullopt: there is no such function.
  virtual std::optional<HostValue> call(std::u16string_view, const std::vector<HostValue>&, const HostKeywords&) {
    return std::nullopt;
  }
};

// The host itself. Its properties are script globals with a life of their own (sliderTime, renderWidth, renderers,
// maxOps, ...), its functions global functions (resetMaxFile, render, ...); both are listed once, when the runtime is
// made.
class HostBindings : public HostObject {
 public:
  std::u16string className() const override { return u"Host"; }
  std::u16string printed() const override { return u"<host>"; }

  // All nodes of the scene, in scene order. A node has at least the properties `name`, `parent` (a node or undefined)
  // and `isSelected` (a boolean), and as superClassName one of GeometryClass, camera, light, helper, shape.
  virtual std::vector<std::shared_ptr<HostObject>> nodes() { return {}; }

  // Classes of the host's objects, each with its superclass, that scripts compare classOf with.
  virtual std::vector<std::pair<std::u16string, std::u16string>> classes() { return {}; }

  virtual std::int32_t ticksPerFrame() { return 160; }
  // Scene time in ticks; scripts change it for the stretch of `at time`.
  virtual std::int32_t time() { return 0; }
  virtual void setTime(std::int32_t) {}
  // In ticks; for time literals that are a fraction of it.
  virtual HostInterval activeSegment() { return {0, 100 * ticksPerFrame()}; }

  // Messages that a user interface would have shown.
  virtual void log(std::u16string_view) {}
};

// How a host wants its scripts run.
struct EngineOptions {
  // Receives what scripts print.
  std::function<void(std::u16string_view)> listener;
  // Folders searched by fileIn and include after the path as given and beside the running script; the first one is what
  // getDir #scripts answers and "$scripts" in file names stands for. Without any it is a folder below the temporary
  // one.
  std::vector<std::u16string> scriptFolders;
  // Collect garbage at every allocation. Also switched on by CORVANTIS_GC_STRESS=1.
  bool collectAlways = false;
  // Loop rounds and calls after which a script fails; 0: no limit.
  std::uint64_t stepLimit = 0;
  // Bytes of live values after which a script fails.
  std::size_t heapLimit = std::size_t{2} << 30;
  // Without it createFile, deleteFile and their like fail: for running scripts that nobody has vouched for.
  bool fileAccess = true;
};

}  // namespace hostkit::script

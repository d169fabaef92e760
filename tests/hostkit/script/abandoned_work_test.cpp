// Scripts whose native stack was left without unwinding, as a trapped fault leaves it: what runs next finds everything
// as if they had been ended in order.
#include <gtest/gtest.h>

#include "fake_script_host.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/text.h"
#include "platform/fault_guard.h"
#include "support/faults.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#endif

namespace {

using namespace hostkit::script;

// hostFunction faults.
class FaultingHost : public tests::FakeScriptHost {
 public:
  FaultingHost() : FakeScriptHost(u"") {}
  std::optional<HostValue> call(std::u16string_view name, const std::vector<HostValue>& arguments,
                                const HostKeywords& keywords) override {
    if (name == u"hostfunction") support::readFromNull();
    return FakeScriptHost::call(name, arguments, keywords);
  }
};

#if defined(__SANITIZE_ADDRESS__)
// What the abandoned frames held on the heap is lost, as everywhere where no destructor runs: that is the fault's
// doing, and no leak of ours.
using AbandonedMemory = __lsan::ScopedDisabler;
#else
struct AbandonedMemory {
  AbandonedMemory() {}
};
#endif

template <class Work>
std::uint32_t guarded(Work work) {
  const AbandonedMemory isLost;
  return platform::runGuarded([](void* argument) { (*static_cast<Work*>(argument))(); }, &work,
                              [](void*, const platform::FaultContext&) { return true; }, nullptr);
}

class AbandonedWork : public testing::Test {
 protected:
  static EngineOptions options() {
    EngineOptions options;
    options.listener = [](std::u16string_view) {};
    options.collectAlways = true;
    return options;
  }
  // Faults inside natives that hold values, contexts, catches, files and nested evaluations.
  void fault() {
    const std::u16string script =
        u"fn order a b = ( at time 7 ( try ( execute \"hostFunction()\" ) catch () ); 0 )\n"
        u"qsort (for i = 1 to 9 collect i as string) order";
    EXPECT_EQ(guarded([&] { engine_.runText(script); }), platform::fault::kAccessViolation);
  }
  std::string value(const std::u16string& script) {
    const RunResult result = engine_.runText(script);
    return hostkit::toUtf8(result.succeeded ? result.printed : result.errorText);
  }

  FaultingHost host_;
  Engine engine_{host_, options()};
};

TEST_F(AbandonedWork, LeavesNothingBehindForTheNextScript) {
  const std::int32_t time = host_.time();
  const std::size_t roots = engine_.runtime().heap().roots();
  fault();
  EXPECT_EQ(value(u"(for i = 1 to 100 collect i as string).count"), "100");
  EXPECT_EQ(host_.time(), time) << "at time ended";
  EXPECT_EQ(engine_.runtime().heap().roots(), roots);
  EXPECT_FALSE(engine_.runtime().evaluator().isRunning());
}

TEST_F(AbandonedWork, MayHappenMoreOftenThanEvaluationsMayNest) {
  for (int i = 0; i < 2 * Evaluator::kMaxNested; ++i) fault();
  EXPECT_EQ(value(u"execute \"try (throw 1) catch (2)\""), "2");
}

TEST_F(AbandonedWork, InACallbackScriptEndsThatCallbackOnly) {
  value(
      u"global heard = #()\ncallbacks.addScript #preRender \"append heard 1; if heard.count == 1 do hostFunction()\"");
  EXPECT_EQ(guarded([&] { engine_.fireNotification(u"preRender", HostValue()); }), platform::fault::kAccessViolation);
  engine_.fireNotification(u"preRender", HostValue());
  EXPECT_EQ(value(u"heard.count"), "2");
  EXPECT_EQ(value(u"callbacks.notificationParam()"), "undefined");
}

TEST_F(AbandonedWork, InsideAScriptThatGoesOnLeavesThatScriptAlone) {
  const Evaluator::Stretch outer(engine_.runtime().evaluator());
  const Root kept(engine_.runtime().heap(), engine_.runtime().newString(u"kept"));
  fault();
  EXPECT_EQ(value(u"1 + 1"), "2");
  EXPECT_EQ(hostkit::toUtf8(static_cast<StringObject*>(kept.value.o)->text()), "kept");
}

}  // namespace

// TessarynUtil as a host calls it: by function id, with a fake host behind it and a scripted worker before it.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "plugin/interface/corvantis_interface.h"
#include "support/fake_clock.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"
#include "support/log_capture.h"
#include "support/scripted_peer.h"

namespace corvantis {

class InterfaceTest : public testing::Test {
 protected:
  InterfaceTest() { startAfresh(); }

  void startAfresh() {
    tessarynUtil.reset();
    worker = std::make_unique<support::ScriptedPeer>();
    socket = std::make_unique<win32::simple_socket>();
    job = std::make_unique<JobState>();
    log.startAgain();
    tessarynUtil = std::make_unique<CorvantisInterface>(*job, *socket, running);
  }

  // The id of a function or a property's getter, as the descriptor tells it.
  hostsdk::FunctionID idOf(const std::u16string& name) const {
    for (const auto& function : tessarynUtil->published().functions)
      if (function.name == name) return function.id;
    for (const auto& property : tessarynUtil->published().properties)
      if (property.name == name) return property.getter;
    ADD_FAILURE() << "nothing published as " << support::narrow(name);
    return hostsdk::kNoFunction;
  }

  hostsdk::FPValue text(const std::u16string& characters) {
    return hostsdk::FPValue::ofValue(scripts.newString(characters));
  }

  hostsdk::FPValue call(const std::u16string& name, std::vector<hostsdk::FPValue> arguments = {}) {
    hostsdk::FPParams params;
    params.params = std::move(arguments);
    hostsdk::FPValue result;
    EXPECT_EQ(tessarynUtil->Invoke(idOf(name), 0, result, &params), hostsdk::kDispatchOk);
    return result;
  }

  // A result as a script would see it.
  std::string shown(const hostsdk::FPValue& value) {
    if (value.type == hostsdk::kFpTypeInt) return std::to_string(value.i);
    if (value.type == hostsdk::kFpTypeBool) return value.i != 0 ? "true" : "false";
    if (value.type != hostsdk::kFpTypeValue) return "nothing";
    return value.v == scripts.undefined() ? "undefined" : "\"" + support::narrow(value.v->text().value()) + "\"";
  }

  // Runs `script` as a script of the worker's, in the course of which `worker`'s next steps happen. What it gives back
  // is the script's text.
  bool runScript(const std::function<std::string()>& script, const std::function<void()>& workersPart,
                 const std::string& reply) {
    scripts.evaluation = [&](const std::u16string&) {
      const std::string result = script();
      return scripts.newString(std::u16string(result.begin(), result.end()));
    };
    worker->handshake("token").send("ExecuteStringScript,12,x").expect("STARTED");
    workersPart();
    worker->expect(reply);
    if (reply.rfind("SUCCESS", 0) == 0) worker->close();
    worker->start();
    const auto result = call(u"RunCorvantisDaemon", {hostsdk::FPValue::ofInt(worker->port()), text(u"token")});
    worker->finish();
    return result.i != 0;
  }

  support::FakeClock clock;
  platform::ClockReplacement clockReplacement{clock};
  support::FakeScriptRuntime scripts;
  support::FakeHost host{&scripts};
  bool running = false;
  std::unique_ptr<JobState> job = std::make_unique<JobState>();
  support::LogCapture log;
  std::unique_ptr<win32::simple_socket> socket;
  std::unique_ptr<support::ScriptedPeer> worker;
  std::unique_ptr<CorvantisInterface> tessarynUtil;
};

}  // namespace corvantis

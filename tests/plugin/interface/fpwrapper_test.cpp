#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <utility>

#include "plugin/interface/fpwrapper/static_interface.h"
#include "support/fake_host.h"
#include "support/fake_script_runtime.h"

namespace corvantis::max3d::fpwrapper {
namespace {

using hostsdk::FPParams;
using hostsdk::FPValue;
using testing::ElementsAre;

constexpr std::uint32_t kFlags = 4;
constexpr hostsdk::Interface_ID kId{0x11, 0x22};

class Sample : public FFStaticInterface<Sample, kFlags> {
 public:
  using Publish = void (*)(FFCreateDescriptor<Sample, kFlags>&);
  explicit Sample(Publish publish, hostsdk::Interface_ID id = kId) {
    FFCreateDescriptor descriptor(*this, id, u"Sample");
    publish(descriptor);
    EXPECT_FALSE(descriptorLoaded());
    descriptor.finish();
  }

  bool textText(const std::u16string& a, const std::u16string& b) { return noted.push_back(a + b), true; }
  bool nothing() { return false; }
  void text(const std::u16string& value) { noted.push_back(value); }
  std::int32_t getInteger() { return -7; }

  void standardError(const std::u16string& message) {
    throw std::runtime_error(std::string(message.begin(), message.end()));
  }
  void hostError() { throw hostsdk::MAXException(u"host", 3); }
  void scriptError() { throw hostsdk::RuntimeError(u"script"); }

  std::vector<std::u16string> noted;
};

class FunctionPublishing : public testing::Test {
 protected:
  FPValue textParameter(const std::u16string& text) { return FPValue::ofValue(scripts.newString(text)); }
  static FPParams block(std::vector<FPValue> values) {
    FPParams params;
    params.params = std::move(values);
    return params;
  }

  // Text and code of the host's error that a call raises.
  static std::pair<std::u16string, int> hostErrorOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const hostsdk::MAXException& error) {
      return {error.message(), error.errorCode()};
    }
    return {u"none", -1};
  }

  support::FakeScriptRuntime scripts;
  support::FakeHost host{&scripts};
};

TEST_F(FunctionPublishing, GivenIdsAndNamesAreKeptAndTheOthersCounted) {
  const Sample sample([](auto& descriptor) {
    descriptor.addFunction(&Sample::nothing, u"first");
    descriptor.addFunction(&Sample::nothing, u"given", {}, 500);
    descriptor.addFunction(&Sample::nothing, u"negative as a signed number", {}, 40000);
    descriptor.addFunction(&Sample::nothing, u"automatic", {}, 65536);
    descriptor.addFunction(&Sample::textText, u"replaced", {u"port"}, 500);
  });
  EXPECT_TRUE(sample.descriptorLoaded());
  std::vector<std::pair<hostsdk::FunctionID, std::u16string>> listed;
  for (const auto& function : sample.published().functions) listed.emplace_back(function.id, function.name);
  EXPECT_THAT(listed, ElementsAre(std::pair(40000, u"negative as a signed number"), std::pair(0, u"first"),
                                  std::pair(1, u"automatic"), std::pair(500, u"replaced")));
  EXPECT_TRUE(sample.published().properties.empty());
  const auto& parameters = sample.published().functions.back().parameters;
  EXPECT_EQ(parameters.at(0).name + u" " + parameters.at(1).name, u"port Param2") << "without a name: numbered";
}

TEST_F(FunctionPublishing, TextsMayBeMissingAndAFunctionWithoutAResultLeavesTheSlotAlone) {
  Sample sample([](auto& descriptor) {
    descriptor.addFunction(&Sample::text, u"text");
    descriptor.addReadOnlyProperty(&Sample::getInteger, u"property");
  });
  FPValue result = FPValue::ofInt(99);
  const std::vector<hostsdk::Value*> textless = {scripts.newOther(std::nullopt, u"no text of its own"), nullptr};
  for (hostsdk::Value* given : textless) {
    FPParams params = block({FPValue::ofValue(given)});
    EXPECT_EQ(sample.Invoke(0, 100, result, &params), hostsdk::kDispatchOk);
  }
  EXPECT_THAT(sample.noted, ElementsAre(u"", u""));
  EXPECT_EQ(result.i, 99);
  sample.Invoke(1, result, nullptr);
  EXPECT_EQ(result.i, -7);
}

TEST_F(FunctionPublishing, RefusesUnknownFunctionsAndMissingParameters) {
  Sample sample([](auto& descriptor) { descriptor.addFunction(&Sample::textText, u"two"); });
  FPValue result = FPValue::ofInt(5);
  EXPECT_EQ(sample.Invoke(1, result, nullptr), hostsdk::kDispatchNoSuchFunction);
  FPParams empty, one = block({textParameter(u"one")}), three = block({3, textParameter(u"x")});
  for (FPParams* params : {static_cast<FPParams*>(nullptr), &empty, &one})
    EXPECT_EQ(hostErrorOf([&] { sample.Invoke(0, result, params); }),
              std::pair(std::u16string(u"Argument index out of bounds, passed into a MaxSDK::Array::operator[]"), 0));
  EXPECT_TRUE(sample.noted.empty());
  EXPECT_EQ(result.i, 5);
  EXPECT_EQ(sample.Invoke(0, result, &three), hostsdk::kDispatchOk) << "more parameters than needed do no harm";
}

TEST_F(FunctionPublishing, TurnsStandardExceptionsIntoHostErrorsAndLetsTheHostsOwnPass) {
  Sample sample([](auto& descriptor) {
    descriptor.addFunction(&Sample::standardError, u"standard");
    descriptor.addFunction(&Sample::hostError, u"host");
    descriptor.addFunction(&Sample::scriptError, u"script");
  });
  FPValue result;
  FPParams params = block({textParameter(u"abc")});
  EXPECT_EQ(hostErrorOf([&] { sample.Invoke(0, result, &params); }), std::pair(std::u16string(u"abc"), 0));
  EXPECT_EQ(hostErrorOf([&] { sample.Invoke(1, result, nullptr); }), std::pair(std::u16string(u"host"), 3));
  EXPECT_THROW(sample.Invoke(2, result, nullptr), hostsdk::RuntimeError);
}

TEST_F(FunctionPublishing, RefusesTheDefaultInterfaceId) {
  const std::string text =
      "FFCreateDescriptor() - The interface ID for the function publishing descriptor \"Sample\" was set to the "
      "default value, its value must be set to a randomly selected constant value.";
  const std::size_t before = hostsdk::registeredInterfaces().size();
  EXPECT_THAT([] { Sample([](auto&) {}, hostsdk::Interface_ID()); }, testing::ThrowsMessage<std::runtime_error>(text));
  EXPECT_EQ(hostsdk::registeredInterfaces().size(), before);
  EXPECT_THAT(host.calls.lines(), testing::Contains(testing::AllOf(testing::HasSubstr("FF Function Publishing Wrapper"),
                                                                   testing::HasSubstr(text))));
}

}  // namespace
}  // namespace corvantis::max3d::fpwrapper

#include "hostsdk/function_publishing.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace hostsdk {
namespace {

std::uint64_t text(const char16_t* characters) { return reinterpret_cast<std::uintptr_t>(characters); }

class Published : public FPStaticInterface {
 public:
  explicit Published(const std::vector<std::uint64_t>& buffer) {
    load_descriptor({1, 2}, u"Test", 0, nullptr, 4, buffer.data());
  }

 protected:
  int dispatchFunction(FunctionID id, TimeValue time, FPValue& result, FPParams* params) override {
    if (id != 7) return kDispatchNoSuchFunction;
    result = FPValue::ofInt(time + params->at(0).i);
    return kDispatchOk;
  }
};

const std::vector<std::uint64_t> kDescriptor{
    7,           text(u"add"),  0, kFpTypeInt, 0,      1, text(u"value"), 0, kFpTypeInt, kTagProperties, 8,
    kNoFunction, text(u"Size"), 0, kFpTypeInt, kTagEnd};

TEST(FunctionPublishing, ReadsADescriptorAndNothingBeyondItsEnd) {
  std::vector<std::uint64_t> buffer = kDescriptor;
  buffer.push_back(0xFFFFFFFFFFFFFFFF);
  const PublishedInterface published = readDescriptor({1, 2}, u"Test", 4, buffer.data());
  ASSERT_EQ(published.functions.size(), 1U);
  EXPECT_EQ(published.functions[0].id, 7);
  EXPECT_EQ(published.functions[0].name, u"add");
  EXPECT_EQ(published.functions[0].resultType, kFpTypeInt);
  ASSERT_EQ(published.functions[0].parameters.size(), 1U);
  EXPECT_EQ(published.functions[0].parameters[0].name, u"value");
  ASSERT_EQ(published.properties.size(), 1U);
  EXPECT_EQ(published.properties[0].getter, 8);
  EXPECT_EQ(published.properties[0].setter, kNoFunction);
  EXPECT_EQ(published.properties[0].name, u"Size");
}

TEST(FunctionPublishing, RefusesWhatBreaksTheRules) {
  const struct {
    std::vector<std::uint64_t> buffer;
    const char16_t* named;
  } cases[] = {
      {{7, 0, 0, kFpTypeInt, 0, 0, kTagEnd}, u"a text as function name"},
      {{7, text(u"f"), 1, kFpTypeInt, 0, 0, kTagEnd}, u"0 as function description"},
      {{7, text(u"f"), 0, kFpTypeInt, 1, 0, kTagEnd}, u"0 as function flags"},
      {{7, text(u"f"), 0, kFpTypeInt, 0, 65, kTagEnd}, u"at most 64 as parameter count"},
      {{7, text(u"f"), 0, text(u"x"), 0, 0, kTagEnd}, u"an integer as result type"},
      {{kTagProperties, 1, kNoFunction, 0, 0, kFpTypeInt, kTagEnd}, u"a text as property name"},
  };
  for (const auto& c : cases) {
    try {
      readDescriptor({1, 2}, u"Test", 4, c.buffer.data());
      ADD_FAILURE() << "accepted";
    } catch (const MAXException& e) {
      EXPECT_NE(e.message().find(c.named), std::u16string::npos) << std::string(e.message().begin(), e.message().end());
    }
  }
}

TEST(FunctionPublishing, AnInterfaceIsRegisteredWhileItLives) {
  const auto registered = [](const FPInterfaceDesc* interface) {
    const auto& all = registeredInterfaces();
    return std::find(all.begin(), all.end(), interface) != all.end();
  };
  const FPInterfaceDesc* address = nullptr;
  {
    Published published(kDescriptor);
    address = &published;
    EXPECT_TRUE(registered(address));
    EXPECT_EQ(published.published().flags, 4U);
    FPValue result;
    FPParams params;
    EXPECT_THROW(published.Invoke(7, 100, result, &params), OutOfRangeException);
    params.params.push_back(FPValue::ofInt(5));
    EXPECT_EQ(published.Invoke(7, 100, result, &params), kDispatchOk);
    EXPECT_EQ(result.i, 105);
    EXPECT_EQ(published.Invoke(9, result, &params), kDispatchNoSuchFunction);
  }
  EXPECT_FALSE(registered(address));
}

}  // namespace
}  // namespace hostsdk

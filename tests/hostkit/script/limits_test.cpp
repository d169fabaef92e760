// Scripts that want too much end in script errors, never in a crash.
#include <gtest/gtest.h>

#include "fake_script_host.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/text.h"

namespace {

using namespace hostkit::script;

struct Excess {
  const char* what;
  std::u16string script;
  const char* complaint;
};

std::u16string repeated(std::u16string_view part, std::size_t times) {
  std::u16string out;
  for (std::size_t i = 0; i < times; ++i) out += part;
  return out;
}

class Limits : public testing::TestWithParam<Excess> {};

TEST_P(Limits, AreScriptErrors) {
  tests::FakeScriptHost host(u"");
  EngineOptions options;
  options.stepLimit = 3'000'000;
  options.heapLimit = std::size_t{256} << 20;
  Engine engine(host, options);
  const RunResult result = engine.runText(GetParam().script);
  EXPECT_FALSE(result.succeeded);
  EXPECT_NE(hostkit::toUtf8(result.errorText).find(GetParam().complaint), std::string::npos)
      << hostkit::toUtf8(result.errorText).substr(0, 2000);
  EXPECT_TRUE(engine.runText(u"1 + 1").succeeded) << "the engine works on";
}

INSTANTIATE_TEST_SUITE_P(
    All, Limits,
    testing::Values(
        Excess{"Recursion", u"fn f n = 1 + f (n + 1)\nf 0", "Stack overflow: functions call each other too deep"},
        Excess{"MutualRecursion", u"global b\nfn a n = b n\nfn b n = a n\na 0", "Stack overflow"},
        Excess{"RecursionThroughExecute", u"global s = \"execute s\"\nexecute s",
               "Stack overflow: evaluations nest too deep"},
        Excess{"RecursionThroughMapped", u"mapped fn m x = m #(x)\nm #(1)", "Stack overflow"},
        Excess{"RecursionThroughConstructor", u"struct S (a = S())\nS()", "Stack overflow"},
        Excess{"RecursionThroughSort", u"fn c a b = ( qsort #(1, 2) c; 0 )\nqsort #(1, 2) c", "Stack overflow"},
        Excess{"EndlessLoop", u"while true do ()", "ran longer than it may"},
        Excess{"EndlessString", u"s = \"xxxxxxxx\"\nwhile true do s += s", "String too long"},
        Excess{"EndlessArray", u"a = #()\na[16777217] = 1", "Array too long"},
        Excess{"EndlessBits", u"a = #{1..100000000}", "BitArray too long"},
        Excess{
            "EndlessStream",
            u"s = stringStream \"\"\nt = \"\"\nfor i = 1 to 20 do t += \"0123456789\" + t\nwhile true do format t to:s",
            "too"},
        Excess{"TooMuchOfEverything", u"all = #()\nwhile true do append all (for i = 1 to 1000 collect i as string)",
               "Out of memory"},
        Excess{"NestedParentheses", repeated(u"(", 100000), "nest too deep"},
        Excess{"NestedArrays", repeated(u"#(", 100000), "nest too deep"},
        Excess{"NestedMinus", repeated(u"- ", 100000) + u"1", "nest too deep"},
        Excess{"LongSum", u"x = 1" + repeated(u" + 1", 100000), "nest too deep"},
        Excess{"LongAccess", u"x" + repeated(u".y", 100000), "nest too deep"},
        Excess{"LongElseIf", repeated(u"if true then 1 else ", 100000), "nest too deep"},
        Excess{"IncludeOfItself", u"include \"no_such_file.ms\"", "include file not found"}),
    [](const auto& tested) { return tested.param.what; });

TEST(Collector, KeepsWhatIsReachableAndFreesTheRest) {
  tests::FakeScriptHost host(u"");
  Engine engine(host, {});
  ASSERT_TRUE(engine.runText(u"keep = #(\"a\", #(\"b\"))\ngc()").succeeded);
  const std::size_t before = engine.runtime().heap().liveObjects();
  ASSERT_TRUE(engine.runText(u"for i = 1 to 1000 do (local t = #(i as string))\ngc()").succeeded);
  EXPECT_LT(engine.runtime().heap().liveObjects(), before + 50);
  EXPECT_EQ(engine.runText(u"keep[2][1]").printed, u"\"b\"");
}

}  // namespace

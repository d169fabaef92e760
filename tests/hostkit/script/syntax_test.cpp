// Checking without running: where problems are, and what must be accepted.
#include <gtest/gtest.h>

#include "fake_script_host.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/script/syntax/source.h"
#include "hostkit/script/syntax/text.h"
#include "support/temporary_folder.h"

namespace {

using namespace hostkit::script;

struct Problem {
  const char* what;
  const char* script;
  const char* expected;  // "line:column: text", empty when there is none
};

class Check : public testing::TestWithParam<Problem> {};

TEST_P(Check, TellsThePlace) {
  const support::TemporaryFolder folder;
  folder.write("a.ms", GetParam().script);
  tests::FakeScriptHost host(u"");
  Engine engine(host, {});
  const auto problems = engine.check(folder.wide("a.ms"));
  std::string found;
  for (const auto& problem : problems) {
    EXPECT_EQ(problem.file, folder.wide("a.ms"));
    found += std::to_string(problem.line) + ":" + std::to_string(problem.column) + ": " + hostkit::toUtf8(problem.text);
  }
  EXPECT_EQ(found, GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    All, Check,
    testing::Values(
        Problem{"Nothing", "", ""},
        Problem{"BracketTooMany", "a = 1\nb = )\n", "2:5: Syntax error: at ), expected <factor>"},
        Problem{"OpenParenthesis", "(\n  a = 1\n", "3:1: Compile error: Unexpected end of script"},
        Problem{"OpenString", "a = \"x\n", "1:5: Syntax error: unterminated string"},
        Problem{"OperatorOnNewLine", "a = 1\n+ 2", "2:1: Syntax error: at +, expected <factor>"},
        Problem{"ThenMissing", "if a b", "1:7: Compile error: Unexpected end of script"},
        Problem{"UnknownCharacter", "a = 3 % 2", "1:7: Syntax error: unexpected character: %"},
        Problem{"CarriageReturns", "a = 1\r\rb = )", "3:5: Syntax error: at ), expected <factor>"},
        Problem{"StructCommaMissing", "struct S (a b)", "1:13: Syntax error: at b, expected )"},
        Problem{"AssignmentToCallParses", "if classOf x = Box then print 1", ""},
        Problem{"MaxAsVariable", "max = 3\nb = a.max + 1\nmax file open\n", ""},
        Problem{"WordsAfterDot", "a.on = b.then.to\nf to:1 set:2 by:3", ""},
        Problem{"ElseOnItsOwnLine", "if a then b\n-- comment\n\nelse c", ""},
        Problem{"SeparatorsInBlocks", "(;a = 1;;b = 2;)", ""},
        Problem{"Paths", "$box*.pos = $a/b/'My Node'.pos\nselect $torso...*\nx = $", ""},
        Problem{"When", "when transform $box changes id:#a obj do ( print 1 )", ""},
        Problem{"Contexts",
                "with undo \"x\" on at time 5f ( a )\nset animate off\nin coordsys local (b)\nabout pivot c", ""},
        Problem{"FunctionForms", "mapped fn f a &b c: d:5 e:#x = ()\nlocal_fn = 1\nfunction g = 1", ""},
        Problem{"IntegerRange", "for i in 1..5 do ()", "1:11: Syntax error: at .., expected do or collect"},
        Problem{"TimesAndNames", "a = 1m15s + 2:10.0 - 0.45n\nb = #2d", ""},
        Problem{"LabelAfterNumber", "case a of (1: b; 2.5: c; default: d)", ""}),
    [](const auto& tested) { return tested.param.what; });

TEST(Decoding, KnowsByteOrderMarksUtf8AndAnsi) {
  EXPECT_EQ(decodeScript("\xEF\xBB\xBF\xC3\xA9"), u"\u00E9");
  EXPECT_EQ(decodeScript("\xC3\xA9"), u"\u00E9");
  EXPECT_EQ(decodeScript("caf\xE9"), u"caf\u00E9");
  EXPECT_EQ(decodeScript(std::string_view("\xFF\xFE\xE9\x00", 4)), u"\u00E9");
}

TEST(Encoding, ReplacesWhatIsIllFormed) {
  EXPECT_EQ(hostkit::fromUtf8("a\xFF\xC3z"), u"a\uFFFD\uFFFDz");
  EXPECT_EQ(hostkit::toUtf8(u"\xD83D\xDE00"), "\xF0\x9F\x98\x80");
  EXPECT_EQ(hostkit::toUtf8(std::u16string{u'a', 0xD83D, u'b', 0xDE00}),
            "a\xEF\xBF\xBD"
            "b\xEF\xBF\xBD");
}

TEST(ErrorReport, ShowsFunctionPlaceCaretAndLocals) {
  const support::TemporaryFolder folder;
  folder.write("job.ms", "fn f a = (\n  local i = 0\n  a[i]\n)\nf #()\n");
  tests::FakeScriptHost host(u"");
  Engine engine(host, {});
  const std::string report = hostkit::toUtf8(engine.runScriptFile(folder.wide("job.ms")).errorText);
  const std::string file = hostkit::toUtf8(folder.wide("job.ms"));
  EXPECT_TRUE(report.starts_with("-- Error occurred in f(); filename: " + file + "; position: ")) << report;
  for (const char* part : {"; line: 3\n-- MAXScript FileIn Exception:\n-- Runtime error: array index must be positive "
                           "number, got: 0\n--    a[i]\n",
                           "^\n-- MAXScript callstack:", "[stack level: 0]", "--\t\t\ta: #()", "--\t\t\ti: 0",
                           "In anonymous codeblock", "called from top-level"})
    EXPECT_NE(report.find(part), std::string::npos) << part << "\nis missing in\n" << report;
}

}  // namespace

// The runtime as plug-ins use it.
#include <gtest/gtest.h>

#include "fake_script_host.h"
#include "hostkit/script/engine/engine.h"
#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/text.h"
#include "hostsdk/function_publishing.h"
#include "hostsdk/services.h"
#include "support/temporary_folder.h"

namespace {

using namespace hostkit::script;

// Runs with a collection at every allocation, so that whatever is not held is gone at once.
class PortTest : public testing::Test {
 protected:
  PortTest() {
    EngineOptions options;
    options.collectAlways = true;
    options.listener = [this](std::u16string_view text) { printed += text; };
    engine = std::make_unique<Engine>(host, options);
    hostsdk::HostServices services;
    services.scripts = &engine->port();
    before = hostsdk::bindHost(services);
  }
  ~PortTest() override { hostsdk::bindHost(before); }

  hostsdk::ScriptRuntime& port() { return engine->port(); }
  hostsdk::Value* evaluate(std::u16string_view text) {
    hostsdk::ScopedValueTempArray kept(3);
    kept[0] = port().newStringStream();
    static_cast<hostsdk::StringStream*>(kept[0])->puts(text);
    kept[1] = port().newParser(port().thread_locals().currentStdout);
    kept[2] = static_cast<hostsdk::Parser*>(kept[1])->compile_all(static_cast<hostsdk::StringStream*>(kept[0]));
    return kept[2] ? kept[2]->eval() : nullptr;
  }
  std::string shown(std::u16string_view text) {
    return written([&](auto& stream) { evaluate(text)->sprin1(stream); });
  }
  template <class Print>
  std::string written(Print print) {
    hostsdk::ScopedValueTempArray kept(1);
    auto* stream = port().newStringStream();
    kept[0] = stream;
    print(*stream);
    return hostkit::toUtf8(stream->text_of_stream());
  }
  std::string errorOf(std::u16string_view text) {
    try {
      evaluate(text);
    } catch (const hostsdk::MAXScriptException& error) {
      return written([&](auto& stream) { error.sprin1(stream); });
    }
    return "no error";
  }

  tests::FakeScriptHost host{u""};
  std::unique_ptr<Engine> engine;
  hostsdk::HostServices before;
  std::u16string printed;
};

TEST_F(PortTest, EvaluatesAWholeStreamAsOneValue) {
  EXPECT_EQ(shown(u"(a = 1\na + 1)"), "2");
  EXPECT_EQ(shown(u"x = 40\nx + 2"), "42");
  EXPECT_EQ(evaluate(u"\"text\"")->kind(), hostsdk::Value::Kind::string);
  EXPECT_EQ(evaluate(u"ok")->kind(), hostsdk::Value::Kind::ok);
  EXPECT_TRUE(evaluate(u"1 == 1")->isTrue());
  EXPECT_EQ(evaluate(u"undefined"), port().undefined());
  EXPECT_EQ(evaluate(u" -- nothing"), nullptr);
}

TEST_F(PortTest, RaisesErrorsWithTheListenersText) {
  EXPECT_EQ(errorOf(u"(a = )"), "-- Syntax error: at ), expected <factor>\n--  In line: (a = )");
  EXPECT_EQ(errorOf(u"throw \"no\""), "-- Runtime error: no");
  EXPECT_EQ(errorOf(u"undefined.x"), "-- Unknown property: \"x\" in undefined");
  EXPECT_NE(hostkit::toUtf8(printed).find("-- Error occurred in anonymous codeblock"), std::string::npos)
      << "the listener shows it too";
}

TEST_F(PortTest, KeepsValuesAsLongAsSomethingHoldsThem) {
  hostsdk::ScopedValueTempArray slots(1);
  port().push_alloc_frame();
  slots[0] = port().newString(u"held by the slot");
  hostsdk::Value* framed = port().newString(u"held by the frame");
  evaluate(u"for i = 1 to 10 do i as string");
  EXPECT_EQ(framed->text(), u"held by the frame");
  port().pop_alloc_frame();
  evaluate(u"for i = 1 to 10 do i as string");
  EXPECT_EQ(slots[0]->text(), u"held by the slot");
  port().thread_locals().result = slots[0];
  slots[0] = nullptr;
  evaluate(u"1 as string");
  EXPECT_EQ(port().thread_locals().result->text(), u"held by the slot");
}

TEST_F(PortTest, HasGlobalsWithCaselessNames) {
  hostsdk::ScopedValueTempArray kept(2);
  kept[0] = port().intern(u"MyGlobal");
  EXPECT_EQ(port().intern(u"myglobal"), kept[0]);
  auto& globals = port().globals();
  EXPECT_EQ(globals.get(kept[0]), nullptr);
  kept[1] = port().newArray();
  static_cast<hostsdk::Array*>(kept[1])->append(port().newString(u"one"));
  globals.put_new(kept[0], kept[1]);
  EXPECT_EQ(evaluate(u"myGLOBAL[1]")->text(), u"one");
  EXPECT_THROW(globals.put_new(kept[0], kept[1]), hostsdk::MAXScriptException);
  globals.set(kept[0], port().boolean(true));
  EXPECT_TRUE(evaluate(u"MyGlobal")->isTrue());
  globals.remove(kept[0]);
  EXPECT_EQ(globals.get(kept[0]), nullptr);
  EXPECT_THROW(globals.set(kept[0], kept[1]), hostsdk::MAXScriptException);
}

TEST_F(PortTest, PrintsWhereTheThreadsOutputGoes) {
  hostsdk::ScopedValueTempArray kept(1);
  auto* stream = port().newStringStream();
  kept[0] = stream;
  port().thread_locals().currentStdout = stream;
  evaluate(u"format \"to the stream\"");
  port().thread_locals().currentStdout = &port().listener();
  evaluate(u"format \"to the listener\"");
  EXPECT_EQ(stream->text_of_stream(), u"to the stream");
  EXPECT_EQ(printed, u"to the listener");
}

TEST_F(PortTest, ReadsScriptFilesInAnyEncoding) {
  const support::TemporaryFolder folder;
  folder.write("latin.ms", "\"caf\xE9\".count as string");
  hostsdk::ScopedValueTempArray kept(2);
  auto* file = port().newFileStream();
  kept[0] = file;
  file->open(folder.wide("latin.ms"), u"r", -1);
  kept[1] = port().newParser(nullptr);
  EXPECT_EQ(static_cast<hostsdk::Parser*>(kept[1])->compile_all(file)->eval()->text(), u"4");
  file->close();
  EXPECT_THROW(file->open(folder.wide("none.ms"), u"r", -1), hostsdk::MAXScriptException);
}

TEST_F(PortTest, RunsAFileAsTheRunningScript) {
  const support::TemporaryFolder folder;
  folder.write("part.ms", "40");
  folder.write("settings.ms", "mine = 2");
  folder.write("job.ms",
               "include \"settings.ms\"\n"
               "#(filenameFromPath (getThisScriptFilename()), mine + (fileIn \"part.ms\"))");
  hostsdk::ScopedValueTempArray kept(2);
  auto* file = port().newFileStream();
  kept[0] = file;
  file->open(folder.wide("job.ms"), u"r", -1);
  kept[1] = port().newParser(nullptr);
  kept[1] = static_cast<hostsdk::Parser*>(kept[1])->compile_all(file);
  EXPECT_EQ(written([&](auto& stream) { kept[1]->eval()->sprin1(stream); }), "#(\"job.ms\", 42)");
  EXPECT_EQ(shown(u"getThisScriptFilename()"), "undefined") << "it has ended";
}

TEST_F(PortTest, ShowsWhatDoesNotCompileWhereTheParserWasTold) {
  const std::string shownThere = written([&](auto& stream) {
    port().thread_locals().currentStdout = &stream;
    errorOf(u"(a = )");
    port().thread_locals().currentStdout = &port().listener();
  });
  EXPECT_NE(shownThere.find("-- Syntax error: at ), expected <factor>"), std::string::npos) << shownThere;
  EXPECT_EQ(printed, u"");
}

// A plug-in's interface, published by hand.
class Published : public hostsdk::FPStaticInterface {
 public:
  Published() {
    const auto text = [](const char16_t* t) { return reinterpret_cast<std::uint64_t>(t); };
    const std::uint64_t buffer[] = {0,
                                    text(u"AddUp"),
                                    0,
                                    hostsdk::kFpTypeInt,
                                    0,
                                    2,
                                    text(u"a"),
                                    0,
                                    hostsdk::kFpTypeInt,
                                    text(u"b"),
                                    0,
                                    hostsdk::kFpTypeFloat,
                                    1,
                                    text(u"Greet"),
                                    0,
                                    hostsdk::kFpTypeValue,
                                    0,
                                    1,
                                    text(u"name"),
                                    0,
                                    hostsdk::kFpTypeValue,
                                    2,
                                    text(u"Fail"),
                                    0,
                                    hostsdk::kFpTypeVoid,
                                    0,
                                    0,
                                    hostsdk::kTagProperties,
                                    3,
                                    hostsdk::kNoFunction,
                                    text(u"Answer"),
                                    0,
                                    hostsdk::kFpTypeInt,
                                    hostsdk::kTagEnd};
    load_descriptor({1, 2}, u"TestUtil", 0, nullptr, 4, buffer);
  }

 protected:
  int dispatchFunction(hostsdk::FunctionID id, hostsdk::TimeValue, hostsdk::FPValue& result,
                       hostsdk::FPParams* params) override {
    auto& runtime = hostsdk::scriptRuntime();
    if (id == 0) result = hostsdk::FPValue::ofInt(params->at(0).i + static_cast<std::int32_t>(params->at(1).f));
    if (id == 1)
      result = hostsdk::FPValue::ofValue(runtime.newString(u"hello " + params->at(0).v->text().value_or(u"?")));
    if (id == 2) throw hostsdk::RuntimeError(u"it failed");
    if (id == 3) result = hostsdk::FPValue::ofInt(42);
    return hostsdk::kDispatchOk;
  }
};

TEST_F(PortTest, PublishesInterfaces) {
  const Published interface;
  engine->publishInterfaces();
  EXPECT_EQ(shown(u"testUtil.addup 1 2.5"), "3");
  EXPECT_EQ(evaluate(u"TestUtil.Greet \"you\"")->text(), u"hello you");
  EXPECT_EQ(evaluate(u"TestUtil.Greet #you")->text(), u"hello you");
  EXPECT_EQ(printed, u"");
  EXPECT_EQ(evaluate(u"TestUtil.Greet 5")->text(), u"hello ?");
  EXPECT_EQ(hostkit::toUtf8(printed),
            "-- Warning: TestUtil.Greet takes a text and finds an empty one in: 5; convert it with \"as string\"\n");
  EXPECT_EQ(shown(u"TestUtil.Answer"), "42");
  EXPECT_EQ(errorOf(u"TestUtil.Fail()"), "-- Runtime error: it failed");
  EXPECT_EQ(errorOf(u"TestUtil.AddUp 1"), "-- Argument count error: AddUp wanted 2, got 1");
  EXPECT_EQ(errorOf(u"TestUtil.AddUp \"x\" 1"), "-- Unable to convert: \"x\" to type: Integer");
  EXPECT_EQ(errorOf(u"TestUtil.Answer = 1"), "-- Runtime error: Property is read-only: Answer");
  EXPECT_EQ(evaluate(u"try (TestUtil.Fail()) catch (getCurrentException())")->text(), u"-- Runtime error: it failed");
}

TEST_F(PortTest, FiresNotifications) {
  ASSERT_TRUE(engine
                  ->runText(u"callbacks.addScript #preRenderFrame \"print (callbacks.notificationParam())\" id:#a\n"
                            u"callbacks.addScript #preRenderFrame \"undefined.x\" id:#b\n"
                            u"fn last = print #last\ncallbacks.addScript #preRenderFrame last")
                  .succeeded);
  engine->fireNotification(u"PreRenderFrame", HostValue(std::int32_t{7}));
  EXPECT_TRUE(printed.starts_with(u"7\n")) << hostkit::toUtf8(printed);
  EXPECT_NE(printed.find(u"-- Unknown property: \"x\" in undefined"), std::u16string::npos);
  EXPECT_TRUE(printed.ends_with(u"#last\n")) << "an error ends only its own callback";
}

}  // namespace

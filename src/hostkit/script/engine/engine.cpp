#include "hostkit/script/engine/engine.h"

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/host_values.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/machine/runtime.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"

namespace hostkit::script {
namespace {

// Any error that a script raised, as a ScriptError.
template <class Work>
void catching(Work&& work, const std::function<void(const ScriptError&)>& failed) {
  try {
    work();
  } catch (const ScriptError& error) {
    failed(error);
  } catch (const hostsdk::MAXScriptException& error) {
    failed(ScriptError(printedText(error)));
  } catch (const hostsdk::MAXException& error) {
    failed(ScriptError(u"-- Runtime error: " + error.message()));
  }
}

RunResult run(Runtime& runtime, const std::shared_ptr<const Source>& source) {
  const Evaluator::Stretch stretch(runtime.evaluator());
  RunResult result;
  catching(
      [&] {
        const Root value(runtime.heap(), runtime.runSource(source));
        runtime.lastResult = value.value;
        result.succeeded = true;
        result.isFalse = value.value.isBoolean() && !value.value.b;
        result.printed = printed(runtime, value.value);
      },
      [&](const ScriptError& error) { result.errorText = errorReport(error, u"FileIn"); });
  return result;
}

}  // namespace

Engine::Engine(HostBindings& host, EngineOptions options)
    : runtime_(std::make_unique<Runtime>(host, std::move(options), standardLibrary())) {}
Engine::~Engine() = default;

hostsdk::ScriptRuntime& Engine::port() { return runtime_->port(); }

RunResult Engine::runScriptFile(const std::u16string& path) {
  const auto source = runtime_->findScript(path);
  if (source) return run(*runtime_, source);
  RunResult result;
  result.errorText = u"-- Runtime error: Cannot open script file: " + path + u"\n";
  return result;
}

RunResult Engine::runText(const std::u16string& text) {
  return run(*runtime_, std::make_shared<const Source>(Source{u"", text}));
}

std::vector<SyntaxProblem> Engine::check(const std::u16string& path) {
  const auto source = readSource(path);
  if (!source) return {{path, 1, 1, u"cannot be read"}};
  std::vector<SyntaxProblem> problems;
  catching(
      [&] {
        const RunningFile running(*runtime_, path);
        ScriptParser parser(source, runtime_->scriptFinder());
        for (;;) {
          Tree tree;
          if (!parser.nextExpression(tree)) break;
        }
      },
      [&](const ScriptError& error) {
        SyntaxProblem problem;
        const Place& place = error.place();
        problem.file = place.source && !place.source->name.empty() ? place.source->name : path;
        const LineColumn at = place.source ? place.source->lineColumn(place.offset) : LineColumn{};
        problem.line = at.line;
        problem.column = at.column;
        const std::u16string& message = error.message();
        problem.text = message.substr(3, message.find(u'\n') - 3);
        problems.push_back(std::move(problem));
      });
  return problems;
}

void Engine::fireNotification(std::u16string_view event, const HostValue& parameter) {
  Runtime& runtime = *runtime_;
  const Evaluator::Stretch stretch(runtime.evaluator());
  const std::u16string wanted = fold(event);
  const Root given(runtime.heap(), fromHost(runtime, parameter));
  const Root before(runtime.heap(), runtime.callbackParameter);
  // Callbacks may add and remove callbacks.
  const std::vector<CallbackScript> registered = runtime.callbacks;
  const Root all(runtime.heap(), runtime.heap().make<ArrayObject>());
  for (const CallbackScript& callback : registered) as<ArrayObject>(all.value)->items.push_back(callback.script);
  for (const CallbackScript& callback : registered) {
    if (callback.event != wanted) continue;
    runtime.callbackParameter = given.value;
    catching(
        [&] {
          const auto* text = as<StringObject>(callback.script);
          if (!text) {
            runtime.evaluator().call(callback.script, {});
          } else if (!callback.isFile) {
            runtime.runSource(std::make_shared<const Source>(Source{u"", std::u16string(text->text())}));
          } else if (const auto source = runtime.findScript(std::u16string(text->text()))) {
            runtime.runSource(source);
          } else {
            throwRuntimeError(u"Cannot open script file: " + std::u16string(text->text()));
          }
        },
        [&](const ScriptError& error) { runtime.report(errorReport(error, u"Callback script")); });
  }
  runtime.callbackParameter = before.value;
}

}  // namespace hostkit::script

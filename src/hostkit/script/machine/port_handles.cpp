// What plug-ins can do with the values that they hold.

#include "hostkit/script/machine/compiler.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/port.h"
#include "hostkit/script/machine/printing.h"
#include "hostkit/script/syntax/parser.h"
#include "hostkit/script/syntax/text.h"
#include "platform/code_page.h"

namespace hostkit::script {
namespace {

constexpr int kByContent = -1, kUtf8 = 65001;

// Runs compiled code; an error is shown by the listener and goes on to whoever asked.
Value runCode(Runtime& runtime, CodeObject* code) {
  const RunningFile running(runtime, code->file);
  auto& level = runtime.port().thread_locals().evaluationLevel;
  ++level;
  try {
    const Value result = runtime.evaluator().run(code);
    --level;
    return result;
  } catch (const ScriptError& error) {
    --level;
    runtime.report(errorReport(error, u"FileIn"));
    throw;
  } catch (...) {
    --level;
    throw;
  }
}

}  // namespace

template <class Base>
typename HandleOf<Base>::ValueKind HandleOf<Base>::kind() const {
  if (value.isUndefined()) return ValueKind::undefined;
  if (value.tag == Tag::ok) return ValueKind::ok;
  if (value.isBoolean()) return ValueKind::boolean;
  return as<StringObject>(value) ? ValueKind::string : ValueKind::other;
}

template <class Base>
std::optional<std::u16string> HandleOf<Base>::text() const {
  if (!as<StringObject>(value) && !as<NameObject>(value)) return std::nullopt;
  return asText(port.runtime(), value);
}

template <class Base>
void HandleOf<Base>::sprin1(hostsdk::CharStream& stream) {
  stream.puts(printed(port.runtime(), value));
}

template <class Base>
hostsdk::Value* HandleOf<Base>::eval() {
  auto* code = as<CodeObject>(value);
  return code ? port.publish(runCode(port.runtime(), code)) : this;
}

template class HandleOf<hostsdk::Value>;
template class HandleOf<hostsdk::Array>;
template class HandleOf<hostsdk::StringStream>;
template class HandleOf<hostsdk::FileStream>;
template class HandleOf<hostsdk::Parser>;
template class HandleOf<hostsdk::CharStream>;

hostsdk::Value* ArrayHandle::get(std::size_t index) const {
  return index < items().size() ? port.publish(items()[index]) : port.undefined();
}

void ArrayHandle::append(hostsdk::Value* item) { items().push_back(port.unwrap(item)); }

void FileStreamHandle::open(const std::u16string& path, const std::u16string& mode, int codePage) {
  const Root opened(port.runtime().heap(), port.runtime().heap().make<TextStreamObject>(path, u"", false));
  auto& stream = *as<TextStreamObject>(opened.value);
  if (codePage != kByContent && mode.find(u'r') != std::u16string::npos) {
    const auto bytes = readBytes(path);
    if (!bytes) throwRuntimeError(u"Cannot open file: " + path);
    const auto page = codePage == kUtf8 ? platform::CodePage::utf8 : platform::CodePage::ansi;
    value = port.runtime().heap().make<TextStreamObject>(path, platform::multibyteToWide(*bytes, page).value_or(u""),
                                                         false);
    return;
  }
  if (!TextStreamObject::open(stream, mode)) throwRuntimeError(u"Cannot open file: " + path);
  value = opened.value;
}

void FileStreamHandle::puts(std::u16string_view more) {
  auto* stream = as<TextStreamObject>(value);
  if (!stream) throwRuntimeError(u"File is not open");
  stream->write(more);
}

void FileStreamHandle::close() {
  if (auto* stream = as<TextStreamObject>(value)) stream->close();
}

hostsdk::Value* ParserHandle::compile_all(hostsdk::CharStream* source) {
  Runtime& runtime = port.runtime();
  const hostkit::script::Value stream = port.unwrap(source);
  const auto* text = as<TextStreamObject>(stream);
  if (!text) throwTypeError(u"compile_all requires a stream that can be read");
  const auto origin = std::make_shared<const Source>(Source{text->path(), std::u16string(text->rest())});
  try {
    const RunningFile running(runtime, origin->name);
    ScriptParser parser(origin, runtime.scriptFinder());
    Tree tree;
    NodeList expressions;
    while (Node* expression = parser.nextExpression(tree)) expressions.push_back(expression);
    if (expressions.empty()) return nullptr;
    CodeObject* code = Compiler::compile(runtime, expressions);
    code->file = origin->name;
    return port.publish(code);
  } catch (const ScriptError& error) {
    (errors_ ? *errors_ : port.listener()).puts(errorReport(error, u"FileIn"));
    throw;
  }
}

void ListenerHandle::puts(std::u16string_view more) { port.runtime().report(more); }

}  // namespace hostkit::script

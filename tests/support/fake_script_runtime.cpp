#include "support/fake_script_runtime.h"

#include <algorithm>
#include <stdexcept>

namespace support {
namespace {

using hostsdk::Value;

// Compiled code: evaluating it asks the test.
class FakeCode : public FakeValueBase<Value> {
 public:
  FakeCode(FakeScriptRuntime& runtime, std::u16string source) : FakeValueBase(runtime), source_(std::move(source)) {}
  Value* eval() override {
    runtime_.requireAlive(this);
    return runtime_.evaluation ? runtime_.evaluation(source_) : runtime_.undefined();
  }

 private:
  std::u16string source_;
};

class FakeParser : public FakeValueBase<hostsdk::Parser> {
 public:
  FakeParser(FakeScriptRuntime& runtime, std::function<Value*(std::u16string)> makeCode)
      : FakeValueBase(runtime), makeCode_(std::move(makeCode)) {}
  Value* compile_all(hostsdk::CharStream* source) override {
    runtime_.requireAlive(this);
    runtime_.requireAlive(source);
    std::u16string text;
    if (auto* file = dynamic_cast<FakeFileStream*>(source)) text = file->content;
    if (auto* buffer = dynamic_cast<FakeStringStream*>(source)) text = buffer->content;
    runtime_.sources.push_back(text);
    if (runtime_.compilation) runtime_.compilation();
    return text.empty() ? nullptr : makeCode_(text);
  }

 private:
  std::function<Value*(std::u16string)> makeCode_;
};

std::u16string nameOf(Value* name) { return name->text().value(); }

}  // namespace

std::u16string FakeStringStream::text_of_stream() const {
  runtime_.requireAlive(this);
  return content;
}

void FakeFileStream::open(const std::u16string& path, const std::u16string& mode, int codePage) {
  runtime_.requireAlive(this);
  const auto file = runtime_.files.find(path);
  if (file == runtime_.files.end()) throw hostsdk::RuntimeError(u"cannot open " + path);
  content = file->second;
  openedPath = path;
  openedMode = mode;
  openedCodePage = codePage;
}

Value* FakeGlobals::get(Value* name) {
  const auto found = values.find(nameOf(name));
  return found == values.end() ? nullptr : found->second;
}
void FakeGlobals::set(Value* name, Value* value) {
  if (values.count(nameOf(name)) == 0) throw std::logic_error("set of a global that does not exist");
  values[nameOf(name)] = value;
}
void FakeGlobals::put_new(Value* name, Value* value) {
  if (!values.emplace(nameOf(name), value).second) throw std::logic_error("put_new of a global that exists");
}
void FakeGlobals::remove(Value* name) {
  if (values.erase(nameOf(name)) == 0) throw std::logic_error("removal of a global that does not exist");
}

FakeScriptRuntime::FakeScriptRuntime() {
  frames_.emplace_back();
  const auto constant = [this](Value::Kind kind, bool truth, const char16_t* text) {
    auto* value = keep(std::make_unique<FakeValue>(*this));
    value->kindValue = kind;
    value->truth = truth;
    value->textValue = value->printed = text;
    return value;
  };
  undefined_ = constant(Value::Kind::undefined, false, u"undefined");
  ok_ = constant(Value::Kind::ok, false, u"OK");
  true_ = constant(Value::Kind::boolean, true, u"true");
  false_ = constant(Value::Kind::boolean, false, u"false");
  listener_ = keep(std::make_unique<FakeStringStream>(*this));
  threadLocals.currentStdout = listener_;
}

FakeScriptRuntime::~FakeScriptRuntime() = default;

void FakeScriptRuntime::push_alloc_frame() { frames_.emplace_back(); }

void FakeScriptRuntime::pop_alloc_frame() {
  if (frameDepth() == 0) {
    ++disorder;
    return;
  }
  const std::vector<Value*> candidates = std::move(frames_.back());
  frames_.pop_back();
  collect(candidates);
}

void FakeScriptRuntime::link(Value** slots, std::size_t count) { links_.emplace_back(slots, count); }

void FakeScriptRuntime::unlink(Value** slots) {
  if (links_.empty() || links_.back().first != slots) {
    ++disorder;
    std::erase_if(links_, [slots](const auto& linked) { return linked.first == slots; });
    return;
  }
  links_.pop_back();
}

Value* FakeScriptRuntime::newString(std::u16string_view text) {
  auto* value = keep(std::make_unique<FakeValue>(*this));
  value->kindValue = Value::Kind::string;
  value->textValue = text;
  value->printed = u"\"" + std::u16string(text) + u"\"";
  return value;
}

Value* FakeScriptRuntime::intern(std::u16string_view name) {
  Value*& known = names_[std::u16string(name)];
  if (known == nullptr) {
    auto* value = keep(std::make_unique<FakeValue>(*this));
    value->textValue = name;
    known = value;
    std::erase(frames_.back(), known);  // names live as long as the runtime
  }
  return known;
}

hostsdk::Array* FakeScriptRuntime::newArray() { return keep(std::make_unique<FakeArray>(*this)); }
hostsdk::StringStream* FakeScriptRuntime::newStringStream() { return keep(std::make_unique<FakeStringStream>(*this)); }

hostsdk::FileStream* FakeScriptRuntime::newFileStream() {
  fileStreams.push_back(keep(std::make_unique<FakeFileStream>(*this)));
  return fileStreams.back();
}

hostsdk::Parser* FakeScriptRuntime::newParser(hostsdk::CharStream* errors) {
  parserErrors = errors;
  return keep(std::make_unique<FakeParser>(
      *this, [this](std::u16string source) { return keep(std::make_unique<FakeCode>(*this, std::move(source))); }));
}

FakeValue* FakeScriptRuntime::newOther(std::optional<std::u16string> text, std::u16string printed) {
  auto* value = keep(std::make_unique<FakeValue>(*this));
  value->textValue = std::move(text);
  value->printed = std::move(printed);
  return value;
}

void FakeScriptRuntime::requireAlive(const Value* value) const {
  if (collected_.count(value) != 0) throw std::logic_error("a collected script value was used");
}

template <class Type>
Type* FakeScriptRuntime::keep(std::unique_ptr<Type> value) {
  Type* kept = value.get();
  values_.push_back(std::move(value));
  frames_.back().push_back(kept);
  return kept;
}

void FakeScriptRuntime::collect(const std::vector<Value*>& candidates) {
  std::set<const Value*> reached;
  for (const auto& [slots, count] : links_) std::for_each_n(slots, count, [&](Value* value) { mark(value, reached); });
  for (const auto& [name, value] : globalValues.values) mark(value, reached);
  mark(threadLocals.result, reached);
  for (Value* value : candidates) {
    // What something still holds belongs to the frame outside from here on.
    if (reached.count(value) != 0)
      frames_.back().push_back(value);
    else
      collected_.insert(value);
  }
}

void FakeScriptRuntime::mark(Value* value, std::set<const Value*>& reached) const {
  if (value == nullptr || !reached.insert(value).second) return;
  if (const auto* array = dynamic_cast<const FakeArray*>(value))
    for (Value* item : array->items) mark(item, reached);
}

}  // namespace support

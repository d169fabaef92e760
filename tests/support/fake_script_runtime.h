// A script runtime for tests. It compiles nothing: a test says what a source text evaluates to. Its collector runs
// whenever an allocation frame is popped, as if memory were always short: a value that nothing holds any more is marked
// collected, and every later use of it throws std::logic_error.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "hostsdk/script_runtime.h"

namespace support {

class FakeScriptRuntime;

// What every value of the fake runtime shares.
template <class Base>
class FakeValueBase : public Base {
 public:
  explicit FakeValueBase(FakeScriptRuntime& runtime) : runtime_(runtime) {}
  hostsdk::Value::Kind kind() const override;
  bool isTrue() const override;
  std::optional<std::u16string> text() const override;
  void sprin1(hostsdk::CharStream& stream) override;
  hostsdk::Value* eval() override;
  hostsdk::Value* get_heap_ptr() override;

  hostsdk::Value::Kind kindValue = hostsdk::Value::Kind::other;
  bool truth = false;
  std::optional<std::u16string> textValue;
  std::u16string printed;

 protected:
  FakeScriptRuntime& runtime_;
};

using FakeValue = FakeValueBase<hostsdk::Value>;

class FakeArray : public FakeValueBase<hostsdk::Array> {
 public:
  using FakeValueBase::FakeValueBase;
  std::size_t size() const override { return items.size(); }
  hostsdk::Value* get(std::size_t index) const override { return items.at(index); }
  void append(hostsdk::Value* value) override { items.push_back(value); }
  std::vector<hostsdk::Value*> items;
};

class FakeStringStream : public FakeValueBase<hostsdk::StringStream> {
 public:
  using FakeValueBase::FakeValueBase;
  void putch(char16_t character) override { content += character; }
  void puts(std::u16string_view text) override { content += text; }
  void close() override { ++closed; }
  std::u16string text_of_stream() const override;
  std::u16string content;
  int closed = 0;
};

class FakeFileStream : public FakeValueBase<hostsdk::FileStream> {
 public:
  using FakeValueBase::FakeValueBase;
  void putch(char16_t) override {}
  void puts(std::u16string_view) override {}
  void close() override { ++closed; }
  void open(const std::u16string& path, const std::u16string& mode, int codePage) override;
  std::u16string content, openedPath, openedMode;
  int openedCodePage = 0, closed = 0;
};

// Names are interned as they are spelt.
class FakeGlobals : public hostsdk::GlobalsTable {
 public:
  hostsdk::Value* get(hostsdk::Value* name) override;
  void set(hostsdk::Value* name, hostsdk::Value* value) override;
  void put_new(hostsdk::Value* name, hostsdk::Value* value) override;
  void remove(hostsdk::Value* name) override;
  std::map<std::u16string, hostsdk::Value*> values;
};

// To be bound as the host's script runtime (FakeHost takes one, or hostsdk::bindHost).
class FakeScriptRuntime : public hostsdk::ScriptRuntime {
 public:
  // Evaluates a source text. May return null (no value), throw, or call back into the code under test.
  using Evaluation = std::function<hostsdk::Value*(const std::u16string& source)>;

  FakeScriptRuntime();
  ~FakeScriptRuntime() override;

  void init_thread_locals() override { ++threadInitialisations; }
  void push_alloc_frame() override;
  void pop_alloc_frame() override;
  hostsdk::ThreadLocals& thread_locals() override { return threadLocals; }
  void link(hostsdk::Value** slots, std::size_t count) override;
  void unlink(hostsdk::Value** slots) override;
  hostsdk::Value* newString(std::u16string_view text) override;
  hostsdk::Value* intern(std::u16string_view name) override;
  hostsdk::Array* newArray() override;
  hostsdk::StringStream* newStringStream() override;
  hostsdk::FileStream* newFileStream() override;
  hostsdk::Parser* newParser(hostsdk::CharStream* errors) override;
  hostsdk::Value* undefined() override { return undefined_; }
  hostsdk::Value* ok() override { return ok_; }
  hostsdk::Value* boolean(bool value) override { return value ? true_ : false_; }
  hostsdk::GlobalsTable& globals() override { return globalValues; }
  hostsdk::CharStream& listener() override { return *listener_; }

  // A value that is no string, boolean, OK or undefined; nullopt text: it has only its printed form.
  FakeValue* newOther(std::optional<std::u16string> text, std::u16string printed);
  // Throws std::logic_error when the collector has taken the value.
  void requireAlive(const hostsdk::Value* value) const;
  // What scripts printed to the listener.
  const std::u16string& printed() const { return listener_->content; }

  Evaluation evaluation;                           // what running a source gives; none: undefined
  std::function<void()> compilation;               // runs when a source is compiled; may throw
  std::map<std::u16string, std::u16string> files;  // content by path; opening any other path fails
  std::vector<std::u16string> sources;             // every source compiled
  hostsdk::CharStream* parserErrors = nullptr;     // of the last parser
  hostsdk::ThreadLocals threadLocals;
  FakeGlobals globalValues;
  int threadInitialisations = 0;
  std::vector<FakeFileStream*> fileStreams;
  std::size_t frameDepth() const { return frames_.size() - 1; }
  std::size_t linkedArrays() const { return links_.size(); }
  // Popping without pushing, or releasing slots that are not the last ones made.
  int disorder = 0;

 private:
  template <class Type>
  Type* keep(std::unique_ptr<Type> value);
  void collect(const std::vector<hostsdk::Value*>& candidates);
  void mark(hostsdk::Value* value, std::set<const hostsdk::Value*>& reached) const;

  std::vector<std::unique_ptr<hostsdk::Value>> values_;
  std::vector<std::vector<hostsdk::Value*>> frames_;
  std::vector<std::pair<hostsdk::Value**, std::size_t>> links_;
  std::map<std::u16string, hostsdk::Value*> names_;
  std::set<const hostsdk::Value*> collected_;
  hostsdk::Value* undefined_ = nullptr;
  hostsdk::Value* ok_ = nullptr;
  hostsdk::Value* true_ = nullptr;
  hostsdk::Value* false_ = nullptr;
  FakeStringStream* listener_ = nullptr;
};

template <class Base>
hostsdk::Value::Kind FakeValueBase<Base>::kind() const {
  runtime_.requireAlive(this);
  return kindValue;
}
template <class Base>
bool FakeValueBase<Base>::isTrue() const {
  runtime_.requireAlive(this);
  return truth;
}
template <class Base>
std::optional<std::u16string> FakeValueBase<Base>::text() const {
  runtime_.requireAlive(this);
  return textValue;
}
template <class Base>
void FakeValueBase<Base>::sprin1(hostsdk::CharStream& stream) {
  runtime_.requireAlive(this);
  stream.puts(printed);
}
template <class Base>
hostsdk::Value* FakeValueBase<Base>::eval() {
  runtime_.requireAlive(this);
  return this;
}
template <class Base>
hostsdk::Value* FakeValueBase<Base>::get_heap_ptr() {
  runtime_.requireAlive(this);
  return this;
}

}  // namespace support

#include "plugin/interface/mxs/run_script.h"

#include <stdexcept>
#include <utility>

#include "plugin/util/files.h"
#include "plugin/util/text.h"

namespace corvantis::mxs {
namespace {

// Gives a script global another value for as long as this lives, then the one it had, or removes it if it was absent.
class GlobalReplacement {
 public:
  GlobalReplacement(hostsdk::GlobalsTable& globals, hostsdk::Value* name, hostsdk::Value* value)
      : globals_(globals), name_(values_.link()), previous_(values_.link()) {
    name_ = name;
    previous_ = globals_.get(name);
    put(value);
  }
  ~GlobalReplacement() {
    if (previous_ != nullptr)
      put(previous_);
    else if (globals_.get(name_) != nullptr)
      globals_.remove(name_);
  }
  GlobalReplacement(const GlobalReplacement&) = delete;
  GlobalReplacement& operator=(const GlobalReplacement&) = delete;

 private:
  // A script may itself have added or removed the global since.
  void put(hostsdk::Value* value) {
    if (globals_.get(name_) != nullptr)
      globals_.set(name_, value);
    else
      globals_.put_new(name_, value);
  }

  hostsdk::GlobalsTable& globals_;
  frame<2> values_;
  hostsdk::Value*& name_;
  hostsdk::Value*& previous_;
};

constexpr int kDetectCodePage = -1;

class OpenScript {
 public:
  OpenScript(hostsdk::FileStream& stream, const std::u16string& path) : stream_(stream) {
    try {
      stream_.open(path, u"r", kDetectCodePage);
    } catch (const hostsdk::MAXScriptException& error) {
      throw std::runtime_error(to_string(printedText(error)));
    }
  }
  ~OpenScript() { stream_.close(); }
  OpenScript(const OpenScript&) = delete;
  OpenScript& operator=(const OpenScript&) = delete;

  hostsdk::CharStream& stream() { return stream_; }

 private:
  hostsdk::FileStream& stream_;
};

}  // namespace

executeScriptString::executeScriptString(std::u16string text)
    : runtime_(hostsdk::scriptRuntime()),
      buffer_(runtime_.newStringStream()),
      locals_(nullptr),
      savedEvaluationLevel_(runtime_.thread_locals().evaluationLevel),
      savedSourcePosition_(runtime_.thread_locals().sourcePosition),
      savedOutput_(runtime_.thread_locals().currentStdout),
      text_(std::move(text)) {
  values_.link() = buffer_;
  locals_ = runtime_.newArray();
  values_.link() = locals_;
  buffer_->putch(u'(');
}

executeScriptString::~executeScriptString() {
  buffer_->close();
  hostsdk::ThreadLocals& thread = runtime_.thread_locals();
  thread.evaluationLevel = savedEvaluationLevel_;
  thread.sourcePosition = savedSourcePosition_;
  thread.currentStdout = savedOutput_;
}

hostsdk::Value* executeScriptString::run() {
  frame<2> values;
  hostsdk::Value*& name = values.link();
  hostsdk::Value*& result = values.link();
  buffer_->puts(text_);
  buffer_->putch(u')');
  name = runtime_.intern(u"__corvantisMXSlocals__");
  GlobalReplacement locals(runtime_.globals(), name, locals_);
  result = evaluate(*buffer_);
  return result;
}

hostsdk::Value* file_in(const std::u16string& path) {
  if (!file_exists(path))
    throw std::runtime_error("mxs::file_in() - Tried to execute a maxscript file which doesn't exist: \"" +
                             to_string(path) + "\"");
  frame<2> values;
  hostsdk::FileStream* stream = hostsdk::scriptRuntime().newFileStream();
  values.link() = stream;
  OpenScript script(*stream, path);
  hostsdk::Value*& result = values.link();
  result = evaluate(script.stream());
  return result;
}

}  // namespace corvantis::mxs

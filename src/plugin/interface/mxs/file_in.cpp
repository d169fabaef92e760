#include "plugin/interface/mxs/file_in.h"

#include <stdexcept>

#include "hostsdk/script_runtime.h"
#include "plugin/interface/mxs/evaluate.h"
#include "plugin/interface/mxs/frame.h"
#include "plugin/util/files.h"
#include "plugin/util/text.h"

namespace corvantis::mxs {
namespace {

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

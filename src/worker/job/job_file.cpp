#include "worker/job/job_file.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "worker/job/frame_set.h"
#include "worker/job/paths.h"

namespace worker {
using Json = nlohmann::json;

namespace {

// One value of the file and where it stands, for error texts.
struct Field {
  const Json& value;
  std::string where;

  [[noreturn]] void expected(const std::string& what) const {
    throw std::runtime_error(fmt::format("{}: expected {}, got {}", where, what, value.dump()));
  }
  Field at(std::size_t index) const { return {value[index], fmt::format("{}[{}]", where, index)}; }

  std::string text() const {
    if (!value.is_string()) expected("a text");
    return value.get<std::string>();
  }
  bool boolean() const {
    if (!value.is_boolean()) expected("true or false");
    return value.get<bool>();
  }
  double positive() const {
    if (!value.is_number() || value.get<double>() <= 0) expected("a number above 0");
    return value.get<double>();
  }
  // A parameter of a settings command: texts, numbers and truth values as the protocol writes them.
  std::string parameter() const {
    if (value.is_boolean()) return value.get<bool>() ? "1" : "0";
    if (value.is_number()) return value.dump();
    return text();
  }
  std::vector<Field> items(const std::string& what) const {
    if (!value.is_array()) expected(what);
    std::vector<Field> fields;
    for (std::size_t i = 0; i < value.size(); ++i) fields.push_back(at(i));
    return fields;
  }
  std::vector<std::string> texts() const {
    std::vector<std::string> list;
    for (const Field& item : items("a list of texts")) list.push_back(item.text());
    return list;
  }
};

using Reader = std::function<void(const Field&)>;
using Readers = std::map<std::string, Reader>;

void readObject(const Field& object, const Readers& readers) {
  if (!object.value.is_object()) object.expected("an object");
  for (const auto& [key, value] : object.value.items()) {
    const Field field{value, object.where.empty() ? key : object.where + "." + key};
    const auto reader = readers.find(key);
    if (reader == readers.end()) throw std::runtime_error(field.where + ": there is no such field");
    reader->second(field);
  }
}

class JobReader {
 public:
  explicit JobReader(std::string folder) : folder_(std::move(folder)) {}

  JobFile read(const Json& json) {
    readObject({json, ""}, readers());
    if (file_.job.scene.empty()) throw std::runtime_error("scene: a job needs one");
    if (file_.job.frames.empty()) throw std::runtime_error("frames: a job needs some");
    return std::move(file_);
  }

 private:
  std::string path(const Field& field) const { return absolutePath(field.text(), folder_); }
  std::vector<std::string> paths(const Field& field) const {
    std::vector<std::string> list;
    for (const Field& item : field.items("a list of files")) list.push_back(path(item));
    return list;
  }

  Readers readers() {
    Job& job = file_.job;
    return {
        {"scene", [&](const Field& f) { job.scene = path(f); }},
        {"output", [&](const Field& f) { job.output = path(f); }},
        {"jpeg", [&](const Field& f) { job.jpegFolder = path(f); }},
        {"camera", [&](const Field& f) { job.camera = f.text(); }},
        {"frames", [&](const Field& f) { readFrames(f); }},
        {"settings", [&](const Field& f) { readSettings(f); }},
        {"elementOutputs", [&](const Field& f) { readElementOutputs(f); }},
        {"localFolder", [&](const Field& f) { job.localFolder = path(f); }},
        {"preJobScripts", [&](const Field& f) { job.preJobScripts = paths(f); }},
        {"perFrameScripts", [&](const Field& f) { job.perFrameScripts = paths(f); }},
        {"postJobScripts", [&](const Field& f) { job.postJobScripts = paths(f); }},
        {"jobInfo", [&](const Field& f) { readJobInfo(f); }},
        {"submitInfo", [&](const Field& f) { readSubmitInfo(f); }},
        {"auxFiles", [&](const Field& f) { job.auxFiles = paths(f); }},
        {"pathMapping", [&](const Field& f) { readMappings(f); }},
        {"stopOnError", [&](const Field& f) { job.stopOnError = f.boolean(); }},
        {"host", [&](const Field& f) { file_.host = f.text(); }},
        {"timeout", [&](const Field& f) { file_.timeout = f.positive(); }},
    };
  }

  void readFrames(const Field& field) {
    try {
      file_.job.frames = parseFrameSet(field.value.is_number_integer() ? field.value.dump() : field.text());
    } catch (const std::invalid_argument&) {
      field.expected("frames such as \"1-24,30,40-50x2\"");
    }
  }

  void readSettings(const Field& field) {
    for (const Field& item : field.items("a list of settings commands")) {
      std::vector<std::string> command;
      if (item.value.is_string()) {
        command.push_back(item.text());
      } else {
        for (const Field& part : item.items("a command word, or a list of a command word and its parameters"))
          command.push_back(part.parameter());
      }
      if (command.empty() || command.front().empty()) item.expected("a command word");
      file_.job.settings.push_back(std::move(command));
    }
  }

  void readElementOutputs(const Field& field) {
    std::size_t index = 0;
    for (const std::string& output : paths(field))
      file_.job.settings.push_back({"OutputImageReFilename", std::to_string(index++), output});
  }

  void readJobInfo(const Field& field) {
    if (!field.value.is_object()) field.expected("an object of texts");
    for (const auto& [key, value] : field.value.items())
      file_.job.jobInfo[key] = Field{value, field.where + "." + key}.parameter();
  }

  void readSubmitInfo(const Field& field) {
    if (!field.value.is_object()) field.expected("an object of texts and lists of texts");
    for (const auto& [key, value] : field.value.items()) {
      const Field entry{value, field.where + "." + key};
      file_.job.submitInfo[key] = value.is_array() ? entry.texts() : std::vector<std::string>{entry.parameter()};
    }
  }

  void readMappings(const Field& field) {
    for (const Field& item : field.items("a list of {\"from\": ..., \"to\": ...}")) {
      PathMapping mapping;
      readObject(item, {{"from", [&](const Field& f) { mapping.from = f.text(); }},
                        {"to", [&](const Field& f) { mapping.to = f.text(); }}});
      if (mapping.from.empty()) throw std::runtime_error(item.where + ".from: a mapping needs one");
      file_.job.pathMappings.push_back(std::move(mapping));
    }
  }

  std::string folder_;
  JobFile file_;
};

}  // namespace

JobFile readJobFile(const std::string& path) {
  std::ifstream stream(path);
  if (!stream) throw std::runtime_error("Cannot read the job file " + path);
  try {
    return JobReader(std::filesystem::path(path).parent_path().string()).read(Json::parse(stream));
  } catch (const Json::parse_error& e) {
    throw std::runtime_error(fmt::format("{}: not valid JSON: {}", path, e.what()));
  } catch (const std::runtime_error& e) {
    throw std::runtime_error(fmt::format("{}: {}", path, e.what()));
  }
}

}  // namespace worker

#include "standin/scene/settings_reader.h"

#include <algorithm>
#include <cfloat>

#include "standin/scene/gltf_rules.h"
#include "standin/scene/scene_error.h"

namespace standin::scene {

namespace {

using nlohmann::json;

bool isInteger(const json& value, std::int64_t lowest, std::int64_t highest) {
  if (!value.is_number_integer()) return false;
  if (value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX) return false;
  const auto number = value.get<std::int64_t>();
  return number >= lowest && number <= highest;
}

bool isNumber(const json& value, double lowest, double highest) {
  return value.is_number() && value.get<double>() >= lowest && value.get<double>() <= highest;
}

[[noreturn]] void failAt(const std::string& path, const std::string& expected, const json& got) {
  throw SceneError(path + ": expected " + expected + ", got " + shown(got));
}

}  // namespace

SettingsReader::SettingsReader(const json& object, std::string path, std::vector<std::string>& warnings)
    : object_(object), path_(std::move(path)), warnings_(warnings) {
  if (!object_.is_object()) failAt(path_, "an object", object_);
}

const json* SettingsReader::find(const char* key) {
  asked_.insert(key);
  const auto found = object_.find(key);
  return found == object_.end() ? nullptr : &*found;
}

void SettingsReader::fail(const char* key, const std::string& expected) const {
  const auto found = object_.find(key);
  if (found == object_.end()) throw SceneError(pathOf(key) + ": expected " + expected + ", got nothing");
  failAt(pathOf(key), expected, *found);
}

bool SettingsReader::read(const char* key, bool& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  if (!value->is_boolean()) fail(key, "true or false");
  out = value->get<bool>();
  return true;
}

bool SettingsReader::read(const char* key, std::string& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  if (!value->is_string()) fail(key, "text");
  out = value->get<std::string>();
  return true;
}

bool SettingsReader::readInteger(const char* key, int lowest, int highest, int& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  if (!isInteger(*value, lowest, highest))
    fail(key, "an integer from " + std::to_string(lowest) + " to " + std::to_string(highest));
  out = value->get<int>();
  return true;
}

bool SettingsReader::readNumber(const char* key, double lowest, double highest, float& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  if (!isNumber(*value, lowest, highest)) fail(key, "a number from " + shown(lowest) + " to " + shown(highest));
  out = value->get<float>();
  return true;
}

bool SettingsReader::readNumbers(const char* key, float* out, std::size_t count) {
  const json* value = find(key);
  if (value == nullptr) return false;
  const auto fits = [](const json& number) { return isNumber(number, -FLT_MAX, FLT_MAX); };
  if (!value->is_array() || value->size() != count || !std::all_of(value->begin(), value->end(), fits))
    fail(key, "a list of " + std::to_string(count) + " numbers");
  for (const json& number : *value) *out++ = number.get<float>();
  return true;
}

bool SettingsReader::readClassId(const char* key, ClassIdPair& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  const auto fits = [](const json& word) { return isInteger(word, 0, UINT32_MAX); };
  if (!value->is_array() || value->size() != 2 || !std::all_of(value->begin(), value->end(), fits))
    fail(key, "a list of 2 integers from 0 to 4294967295");
  out = {value->at(0).get<std::uint32_t>(), value->at(1).get<std::uint32_t>()};
  return true;
}

bool SettingsReader::readTexts(const char* key, std::vector<std::string>& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  const auto isText = [](const json& element) { return element.is_string(); };
  if (!value->is_array() || !std::all_of(value->begin(), value->end(), isText)) fail(key, "a list of texts");
  out = value->get<std::vector<std::string>>();
  return true;
}

bool SettingsReader::readIntegers(const char* key, int lowest, int highest, std::vector<int>& out) {
  const json* value = find(key);
  if (value == nullptr) return false;
  const auto fits = [lowest, highest](const json& number) { return isInteger(number, lowest, highest); };
  if (!value->is_array() || !std::all_of(value->begin(), value->end(), fits))
    fail(key, "a list of integers from " + std::to_string(lowest) + " to " + std::to_string(highest));
  out = value->get<std::vector<int>>();
  return true;
}

bool SettingsReader::readObject(const char* key, const std::function<void(SettingsReader&)>& use) {
  const json* value = find(key);
  if (value == nullptr) return false;
  SettingsReader below(*value, pathOf(key), warnings_);
  use(below);
  below.finish();
  return true;
}

bool SettingsReader::readObjects(const char* key, const std::function<void(SettingsReader&)>& use) {
  const json* value = find(key);
  if (value == nullptr) return false;
  if (!value->is_array()) fail(key, "a list of objects");
  for (std::size_t i = 0; i < value->size(); ++i) {
    SettingsReader element((*value)[i], pathOf(key) + "[" + std::to_string(i) + "]", warnings_);
    use(element);
    element.finish();
  }
  return true;
}

void SettingsReader::finish() {
  for (auto it = object_.begin(); it != object_.end(); ++it)
    if (asked_.count(it.key()) == 0) warnings_.push_back(pathOf(it.key().c_str()) + ": unknown key, passed over");
}

}  // namespace standin::scene

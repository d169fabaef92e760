// Reads the keys of one settings object: what is there must have the right type and range, what nobody asks for is a
// warning.
#pragma once

#include <cstdint>
#include <functional>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace standin::scene {

using ClassIdPair = std::pair<std::uint32_t, std::uint32_t>;

// Every read leaves `out` alone and returns false when the key is absent, and throws SceneError beginning with the
// key's full path, such as `extras.standin.render.width: expected an integer from 1 to 32767, got "wide"`.
class SettingsReader {
 public:
  // `path` names the object in messages. Throws SceneError when `object` is none. Borrows both references.
  SettingsReader(const nlohmann::json& object, std::string path, std::vector<std::string>& warnings);

  bool read(const char* key, bool& out);
  bool read(const char* key, std::string& out);
  bool readInteger(const char* key, int lowest, int highest, int& out);
  // A number in [lowest, highest].
  bool readNumber(const char* key, double lowest, double highest, float& out);
  bool readNumbers(const char* key, float* out, std::size_t count);
  bool readClassId(const char* key, ClassIdPair& out);
  bool readTexts(const char* key, std::vector<std::string>& out);
  bool readIntegers(const char* key, int lowest, int highest, std::vector<int>& out);
  // An object below this one; `use` gets its reader, which is finished afterwards.
  bool readObject(const char* key, const std::function<void(SettingsReader&)>& use);
  // A list of objects, in turn.
  bool readObjects(const char* key, const std::function<void(SettingsReader&)>& use);

  // The raw value, or null; it counts as asked for.
  const nlohmann::json* find(const char* key);
  std::string pathOf(const char* key) const { return path_ + "." + key; }
  [[noreturn]] void fail(const char* key, const std::string& expected) const;

  // Warns of every key that was not asked for.
  void finish();

 private:
  const nlohmann::json& object_;
  std::string path_;
  std::vector<std::string>& warnings_;
  std::set<std::string> asked_;
};

}  // namespace standin::scene

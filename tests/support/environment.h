// Variables of the process's environment, for the time of a test.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace support {

// Puts every variable that it has set back as it was. Names and values are UTF-8.
class Environment {
 public:
  Environment() = default;
  Environment(const std::string& name, const std::optional<std::string>& value) { set(name, value); }
  ~Environment();
  Environment(const Environment&) = delete;
  Environment& operator=(const Environment&) = delete;

  // nullopt removes the variable.
  void set(const std::string& name, const std::optional<std::string>& value);

 private:
  std::map<std::string, std::optional<std::u16string>> before_;
};

}  // namespace support

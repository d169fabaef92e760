#include "support/environment.h"

#include "platform/code_page.h"
#include "platform/environment.h"

#if defined(_WIN32)
#include <windows.h>
#else
#include <cstdlib>
#endif

namespace support {
namespace {

std::u16string wide(const std::string& text) {
  return platform::multibyteToWide(text, platform::CodePage::utf8).value();
}

#if defined(_WIN32)
void apply(const std::string& name, const std::string* value) {
  const std::u16string units = value == nullptr ? u"" : wide(*value);
  ::SetEnvironmentVariableW(reinterpret_cast<const wchar_t*>(wide(name).c_str()),
                            value == nullptr ? nullptr : reinterpret_cast<const wchar_t*>(units.c_str()));
}
#else
void apply(const std::string& name, const std::string* value) {
  if (value == nullptr) {
    ::unsetenv(name.c_str());
  } else {
    ::setenv(name.c_str(), value->c_str(), 1);
  }
}
#endif

}  // namespace

Environment::~Environment() {
  for (const auto& [name, value] : before_) {
    const std::string bytes =
        value ? platform::wideToMultibyte(*value, platform::CodePage::utf8).value() : std::string();
    apply(name, value ? &bytes : nullptr);
  }
}

void Environment::set(const std::string& name, const std::optional<std::string>& value) {
  before_.emplace(name, platform::environmentVariable(wide(name)));
  apply(name, value ? &*value : nullptr);
}

}  // namespace support

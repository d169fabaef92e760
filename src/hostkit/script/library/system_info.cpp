#include "hostkit/script/library/system_info.h"

#include <algorithm>
#include <filesystem>
#include <thread>

#include "platform/environment.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

// The first of the variables that is set.
Value environmentText(Runtime& runtime, std::initializer_list<const char16_t*> names) {
  for (const char16_t* name : names)
    if (const auto text = platform::environmentVariable(name)) return runtime.newString(*text);
  return runtime.newString(u"");
}

Value computerName(Runtime& runtime, const Value&) { return runtime.newString(platform::computerName()); }
Value userName(Runtime& runtime, const Value&) { return environmentText(runtime, {u"USERNAME", u"USER", u"LOGNAME"}); }
Value cpuCount(Runtime&, const Value&) {
  return Value::ofInteger(static_cast<std::int32_t>(std::max(1U, std::thread::hardware_concurrency())));
}
Value tempFolder(Runtime& runtime, const Value&) {
  std::error_code error;
  return runtime.newString(platform::windowsPath(std::filesystem::temp_directory_path(error).string()));
}
Value currentFolder(Runtime& runtime, const Value&) {
  std::error_code error;
  return runtime.newString(platform::windowsPath(std::filesystem::current_path(error).string()));
}

}  // namespace

void defineSystemInfo(Runtime& runtime) {
  GlobalObject* global = runtime.addGlobal(runtime.name(u"sysInfo"));
  auto* space = runtime.heap().make<NamespaceObject>(global->name);
  global->value = space;
  space->properties = {{runtime.name(u"computerName"), computerName, nullptr},
                       {runtime.name(u"userName"), userName, nullptr},
                       {runtime.name(u"cpuCount"), cpuCount, nullptr},
                       {runtime.name(u"tempDir"), tempFolder, nullptr},
                       {runtime.name(u"currentDir"), currentFolder, nullptr}};
}

}  // namespace hostkit::script

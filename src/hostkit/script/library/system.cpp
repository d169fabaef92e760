// Time and date, the surroundings, and operating-system commands (which are refused).
#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <random>
#include <thread>

#include "hostkit/script/library/library.h"
#include "hostkit/script/machine/conversion.h"
#include "hostkit/script/machine/evaluator.h"
#include "hostkit/script/machine/folders.h"
#include "hostkit/script/syntax/text.h"
#include "platform/clock.h"
#include "platform/environment.h"
#include "platform/files.h"

namespace hostkit::script {
namespace {

// The local calendar time; the numbers of a date that the calendar lacks are 0.
std::tm localCalendar(std::time_t moment) {
  const std::tm* calendar = std::localtime(&moment);
  return calendar ? *calendar : std::tm{};
}

Value timeStamp(const Call&) {
  return Value::ofInteger(static_cast<std::int32_t>(platform::clock().tickCount() & 0x7FFFFFFF));
}

// Year, month, day of the week (0: Sunday), day, hour, minute, second, millisecond.
Value getLocalTime(const Call& call) {
  const auto now = std::chrono::system_clock::now();
  const std::tm calendar = localCalendar(std::chrono::system_clock::to_time_t(now));
  const auto milliseconds =
      std::chrono::duration_cast<std::chrono::milliseconds>(now.time_since_epoch()).count() % 1000;
  std::vector<Value> fields;
  for (const int field : {calendar.tm_year + 1900, calendar.tm_mon + 1, calendar.tm_wday, calendar.tm_mday,
                          calendar.tm_hour, calendar.tm_min, calendar.tm_sec, static_cast<int>(milliseconds)})
    fields.push_back(Value::ofInteger(field));
  return call.runtime.heap().make<ArrayObject>(std::move(fields));
}

Value getEnvVariable(const Call& call) {
  const auto value = platform::environmentVariable(std::u16string(toString(call.runtime, call[0])));
  return value ? Value(call.runtime.newString(*value)) : Value();
}

Value maxVersion(const Call& call) {
  std::vector<Value> fields;
  for (const int field : {22000, 55, 0}) fields.push_back(Value::ofInteger(field));
  return call.runtime.heap().make<ArrayObject>(std::move(fields));
}

Value getDir(const Call& call) {
  const NameObject* which = toName(call.runtime, call[0]);
  const auto folder = folderNamed(call.runtime.options(), which->folded);
  if (!folder) throwRuntimeError(u"getDir knows no folder of this name: #" + which->text);
  return call.runtime.newString(*folder);
}

Value collectGarbage(const Call& call) {
  call.runtime.heap().collect();
  return Value::ok();
}

Value sourceFileName(const Call& call) {
  const Place place = call.runtime.evaluator().place();
  return place.source && !place.source->name.empty() ? Value(call.runtime.newString(place.source->name)) : Value();
}
Value scriptFilename(const Call& call) {
  return call.runtime.runningFiles.empty() ? Value() : Value(call.runtime.newString(call.runtime.runningFiles.back()));
}

// Seconds, which may be a fraction.
Value sleepFor(const Call& call) {
  const float seconds = toFloat(call.runtime, call[0]);
  if (!(seconds >= 0 && seconds <= 86400)) throwRuntimeError(u"sleep requires 0 to 86400 seconds");
  platform::clock().sleep(static_cast<std::uint32_t>(seconds * 1000));
  return Value::ok();
}

// A random identifier: {8-4-4-4-12} hexadecimal digits, version 4.
Value genGuid(const Call& call) {
  static constexpr std::u16string_view kDigits = u"0123456789ABCDEF";
  std::u16string text = u"{xxxxxxxx-xxxx-4xxx-yxxx-xxxxxxxxxxxx}";
  std::random_device random;
  for (char16_t& character : text) {
    if (character == u'x') character = kDigits[random() & 15U];
    if (character == u'y') character = kDigits[8U | (random() & 3U)];
  }
  return call.runtime.newString(text);
}

// The farm's worker drives the host, not the production host's own network renderer.
Value isNetServer(const Call&) { return Value::ofBoolean(false); }

Value refuse(const Call&) { throwRuntimeError(u"Operating-system commands are not supported by this host"); }

// sysInfo: what a script may learn of the machine

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

constexpr BuiltinEntry kEntries[] = {
    {u"timeStamp", 0, 0, timeStamp},
    {u"getLocalTime", 0, 0, getLocalTime},
    {u"systemTools.getEnvVariable", 1, 1, getEnvVariable},
    {u"maxVersion", 0, 0, maxVersion},
    {u"sleep", 1, 1, sleepFor},
    {u"genGuid", 0, 0, genGuid},
    {u"isNetServer", 0, 0, isNetServer},
    {u"getDir", 1, 1, getDir},
    {u"gc", 0, 0, collectGarbage},
    {u"getSourceFileName", 0, 0, sourceFileName},
    {u"getThisScriptFilename", 0, 0, scriptFilename},
    {u"DOSCommand", 1, -1, refuse},
    {u"HiddenDOSCommand", 1, -1, refuse},
    {u"shellLaunch", 1, -1, refuse},
};

}  // namespace

std::u16string dateText(std::time_t moment) {
  const std::tm calendar = localCalendar(moment);
  char text[64];
  std::strftime(text, sizeof text, "%m/%d/%Y %I:%M:%S %p", &calendar);
  return widen(text);
}

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

std::span<const BuiltinEntry> systemBuiltins() { return kEntries; }

}  // namespace hostkit::script

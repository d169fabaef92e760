#include "worker/host/start_script.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string_view>

namespace worker {
namespace {

constexpr const char* kScript = "/start.ms";
constexpr const char* kShortLived = "/tmp";
constexpr std::string_view kPlace = "{script}";

std::string placeOfFolders() {
  std::string folder = platform::temporaryFolder();
  if (folder.find('\\') != std::string::npos)
    throw std::runtime_error(
        fmt::format("The folder for temporary files {} has a backslash in its name, which hosts take for a separator; "
                    "set TMPDIR to another",
                    folder));
  return folder;
}

}  // namespace

StartScript::StartScript(std::uint16_t port, const std::string& token) : folder_(placeOfFolders(), "tessaryn-") {
  std::filesystem::create_directory(folder_.path() + kShortLived);
  std::ofstream stream(folder_.path() + kScript);
  stream << "-- Hands this host to the farm worker that started it.\n"
         << fmt::format("TessarynUtil.RunCorvantisDaemon {} \"{}\"\n", port, token);
  if (!stream.flush()) throw std::runtime_error("Cannot write the start-up script " + folder_.path() + kScript);
  using std::filesystem::perms;
  std::filesystem::permissions(folder_.path() + kScript, perms::owner_read | perms::owner_write);
}

std::vector<std::string> StartScript::in(std::vector<std::string> command) const {
  const std::string script = folder_.path() + kScript;
  bool placed = false;
  for (std::string& argument : command)
    if (const auto at = argument.find(kPlace); at != std::string::npos) {
      argument.replace(at, kPlace.size(), script);
      placed = true;
    }
  if (!placed) command.push_back(script);
  return command;
}

std::string StartScript::hostFolder() const { return folder_.path() + kShortLived; }

std::map<std::string, std::string> StartScript::environment() const {
  const std::string folder = hostFolder();
  return {{"TMP", folder}, {"TEMP", folder}, {"TMPDIR", folder}};
}

}  // namespace worker

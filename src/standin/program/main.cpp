// standin-host: a headless host for the plug-in.
#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "hostkit/text/utf8.h"
#include "platform/files.h"
#include "standin/program/host_application.h"

namespace {

using hostkit::fromUtf8;
using hostkit::toUtf8;
using standin::program::HostApplication;
using standin::program::kProgramName;

enum ExitCode { kSuccess = 0, kScriptFailed = 1, kUsage = 2 };

struct Arguments {
  std::string plugin, script, text;
  std::vector<std::string> toCheck, scriptFolders;

  // As the host wants them.
  std::vector<std::u16string> folders() const {
    std::vector<std::u16string> all;
    for (const std::string& folder : scriptFolders)
      all.push_back(platform::windowsPath(std::filesystem::absolute(folder).lexically_normal().string()));
    return all;
  }
};

int check(const Arguments& arguments) {
  HostApplication host(arguments.folders());
  int exitCode = kSuccess;
  for (const std::string& file : arguments.toCheck)
    for (const auto& problem : host.scripts().check(platform::windowsPath(file))) {
      fmt::print("{}:{}:{}: {}\n", file, problem.line, problem.column, toUtf8(problem.text));
      exitCode = kScriptFailed;
    }
  return exitCode;
}

int run(const Arguments& arguments, bool hasText) {
  HostApplication host(arguments.folders());
  try {
    host.loadPlugin(arguments.plugin.empty() ? hostkit::services::PluginLibrary::defaultPath() : arguments.plugin);
  } catch (const std::exception& e) {
    fmt::print(stderr, "{}: {}\n", kProgramName, e.what());
    return kUsage;
  }
  const auto result = hasText ? host.scripts().runText(fromUtf8(arguments.text))
                              : host.scripts().runScriptFile(platform::windowsPath(arguments.script));
  if (!result.succeeded) {
    std::fflush(stdout);
    fmt::print(stderr, "{}\n", toUtf8(result.errorText));
  }
  return result.succeeded && !result.isFalse ? kSuccess : kScriptFailed;
}

}  // namespace

int main(int argc, char** argv) {
  Arguments arguments;
  CLI::App app{"A headless host for the Corvantis plug-in: opens glTF scenes, ray-traces images and runs MAXScript.",
               kProgramName};
  app.add_option("--plugin", arguments.plugin, "Plug-in library to load (default: the one beside this program)")
      ->check(CLI::ExistingFile);
  auto* text = app.add_option("--execute", arguments.text, "Script text to run instead of a file");
  auto* files = app.add_option("--check", arguments.toCheck,
                               "Parse scripts without running them; prints file:line:column: text for each error")
                    ->check(CLI::ExistingFile);
  auto* script = app.add_option("script", arguments.script, "Script file to run")->check(CLI::ExistingFile);
  app.add_option("--script-folder", arguments.scriptFolders,
                 "Folder in which scripts are looked for too; the first is #scripts, and $scripts in file names")
      ->check(CLI::ExistingDirectory);
  text->excludes(files)->excludes(script);
  files->excludes(script);
  app.footer(
      "Exit codes: 0 the script ran and its value is not false, 1 it is false, or the script failed, 2 wrong usage\n"
      "or a plug-in that cannot be loaded.");
  try {
    app.parse(argc, argv);
    if (!*text && !*files && !*script) throw CLI::RequiredError("A script file, --execute or --check");
  } catch (const CLI::ParseError& e) {
    return app.exit(e) == 0 ? kSuccess : kUsage;
  }
  try {
    return *files ? check(arguments) : run(arguments, static_cast<bool>(*text));
  } catch (const std::exception& e) {
    fmt::print(stderr, "{}: {}\n", kProgramName, e.what());
    return kScriptFailed;
  }
}

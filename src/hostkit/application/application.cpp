#include "hostkit/application/application.h"

#include <cstdio>
#include <utility>

#include "hostkit/text/utf8.h"

namespace hostkit::application {
namespace {

// The listener: standard output, a line at once where a line is complete.
void print(std::u16string_view text) {
  const std::string bytes = toUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  if (!bytes.empty() && bytes.back() == '\n') std::fflush(stdout);
}

}  // namespace

Application::Application(const std::string& program, std::string product)
    : log_(program),
      codecs_(image::ImageCodecLibrary::defaultModulePath()),
      bitmaps_(codecs_, gamma_, std::move(product), [this](const std::string& line) { log_.line(line); }),
      paths_([this](const std::string& line) { log_.line(line); }) {}

Application::~Application() = default;

void Application::listen(const std::string& line) { print(fromUtf8(line) + u"\n"); }

void Application::join(hostsdk::Interface14& core, script::HostBindings& bindings,
                       std::vector<std::u16string> scriptFolders) {
  script::EngineOptions options;
  options.scriptFolders = std::move(scriptFolders);
  options.listener = print;
  scripts_ = std::make_unique<script::Engine>(bindings, std::move(options));
  hostsdk::HostServices services;
  services.core = &core;
  services.bitmaps = &bitmaps_;
  services.gamma = &gamma_;
  services.pathConfig = &paths_;
  services.log = &log_;
  services.scripts = &scripts_->port();
  previous_ = hostsdk::bindHost(services);
}

void Application::part() {
  plugin_.reset();
  hostsdk::bindHost(previous_);
  scripts_.reset();
}

void Application::notify(const char* event, const script::HostValue& parameter) {
  scripts_->fireNotification(fromUtf8(event), parameter);
}

void Application::loadPlugin(const std::string& nativePath) {
  plugin_ = std::make_unique<services::PluginLibrary>(nativePath);
  scripts_->publishInterfaces();
}

}  // namespace hostkit::application

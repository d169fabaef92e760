#include "standin/program/host_application.h"

#include <cstdio>

#include "hostkit/services/text.h"

namespace standin::program {
namespace {

// The listener: standard output, a line at once where a line is complete.
void print(std::u16string_view text) {
  const std::string bytes = hostkit::services::toUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
  if (!bytes.empty() && bytes.back() == '\n') std::fflush(stdout);
}

}  // namespace

HostApplication::HostApplication()
    : codecs_(hostkit::image::ImageCodecLibrary::defaultModulePath()),
      bitmaps_(codecs_, gamma_, [this](const std::string& line) { log_.line(line); }),
      paths_([this](const std::string& line) { log_.line(line); }),
      core_(
          paths_, [this](const std::string& line) { log_.line(line); },
          [](const std::string& line) { print(hostkit::services::toWide(line) + u"\n"); }),
      bindings_(core_, [this](const std::string& line) { log_.line(line); }) {
  hostkit::script::EngineOptions options;
  options.listener = print;
  scripts_ = std::make_unique<hostkit::script::Engine>(bindings_, std::move(options));
  core_.onLoad = [this] { codecs_.start(); };
  core_.onEvent = [this](const char* event) {
    scripts_->fireNotification(hostkit::services::toWide(event), hostkit::script::HostValue{});
  };
  hostsdk::HostServices services;
  services.core = &core_;
  services.bitmaps = &bitmaps_;
  services.gamma = &gamma_;
  services.pathConfig = &paths_;
  services.log = &log_;
  services.scripts = &scripts_->port();
  previous_ = hostsdk::bindHost(services);
}

HostApplication::~HostApplication() {
  plugin_.reset();
  hostsdk::bindHost(previous_);
  core_.onEvent = {};
}

void HostApplication::loadPlugin(const std::string& nativePath) {
  plugin_ = std::make_unique<hostkit::services::PluginLibrary>(nativePath);
  scripts_->publishInterfaces();
}

}  // namespace standin::program

#include "standin/program/host_application.h"

namespace standin::program {

HostApplication::HostApplication(std::vector<std::u16string> scriptFolders)
    : application_(kProgramName, "Corvantis stand-in host"),
      core_(
          application_.paths(), [this](const std::string& line) { application_.log(line); },
          [this](const std::string& line) { application_.listen(line); }),
      bindings_(core_, [this](const std::string& line) { application_.log(line); }) {
  application_.join(core_, bindings_, std::move(scriptFolders));
  core_.onLoad = [this] { application_.codecs().start(); };
  core_.onEvent = [this](const char* event, const host::EventParameter& parameter) {
    application_.notify(event, bindings::eventParameter(parameter));
  };
}

HostApplication::~HostApplication() {
  application_.part();
  core_.onEvent = {};
}

}  // namespace standin::program

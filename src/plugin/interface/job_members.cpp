// The members of TessarynUtil that tell a script about its job, or end it.
#include "hostsdk/core_interface.h"
#include "hostsdk/script_runtime.h"
#include "plugin/daemon/requests/requests.h"
#include "plugin/interface/corvantis_interface.h"

namespace corvantis {

void CorvantisInterface::FailRender(const std::u16string& message) {
  pump_messages();
  throw hostsdk::RuntimeError(message);
}

hostsdk::Value* CorvantisInterface::GetOutputFilename(std::int32_t index) {
  const std::vector<std::u16string>& files = jobState_.savedOutputFiles;
  if (index < 0 || static_cast<std::size_t>(index) >= files.size()) return hostsdk::scriptRuntime().undefined();
  return hostsdk::scriptRuntime().newString(files[static_cast<std::size_t>(index)]);
}

std::int32_t CorvantisInterface::CurrentFrame() {
  if (!daemonRunning_) return hostsdk::GetCOREInterface8()->GetTime() / hostsdk::GetTicksPerFrame();
  pump_messages();
  return jobState_.currentFrame;
}

std::int32_t CorvantisInterface::CurrentTask() {
  if (!daemonRunning_) return -1;
  pump_messages();
  return jobState_.currentTask;
}

hostsdk::Value* CorvantisInterface::textProperty(const std::u16string& text) {
  if (!daemonRunning_) return hostsdk::scriptRuntime().undefined();
  pump_messages();
  return hostsdk::scriptRuntime().newString(text);
}

hostsdk::Value* CorvantisInterface::SceneFileName() { return textProperty(jobState_.sceneFileName); }
hostsdk::Value* CorvantisInterface::SceneFilePath() { return textProperty(jobState_.sceneFilePath); }
hostsdk::Value* CorvantisInterface::JobsDataFolder() { return textProperty(jobState_.settings.jobsDataFolder); }
hostsdk::Value* CorvantisInterface::PluginsFolder() { return textProperty(jobState_.settings.pluginsFolder); }

}  // namespace corvantis

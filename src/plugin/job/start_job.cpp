#include "plugin/job/start_job.h"

#include <cstdint>
#include <stdexcept>

#include "hostsdk/exceptions.h"
#include "hostsdk/services.h"
#include "plugin/job/default_actions.h"
#include "plugin/job/end_job.h"
#include "plugin/job/frame_hold.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::uint32_t kLoadFlags = 14;

// Renderers that need treatment of their own.
struct KnownRenderer {
  bool JobState::*flag;
  hostsdk::Class_ID classId;
};
constexpr KnownRenderer kKnownRenderers[] = {
    {&JobState::isRendererA, {0x52ad1c02, 0x112d2fbc}},
    {&JobState::isRendererB, {0x73bab286, 0x77f8fd0c}},
    {&JobState::isRendererC, {0x58f67d6c, 0x4fcf3bc3}},
};

void forgetRenderer(JobState& job) {
  for (const KnownRenderer& known : kKnownRenderers) job.*known.flag = false;
}

void recogniseRenderer(JobState& job) {
  for (const KnownRenderer& known : kKnownRenderers) {
    const hostsdk::Renderer* current = job.hostCore.v8->CurrentRenderer(true);
    if (current && current->ClassID() == known.classId) {
      job.*known.flag = true;
      return;
    }
  }
}

// Without gammaCorrection the host keeps what it has.
void applyGammaSettings(const JobState& job) {
  if (!job.settings.gammaCorrection) return;
  hostsdk::GammaMgr& gamma = hostsdk::gammaMgr();
  gamma.Enable(1);
  gamma.SetFileInGamma(job.settings.gammaIn);
  gamma.SetFileOutGamma(job.settings.gammaOut);
}

// `when` ends the lines of the log.
void applySceneSettings(JobState& job, const char* when) {
  log_file << "setting up gamma settings" << when << LogFile::endl;
  applyGammaSettings(job);
  log_file << "setting up default actions" << when << LogFile::endl;
  applyDefaultActions(job);
}

// Whether the host could read the file is not examined.
void usePathConfiguration(const JobSettings& settings) {
  if (!settings.usePathConfigFile) return;
  if (settings.mergePathConfigFile) {
    log_file << "Merging alternate path config file " << settings.pathConfigFile << LogFile::endl;
    hostsdk::IPathConfigMgr::GetPathConfigMgr()->MergePathConfiguration(settings.pathConfigFile);
  } else {
    log_file << "Loading alternate path config file " << settings.pathConfigFile << LogFile::endl;
    hostsdk::IPathConfigMgr::GetPathConfigMgr()->LoadPathConfiguration(settings.pathConfigFile);
  }
}

std::string quoted(const std::u16string& fileName) { return "\"" + to_string(fileName) + "\""; }

void checkSceneFile(JobState& job, const std::u16string& fileName) {
  log_file << "Checking max file validity..." << LogFile::endl;
  if (!job.hostCore.v8->IsSceneFile(fileName)) throw std::runtime_error("Invalid max file: " + quoted(fileName));
}

// Turns what the load throws into failures of the job.
Trapped<bool> loadOrExplain(JobState& job, const std::u16string& fileName) {
  try {
    return trappedCall(job, "Trapped SEH Exception in LoadFromFile(): ", false,
                       [&] { return job.hostCore.v8->LoadFromFile(fileName, kLoadFlags); });
  } catch (const std::exception& e) {
    log_file << "catch(std::exception& e) from LoadFromFile()" << LogFile::endl;
    throw std::runtime_error(std::string("Caught an exception in GetCOREInterface()->LoadFromFile(): ") + e.what());
  } catch (const hostsdk::MAXException& e) {
    log_file << "catch(MAXException& e) from LoadFromFile()" << LogFile::endl;
    throw std::runtime_error("Caught a MAXException in GetCOREInterface()->LoadFromFile(): " + to_string(e.message()));
  } catch (...) {
    log_file << "catch(...) from LoadFromFile()" << LogFile::endl;
    throw std::runtime_error("3ds max crashed in GetCOREInterface()->LoadFromFile(): " + quoted(fileName));
  }
}

void loadFile(JobState& job, const std::u16string& fileName) {
  log_file << "Trying to load max file..." << LogFile::endl;
  const Trapped<bool> loaded = loadOrExplain(job, fileName);
  throwIfFaulted(job, loaded);
  if (loaded.value) return;
  log_file << "LoadFromFile() returned failure" << LogFile::endl;
  throw std::runtime_error("Failed to load max file: " + quoted(fileName));
}

void checkMissingXrefs(JobState& job) {
  hostsdk::IDefaultActionSystem* actions = job.hostCore.v8->DefaultActionSystem();
  if (actions->MessageCount(hostsdk::kTypeMissingXrefFiles) <= 0) return;
  throw std::runtime_error(to_string(actions->MessageText(hostsdk::kTypeMissingXrefFiles, 0)));
}

void loadScene(JobState& job, const std::u16string& fileName) {
  checkSceneFile(job, fileName);
  loadFile(job, fileName);
  checkMissingXrefs(job);
  log_file << "Successfully loaded the max file" << LogFile::endl;
}

void useLockedViewport(JobState& job) {
  job.lockedViewportIndex = job.hostCore.v14->LockedViewportIndex();
  log_file << "Viewport " << job.lockedViewportIndex << " is locked" << LogFile::endl;
  job.renderViewport = job.hostCore.v8->Viewport(job.lockedViewportIndex);
  log_file << "Got the locked viewport: " << static_cast<const void*>(job.renderViewport) << LogFile::endl;
}

void useActiveViewport(JobState& job, const std::u16string& cameraName) {
  job.renderViewport = job.hostCore.v8->ActiveViewport();
  log_file << "Got the active viewport: " << static_cast<const void*>(job.renderViewport) << LogFile::endl;
  if (cameraName.empty()) return;
  job.renderCamera = job.hostCore.v8->NodeByName(cameraName);
  if (!job.renderCamera) {
    throw std::runtime_error("Scene does not contain render camera \"" + to_string(cameraName) + "\"");
  }
}

void useCameraOfViewport(JobState& job) {
  job.renderCamera = job.renderViewport ? job.renderViewport->ViewCamera() : nullptr;
  if (job.renderCamera) {
    log_file << "Rendering viewport with camera: " << job.renderCamera->Name() << LogFile::endl;
  } else {
    log_file << "Viewport is not a camera, so its current view will be rendered" << LogFile::endl;
  }
}

void chooseRenderView(JobState& job, const std::u16string& cameraName) {
  job.renderCamera = nullptr;
  job.renderViewLocked = job.hostCore.v11->RenderUsesActiveViewport() == 0;
  if (job.renderViewLocked) {
    useLockedViewport(job);
  } else {
    useActiveViewport(job, cameraName);
  }
  if (!job.renderCamera) useCameraOfViewport(job);
}

}  // namespace

void StartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName) {
  job.hostCore = fetchHostCore();
  log_file << "StartJob begin" << LogFile::endl;
  forgetRenderer(job);
  resetJobSettings(job.settings);
  if (job.jobRunning) throw std::runtime_error("StartJob called when job was already running.");

  applySceneSettings(job, "");
  usePathConfiguration(job.settings);
  // What a frame rendered outside any job may have left of the scene that goes now.
  clearAbandonedFrame(job);
  closeRenderer(job);
  loadScene(job, fileName);
  applySceneSettings(job, " again, just to ensure they're set");
  chooseRenderView(job, cameraName);
  recogniseRenderer(job);
  job.jobRunning = true;
}

Trapped<void> trappedStartJob(JobState& job, const std::u16string& fileName, const std::u16string& cameraName) {
  return trappedCall(job, "Trapped SEH Exception in StartJob(): ", [&] { StartJob(job, fileName, cameraName); });
}

}  // namespace corvantis

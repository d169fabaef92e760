#include "plugin/job/scene_load.h"

#include <cstdint>
#include <stdexcept>

#include "hostsdk/exceptions.h"
#include "hostsdk/services.h"
#include "plugin/job/trapped_call.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

constexpr std::uint32_t kLoadFlags = 14;

std::string quoted(const std::u16string& fileName) { return "\"" + to_string(fileName) + "\""; }

void checkSceneFile(JobState& job, const std::u16string& fileName) {
  log_file << "Checking max file validity..." << LogFile::endl;
  if (!job.hostCore.v8->IsSceneFile(fileName)) throw std::runtime_error("Invalid max file: " + quoted(fileName));
}

// Turns what the load throws into failures of the job; whether it loaded otherwise.
bool loadOrExplain(JobState& job, const std::u16string& fileName, std::string& sehText) {
  try {
    return trappedLoadFromFile(job, fileName, sehText);
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
  std::string sehText;
  const bool loaded = loadOrExplain(job, fileName, sehText);
  if (!sehText.empty()) throw std::runtime_error(sehText + "\n" + job.crashDescription);
  if (loaded) return;
  log_file << "LoadFromFile() returned failure" << LogFile::endl;
  throw std::runtime_error("Failed to load max file: " + quoted(fileName));
}

void checkMissingXrefs(JobState& job) {
  hostsdk::IDefaultActionSystem* actions = job.hostCore.v8->DefaultActionSystem();
  if (actions->MessageCount(hostsdk::kTypeMissingXrefFiles) <= 0) return;
  throw std::runtime_error(to_string(actions->MessageText(hostsdk::kTypeMissingXrefFiles, 0)));
}

}  // namespace

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

void loadScene(JobState& job, const std::u16string& fileName) {
  checkSceneFile(job, fileName);
  loadFile(job, fileName);
  checkMissingXrefs(job);
  log_file << "Successfully loaded the max file" << LogFile::endl;
}

bool trappedLoadFromFile(JobState& job, const std::u16string& fileName, std::string& sehText) {
  return trappedCall(job, "Trapped SEH Exception in LoadFromFile(): ", sehText, false,
                     [&] { return job.hostCore.v8->LoadFromFile(fileName, kLoadFlags); });
}

}  // namespace corvantis

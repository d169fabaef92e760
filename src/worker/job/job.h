// A render job as the worker runs it, and what came of it.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace worker {

// Replaces the beginning of a path. Slashes of both kinds are the same, and letter case does not matter, as in Windows
// paths.
struct PathMapping {
  std::string from, to;
};

struct Job {
  // Native paths, absolute.
  std::string scene;
  std::string output;       // main image; empty: as the scene says
  std::string jpegFolder;   // empty: no previews
  std::string localFolder;  // render here first, then move; made when it is missing; empty: straight to the output
  std::string camera;       // empty: what the scene's viewport shows
  std::vector<std::int32_t> frames;

  // Settings commands, each the command word and its parameters, in order.
  std::vector<std::vector<std::string>> settings;
  // MAXScript files run after the scene is loaded, before each frame with the scene at that frame, and at the end.
  std::vector<std::string> preJobScripts, perFrameScripts, postJobScripts;

  // Answers to what scripts and the plug-in ask. A list-valued submission entry is answered element by element,
  // counted from 0, and as a whole with its elements joined by ";".
  std::map<std::string, std::string> jobInfo;
  std::map<std::string, std::vector<std::string>> submitInfo;
  std::vector<std::string> auxFiles;
  std::vector<PathMapping> pathMappings;

  bool stopOnError = false;  // do not go on with the next frame after a failed one
};

// How a frame ended.
struct FrameResult {
  std::int32_t frame = 0;
  bool rendered = false;
  bool skipped = false;  // its file existed and the scene skips existing files
  double seconds = 0;
  std::vector<std::string> files;   // native paths, as the plug-in reported them
  std::vector<std::string> errors;  // in the plug-in's words
};

enum class JobStatus {
  done,       // every frame was asked for; some may have failed
  refused,    // the scene could not be opened, or a setting or script failed
  hostFailed  // the host did not start, died, hung or broke the protocol
};

struct JobResult {
  JobStatus status = JobStatus::done;
  std::string message;  // what went wrong with the job as a whole
  std::string pluginVersion;
  std::vector<FrameResult> frames;
};

}  // namespace worker

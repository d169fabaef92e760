// The host's other services, and how a host binds itself to this port.
#pragma once

#include <string>

#include "hostsdk/api.h"
#include "hostsdk/bitmap.h"
#include "hostsdk/core_interface.h"

namespace hostsdk {

class ScriptRuntime;

// Gamma of 8-bit image files.
class HOSTSDK_API GammaMgr {
 public:
  virtual ~GammaMgr();
  virtual void Enable(int on) = 0;  // 1: on
  virtual void SetFileInGamma(float gamma) = 0;
  virtual void SetFileOutGamma(float gamma) = 0;
};

// The host's folders for textures and external scenes.
class HOSTSDK_API IPathConfigMgr {
 public:
  virtual ~IPathConfigMgr();
  static IPathConfigMgr* GetPathConfigMgr();
  // Replaces the current configuration by a file's, or merges it in. False when the file cannot be read.
  virtual bool LoadPathConfiguration(const std::u16string& file) = 0;
  virtual bool MergePathConfiguration(const std::u16string& file) = 0;
};

// The host's system log.
class HOSTSDK_API LogSys {
 public:
  virtual ~LogSys();
  enum class Level { error, warning, info, debug };
  virtual void LogEntry(Level level, bool showDialog, const std::u16string& title, const std::u16string& text) = 0;
};

// Everything a host offers. All pointers are borrowed and must outlive the binding.
struct HostServices {
  Interface14* core = nullptr;
  BitmapManager* bitmaps = nullptr;
  GammaMgr* gamma = nullptr;
  IPathConfigMgr* pathConfig = nullptr;
  LogSys* log = nullptr;
  ScriptRuntime* scripts = nullptr;
};

// Binds the process's host, replacing an earlier one; an empty record unbinds it. Returns what was bound before.
HOSTSDK_API HostServices bindHost(const HostServices& services);

// Each throws MAXException "No host is bound" when the service is missing.
HOSTSDK_API GammaMgr& gammaMgr();
HOSTSDK_API LogSys& Log();

}  // namespace hostsdk

#include "hostsdk/services.h"

#include <utility>

#include "hostsdk/exceptions.h"
#include "hostsdk/script_runtime.h"

namespace hostsdk {
namespace {

HostServices& bound() {
  static HostServices services;
  return services;
}

template <class Service>
Service* require(Service* service) {
  if (!service) throw MAXException(u"No host is bound");
  return service;
}

}  // namespace

HostServices bindHost(const HostServices& services) { return std::exchange(bound(), services); }

Interface8* GetCOREInterface8() { return require(bound().core); }
Interface11* GetCOREInterface11() { return require(bound().core); }
Interface14* GetCOREInterface14() { return require(bound().core); }
int GetTicksPerFrame() { return require(bound().core)->TicksPerFrame(); }
BitmapManager* TheManager() { return require(bound().bitmaps); }
GammaMgr& gammaMgr() { return *require(bound().gamma); }
LogSys& Log() { return *require(bound().log); }
IPathConfigMgr* IPathConfigMgr::GetPathConfigMgr() { return require(bound().pathConfig); }
ScriptRuntime& scriptRuntime() { return *require(bound().scripts); }

}  // namespace hostsdk

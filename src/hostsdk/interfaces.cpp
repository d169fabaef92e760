// Key functions of the abstract classes, so that their type information stands once, in this library.
#include "hostsdk/core_interface.h"
#include "hostsdk/services.h"

namespace hostsdk {

Object::~Object() = default;
IMultiPassCameraEffect::~IMultiPassCameraEffect() = default;
CameraObject::~CameraObject() = default;
INode::~INode() = default;
ViewExp::~ViewExp() = default;

Renderer::~Renderer() = default;
IRenderElement::~IRenderElement() = default;
IRenderElementMgr::~IRenderElementMgr() = default;
RendProgressCallback::~RendProgressCallback() = default;
void RendProgressCallback::SetCurrentField(int) {}
void RendProgressCallback::SetSceneStatistics(int, int, int, int, int) {}
void RendProgressCallback::SetStep(int, int) {}

IDefaultActionSystem::~IDefaultActionSystem() = default;
Interface8::~Interface8() = default;
Interface11::~Interface11() = default;
Interface14::~Interface14() = default;

GammaMgr::~GammaMgr() = default;
IPathConfigMgr::~IPathConfigMgr() = default;
LogSys::~LogSys() = default;

}  // namespace hostsdk

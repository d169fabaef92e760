// Scene nodes, the objects they evaluate to, viewports, and multipass camera effects.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "hostsdk/api.h"
#include "hostsdk/types.h"

namespace hostsdk {

class Bitmap;
class CameraObject;
class INode;

// The view that one render pass uses instead of the camera's own.
struct ViewParams {
  // World to camera, row-major 3 x 4: camera = M * (x, y, z, 1). The camera looks down -z, y is up. Scene units.
  std::array<float, 12> worldToCamera{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
  float fov = 0.785398F;  // horizontal, radians
  // Shifts the projection window, as a share of its full width and height (a lens sample of a thin lens).
  float shiftX = 0, shiftY = 0;
  int pass = 0;  // of a multipass effect, from 0; a renderer may vary its sample pattern by it
};

// Anything a node can evaluate to.
class HOSTSDK_API Object {
 public:
  virtual ~Object();
  virtual Class_ID ClassID() const = 0;
  // Itself as a camera, or null.
  virtual CameraObject* AsCamera() { return nullptr; }
};

// The result of evaluating a node; `obj` belongs to the host and may be null.
struct ObjectState {
  Object* obj = nullptr;
};

// Splits a frame into passes whose images it accumulates.
class HOSTSDK_API IMultiPassCameraEffect {
 public:
  virtual ~IMultiPassCameraEffect();
  virtual Class_ID ClassID() const = 0;
  virtual int TotalPasses(TimeValue time) = 0;
  // The view of pass `pass` (from 0). May change `time`, the pass's scene time in ticks. The result belongs to the
  // effect and holds until the next call; null means the camera's own view.
  virtual ViewParams* SetupPass(INode* camera, CameraObject* object, int pass, TimeValue& time) = 0;
  // Adds one pass's image to the accumulated one.
  virtual void AccumulateBitmap(Bitmap* destination, Bitmap* source, int pass, TimeValue time) = 0;
  // Ends the frame's passes.
  virtual void Finish() = 0;
};

class HOSTSDK_API CameraObject : public Object {
 public:
  ~CameraObject() override;
  CameraObject* AsCamera() override { return this; }
  // What is written into `valid` is for the host's own use.
  virtual bool MultiPassEffectEnabled(TimeValue time, Interval& valid) = 0;
  virtual IMultiPassCameraEffect* MultiPassEffect() = 0;
};

class HOSTSDK_API INode {
 public:
  virtual ~INode();
  virtual std::u16string Name() const = 0;
  virtual ObjectState EvalWorldState(TimeValue time, bool evalHidden) = 0;
  virtual int NumberOfChildren() const = 0;
  virtual INode* ChildNode(int index) = 0;
};

class HOSTSDK_API ViewExp {
 public:
  virtual ~ViewExp();
  // Null when the view is not a camera's.
  virtual INode* ViewCamera() = 0;
};

}  // namespace hostsdk

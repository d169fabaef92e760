// Nodes, cameras, viewports, multipass effects, the renderer and render elements, with plain fields for their answers.
#pragma once

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "hostsdk/core_interface.h"
#include "support/call_log.h"
#include "support/fake_bitmap.h"

namespace support {

// Each pass changes the time by `timeShift` times its index and adds its share (1 / passes) of the pass image.
class FakeMultipassEffect : public hostsdk::IMultiPassCameraEffect {
 public:
  explicit FakeMultipassEffect(CallLog& calls) : calls_(calls) {}
  hostsdk::Class_ID ClassID() const override { return classId; }
  int TotalPasses(hostsdk::TimeValue time) override;
  hostsdk::ViewParams* SetupPass(hostsdk::INode* camera, hostsdk::CameraObject* object, int pass,
                                 hostsdk::TimeValue& time) override;  // hook answer 0: null
  void AccumulateBitmap(hostsdk::Bitmap* destination, hostsdk::Bitmap* source, int pass,
                        hostsdk::TimeValue time) override;
  void Finish() override;

  hostsdk::Class_ID classId{1, 1};
  int passes = 2;
  hostsdk::TimeValue timeShift = 0;
  hostsdk::ViewParams view;

 private:
  CallLog& calls_;
};

class FakeCamera : public hostsdk::CameraObject {
 public:
  explicit FakeCamera(CallLog& calls) : calls_(calls) {}
  hostsdk::Class_ID ClassID() const override { return classId; }
  bool MultiPassEffectEnabled(hostsdk::TimeValue time, hostsdk::Interval& valid) override;
  hostsdk::IMultiPassCameraEffect* MultiPassEffect() override { return effect; }

  hostsdk::Class_ID classId{2, 2};
  bool effectEnabled = false;
  hostsdk::IMultiPassCameraEffect* effect = nullptr;

 private:
  CallLog& calls_;
};

// An object that is no camera.
class FakeMesh : public hostsdk::Object {
 public:
  hostsdk::Class_ID ClassID() const override { return {3, 3}; }
};

class FakeNode : public hostsdk::INode {
 public:
  FakeNode(CallLog& calls, std::u16string nodeName, hostsdk::Object* nodeObject)
      : name(std::move(nodeName)), object(nodeObject), calls_(calls) {}
  std::u16string Name() const override { return name; }
  hostsdk::ObjectState EvalWorldState(hostsdk::TimeValue time, bool evalHidden) override;
  int NumberOfChildren() const override { return static_cast<int>(children.size()); }
  hostsdk::INode* ChildNode(int index) override { return children.at(static_cast<std::size_t>(index)); }

  std::u16string name;
  hostsdk::Object* object;
  std::vector<hostsdk::INode*> children;

 private:
  CallLog& calls_;
};

class FakeViewport : public hostsdk::ViewExp {
 public:
  hostsdk::INode* ViewCamera() override { return camera; }
  hostsdk::INode* camera = nullptr;
};

class FakeRenderer : public hostsdk::Renderer {
 public:
  hostsdk::Class_ID ClassID() const override { return classId; }
  bool HasRequirement(int requirement) const override { return requirements.count(requirement) != 0; }
  hostsdk::Class_ID classId{4, 4};
  std::set<int> requirements;
};

class FakeElement : public hostsdk::IRenderElement {
 public:
  bool IsEnabled() const override { return enabled; }
  std::u16string ElementName() const override { return name; }
  void GetOutput(hostsdk::ElementOutput*& slot) override {
    if (hasOutput) slot = &output;
  }
  bool enabled = true, hasOutput = true;
  std::u16string name;
  hostsdk::ElementOutput output;
  ColorFunction color = [](int, int) { return hostsdk::ColorFloat{0.25F, 0.5F, 0.75F, 1.0F}; };
};

class FakeElementManager : public hostsdk::IRenderElementMgr {
 public:
  bool ElementsActive() const override { return active; }
  int NumRenderElements() const override { return static_cast<int>(elements.size()); }
  hostsdk::IRenderElement* GetRenderElement(int index) override {
    return elements.at(static_cast<std::size_t>(index)).get();
  }
  // An enabled element whose file is `output`.
  FakeElement& add(const std::u16string& name, const std::u16string& output);

  bool active = true;
  std::vector<std::unique_ptr<FakeElement>> elements;
};

}  // namespace support

// The live host objects of a loaded scene: nodes, the objects behind them, viewports, render elements.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hostsdk/core_interface.h"
#include "standin/host/cameras.h"
#include "standin/scene/description.h"

namespace standin::host {

// The size that the renderer was opened with, as the effects need it.
struct ImageShape {
  int width = 640, height = 480;
  float pixelAspect = 1;
  double aspect() const { return static_cast<double>(width) * pixelAspect / height; }
};

class LiveScene : public hostsdk::IRenderElementMgr {
 public:
  // Takes the scene over. `shape` is borrowed and read whenever a view is asked for.
  LiveScene(scene::Scene description, const ImageShape& shape);
  ~LiveScene() override;

  scene::Scene& description() { return scene_; }
  const scene::Scene& description() const { return scene_; }

  // By exact name; the first in file order.
  hostsdk::INode* nodeByName(const std::u16string& name);
  hostsdk::INode* node(int index);
  // The index of one of this scene's nodes; scene::kNone for any other.
  int indexOf(const hostsdk::INode* node) const;

  // Null outside the scene's viewports.
  hostsdk::ViewExp* viewport(int index);
  const scene::ViewportSettings* settingsOf(const hostsdk::ViewExp* view) const;

  bool ElementsActive() const override { return scene_.render.elementsActive; }
  int NumRenderElements() const override;
  hostsdk::IRenderElement* GetRenderElement(int index) override;
  // The output record of an element.
  hostsdk::ElementOutput& elementOutput(int index);

 private:
  class LiveNode;
  class LiveViewport;
  class LiveElement;

  scene::Scene scene_;
  const ImageShape& shape_;
  std::vector<std::unique_ptr<LiveNode>> nodes_;
  std::vector<std::unique_ptr<LiveViewport>> viewports_;
  std::vector<std::unique_ptr<LiveElement>> elements_;
};

}  // namespace standin::host

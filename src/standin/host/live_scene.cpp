#include "standin/host/live_scene.h"

#include <algorithm>
#include <utility>

#include "hostkit/text/utf8.h"
#include "platform/files.h"
#include "standin/host/cameras.h"

namespace standin::host {
namespace {

hostsdk::Class_ID classId(const std::pair<std::uint32_t, std::uint32_t>& pair) { return {pair.first, pair.second}; }

// What a node without a camera evaluates to.
class PlainObject : public hostsdk::Object {
 public:
  hostsdk::Class_ID ClassID() const override { return {1, 0}; }
};

class LiveCamera : public hostsdk::CameraObject, public EffectScene {
 public:
  LiveCamera(const scene::Scene& scene, int node, const ImageShape& shape) : scene_(scene), node_(node), shape_(shape) {
    if (const auto& multipass = settings().multipass) effect_ = makeEffect(*multipass, *this);
  }

  hostsdk::Class_ID ClassID() const override { return classId(settings().classId); }
  bool MultiPassEffectEnabled(hostsdk::TimeValue, hostsdk::Interval&) override {
    return effect_ && settings().multipass->enabled;
  }
  hostsdk::IMultiPassCameraEffect* MultiPassEffect() override { return effect_.get(); }

  hostsdk::ViewParams viewAt(double ticks) const override { return cameraView(scene_, node_, ticks, shape_.aspect()); }
  double imageAspect() const override { return shape_.aspect(); }
  int ticksPerFrame() const override { return scene::ticksPerFrame(scene_); }

 private:
  const scene::Camera& settings() const {
    return scene_.cameras[static_cast<std::size_t>(scene_.nodes[static_cast<std::size_t>(node_)].camera)];
  }

  const scene::Scene& scene_;
  int node_;
  const ImageShape& shape_;
  std::unique_ptr<hostsdk::IMultiPassCameraEffect> effect_;
};

}  // namespace

class LiveScene::LiveNode : public hostsdk::INode {
 public:
  LiveNode(LiveScene& owner, int index) : owner_(owner), index_(index) {
    if (data().camera != scene::kNone)
      object_ = std::make_unique<LiveCamera>(owner.scene_, index, owner.shape_);
    else
      object_ = std::make_unique<PlainObject>();
  }

  std::u16string Name() const override { return hostkit::fromUtf8(data().name); }
  hostsdk::ObjectState EvalWorldState(hostsdk::TimeValue, bool) override { return {object_.get()}; }
  int NumberOfChildren() const override { return static_cast<int>(data().children.size()); }
  hostsdk::INode* ChildNode(int index) override {
    if (index < 0 || index >= NumberOfChildren()) return nullptr;
    return owner_.node(data().children[static_cast<std::size_t>(index)]);
  }
  int index() const { return index_; }

 private:
  const scene::Node& data() const { return owner_.scene_.nodes[static_cast<std::size_t>(index_)]; }

  LiveScene& owner_;
  int index_;
  std::unique_ptr<hostsdk::Object> object_;
};

class LiveScene::LiveViewport : public hostsdk::ViewExp {
 public:
  LiveViewport(LiveScene& owner, const scene::ViewportSettings& settings) : owner_(owner), settings_(settings) {}

  hostsdk::INode* ViewCamera() override {
    return settings_.camera.empty() ? nullptr : owner_.nodeByName(hostkit::fromUtf8(settings_.camera));
  }
  const scene::ViewportSettings& settings() const { return settings_; }

 private:
  LiveScene& owner_;
  const scene::ViewportSettings& settings_;
};

class LiveScene::LiveElement : public hostsdk::IRenderElement {
 public:
  explicit LiveElement(const scene::ElementSettings& settings) : settings_(settings) {
    if (!settings.output.empty()) output_.info.SetName(platform::windowsPath(settings.output));
  }

  bool IsEnabled() const override { return settings_.enabled; }
  std::u16string ElementName() const override { return hostkit::fromUtf8(settings_.name); }
  void GetOutput(hostsdk::ElementOutput*& slot) override { slot = &output_; }
  hostsdk::ElementOutput& output() { return output_; }

 private:
  const scene::ElementSettings& settings_;
  hostsdk::ElementOutput output_;
};

LiveScene::LiveScene(scene::Scene description, const ImageShape& shape)
    : scene_(std::move(description)), shape_(shape) {
  for (int i = 0; i < static_cast<int>(scene_.nodes.size()); ++i)
    nodes_.push_back(std::make_unique<LiveNode>(*this, i));
  for (const auto& settings : scene_.viewports) viewports_.push_back(std::make_unique<LiveViewport>(*this, settings));
  for (const auto& settings : scene_.elements) elements_.push_back(std::make_unique<LiveElement>(settings));
}

LiveScene::~LiveScene() = default;

hostsdk::INode* LiveScene::nodeByName(const std::u16string& name) {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(), [&](const auto& node) { return node->Name() == name; });
  return found != nodes_.end() ? found->get() : nullptr;
}

hostsdk::INode* LiveScene::node(int index) { return nodes_.at(static_cast<std::size_t>(index)).get(); }

int LiveScene::indexOf(const hostsdk::INode* node) const {
  const auto found = std::find_if(nodes_.begin(), nodes_.end(), [&](const auto& each) { return each.get() == node; });
  return found != nodes_.end() ? (*found)->index() : scene::kNone;
}

hostsdk::ViewExp* LiveScene::viewport(int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= viewports_.size()) return nullptr;
  return viewports_[static_cast<std::size_t>(index)].get();
}

const scene::ViewportSettings* LiveScene::settingsOf(const hostsdk::ViewExp* view) const {
  const auto found =
      std::find_if(viewports_.begin(), viewports_.end(), [&](const auto& each) { return each.get() == view; });
  return found != viewports_.end() ? &(*found)->settings() : nullptr;
}

int LiveScene::NumRenderElements() const { return static_cast<int>(elements_.size()); }

hostsdk::IRenderElement* LiveScene::GetRenderElement(int index) {
  if (index < 0 || index >= NumRenderElements()) return nullptr;
  return elements_[static_cast<std::size_t>(index)].get();
}

hostsdk::ElementOutput& LiveScene::elementOutput(int index) {
  return elements_.at(static_cast<std::size_t>(index))->output();
}

}  // namespace standin::host

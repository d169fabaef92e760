#include "standin/host/scene_renderer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <variant>
#include <vector>

#include "hostkit/services/renderer_classes.h"
#include "hostkit/text/utf8.h"
#include "standin/host/cameras.h"

namespace standin::host {
using hostkit::services::kRendererA;
using hostkit::services::kRendererB;
using hostkit::services::kRendererC;

namespace {

// The part of the image that a bitmap shows, and the pixels of it that are rendered.
struct Target {
  int left = 0, top = 0, width = 0, height = 0;
  raytracer::Region rendered;
};

Target targetOf(const hostsdk::Bitmap& bitmap, const ImageShape& shape, int renderType, const hostsdk::Rect* region) {
  raytracer::Region rendered{0, 0, shape.width, shape.height};
  if (region)
    rendered = {std::clamp(region->left, 0, shape.width), std::clamp(region->top, 0, shape.height),
                std::clamp(region->right, 0, shape.width), std::clamp(region->bottom, 0, shape.height)};
  Target target{0, 0, bitmap.Width(), bitmap.Height(), rendered};
  if (region && renderType == hostsdk::kRenderTypeRegion) {
    target.left = region->left;
    target.top = region->top;
  }
  const bool fits = rendered.left >= target.left && rendered.top >= target.top &&
                    rendered.right <= target.left + target.width && rendered.bottom <= target.top + target.height;
  if (!fits)
    throw std::runtime_error(fmt::format("The renderer was given a bitmap of {} x {} pixels for an image of {} x {}",
                                         target.width, target.height, shape.width, shape.height));
  return target;
}

// One picture on its way from the ray tracer into a bitmap.
struct Picture {
  hostsdk::Bitmap* bitmap;
  scene::ElementType type;
  std::vector<float> pixels;
};

void store(const Picture& picture, const Target& target) {
  static_assert(sizeof(hostsdk::ColorFloat) == 4 * sizeof(float));
  const int firstX = target.rendered.left - target.left;
  const int count = target.rendered.right - target.rendered.left;
  for (int y = target.rendered.top - target.top; y < target.rendered.bottom - target.top; ++y) {
    const std::size_t offset =
        (static_cast<std::size_t>(y) * static_cast<std::size_t>(target.width) + static_cast<std::size_t>(firstX)) * 4;
    picture.bitmap->Storage()->PutLinearPixels(
        firstX, y, count, reinterpret_cast<const hostsdk::ColorFloat*>(picture.pixels.data() + offset));
  }
}

raytracer::View viewOf(const hostsdk::ViewParams& params) {
  raytracer::View view;
  view.worldToCamera = scene::Transform{params.worldToCamera};
  view.fov = params.fov;
  view.shiftX = params.shiftX;
  view.shiftY = params.shiftY;
  return view;
}

}  // namespace

SceneRenderer::SceneRenderer(const scene::RenderSettings& settings) : requirements_(settings.requirements) {
  if (const auto* pair = std::get_if<std::pair<std::uint32_t, std::uint32_t>>(&settings.renderer)) {
    classId_ = {pair->first, pair->second};
    return;
  }
  const std::string& name = std::get<std::string>(settings.renderer);
  classId_ = name == "A" ? kRendererA : name == "B" ? kRendererB : name == "C" ? kRendererC : kRendererDefault;
}

bool SceneRenderer::HasRequirement(int requirement) const {
  return std::find(requirements_.begin(), requirements_.end(), requirement) != requirements_.end();
}

OpenRenderer::OpenRenderer(LiveScene& live, hostsdk::INode* camera, hostsdk::ViewExp* view, int renderType,
                           const ImageShape& shape, hostsdk::Class_ID renderer)
    : live_(live),
      cameraNode_(live.indexOf(camera)),
      viewport_(live.settingsOf(view)),
      renderType_(renderType),
      shape_(shape),
      class_(renderer),
      tracer_(live.description()) {}

hostsdk::ViewParams OpenRenderer::ownView(hostsdk::TimeValue time) const {
  if (cameraNode_ != scene::kNone) return cameraView(live_.description(), cameraNode_, time, shape_.aspect());
  return viewportView(viewport_ ? *viewport_ : scene::ViewportSettings{});
}

// Renderer B names every object that it takes over; the others say that they prepare.
void OpenRenderer::tellPreparation(hostsdk::RendProgressCallback& progress) const {
  if (class_ == kRendererB) {
    progress.SetTitle(u"Loading bitmaps ");
    for (const scene::Node& node : live_.description().nodes)
      if (node.mesh != scene::kNone) progress.SetTitle((u"Updating object " + hostkit::fromUtf8(node.name)).c_str());
    progress.SetTitle(u"Updating transformation matrices ");
  } else {
    progress.SetTitle(u"Preparing scene");
  }
}

bool OpenRenderer::renderFrame(hostsdk::TimeValue time, hostsdk::Bitmap& bitmap,
                               hostsdk::RendProgressCallback* progress, const hostsdk::ViewParams* view,
                               const hostsdk::Rect* region) {
  const Target target = targetOf(bitmap, shape_, renderType_, region);
  const std::size_t floats = static_cast<std::size_t>(target.width) * static_cast<std::size_t>(target.height) * 4;

  std::vector<Picture> pictures;
  pictures.push_back({&bitmap, scene::ElementType::beauty, std::vector<float>(floats)});
  for (int i = 0; live_.ElementsActive() && i < live_.NumRenderElements(); ++i) {
    hostsdk::Bitmap* const image = live_.elementOutput(i).bitmap;
    if (!live_.GetRenderElement(i)->IsEnabled() || !image) continue;
    if (image->Width() != target.width || image->Height() != target.height) continue;
    pictures.push_back(
        {image, live_.description().elements[static_cast<std::size_t>(i)].type, std::vector<float>(floats)});
  }

  raytracer::FrameRequest request;
  request.ticks = time;
  request.view = viewOf(view ? *view : ownView(time));
  request.width = shape_.width;
  request.height = shape_.height;
  request.pixelAspect = shape_.pixelAspect;
  if (region) request.region = target.rendered;
  request.samples = live_.description().render.samples;
  request.frame =
      static_cast<std::uint32_t>(std::lround(static_cast<double>(time) / scene::ticksPerFrame(live_.description())));
  request.pass = view ? static_cast<std::uint32_t>(view->pass) : 0;
  for (Picture& picture : pictures)
    request.outputs.push_back(
        {picture.type, picture.pixels.data(), target.left, target.top, target.width, target.height});

  raytracer::FrameCallbacks callbacks;
  if (progress) {
    callbacks.onPhase = [&](raytracer::Phase phase) {
      if (phase == raytracer::Phase::preparing) tellPreparation(*progress);
      if (phase == raytracer::Phase::building)
        progress->SetTitle(class_ == kRendererB ? u"Compiling geometry " : u"Building acceleration structure");
      if (phase == raytracer::Phase::rendering) progress->SetTitle(u"Rendering image");
    };
    callbacks.onProgress = [&](int done, int total) { return progress->Progress(done, total) != 0; };
  }
  if (!tracer_.render(request, callbacks)) return false;
  for (const Picture& picture : pictures) store(picture, target);
  return true;
}

}  // namespace standin::host

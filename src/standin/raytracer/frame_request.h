// What one render is asked for: the view, the pixels, and the buffers that receive them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "standin/scene/description.h"

namespace standin::raytracer {

// A perspective view. The camera looks down -z, y is up.
struct View {
  scene::Transform worldToCamera;
  float fov = 0.785398F;  // horizontal, radians, above 0 and below pi
  // Moves the projection window to the right and up, as a share of its full width and height.
  float shiftX = 0, shiftY = 0;
};

// Pixels of the full image, from the top left; right and bottom exclusive.
struct Region {
  int left = 0, top = 0, right = 0, bottom = 0;
  bool operator==(const Region&) const = default;
};

// Where one element goes: 4 floats a pixel, rows from the top. The buffer's first pixel is pixel (left, top) of the
// full image, so that a buffer may hold the full image or just the region. It must hold every rendered pixel; its other
// pixels are left as they are.
//
// What is written, by element. Several samples fall on a pixel; coverage is the share of them that met a surface,
// a surface of opacity o counting o. The fourth channel is the coverage, and colours are multiplied by it.
//   beauty       scene-linear radiance
//   alpha        the coverage, in all four channels
//   albedo       base colour (textures and vertex colours applied), averaged over the samples, times coverage
//   directLight  light of the scene's lights that surfaces send to the camera, without sky, emission and reflections
//   emission     light that surfaces send out by themselves
//   normal       world-space shading normal towards the camera, -1 to 1: the samples' average, of unit length
//   depth        distance along the view axis, positive, in three channels: the nearest sample's
//   position     world-space position of the nearest sample
//   objectId     Node::objectId of the nearest sample, in three channels
// Radiance units: 1 is one candela a square metre, so a white matt surface in the light of pi lux is 1 (lights as
// in KHR_lights_punctual, emission as the material says). A pixel that no surface covers is 0 in all channels.
struct Output {
  scene::ElementType element = scene::ElementType::beauty;
  float* pixels = nullptr;
  int left = 0, top = 0, width = 0, height = 0;
};

struct FrameRequest {
  double ticks = 0;  // scene time
  View view;
  int width = 0, height = 0;          // of the full image, pixels
  float pixelAspect = 1;              // width of a pixel by its height
  std::optional<Region> region;       // only these pixels are traced and written; clipped to the image
  int samples = 4;                    // a pixel, at least 1; one sample in pass 0 stands at the pixel's centre
  std::uint32_t frame = 0, pass = 0;  // vary the sample pattern, nothing else
  std::vector<Output> outputs;
};

enum class Phase {
  preparing,  // placing objects, lights and materials at the frame's time
  building,   // the acceleration structure
  rendering
};

// What a render tells while it works, always on the thread that called it. Either may be empty; what they throw
// leaves the render after it has stopped.
struct FrameCallbacks {
  std::function<void(Phase)> onPhase;
  // Called with 0 first, then with growing counts, at last with done == total, some 5 ms apart. False aborts.
  std::function<bool(int done, int total)> onProgress;
};

}  // namespace standin::raytracer

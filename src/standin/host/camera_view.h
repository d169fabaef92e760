// Views as renderers take them, from the cameras and viewports of a scene.
#pragma once

#include "hostsdk/scene.h"
#include "standin/scene/description.h"

namespace standin::host {

// The view of a camera node at a time, for an image of this shape (width by height as it is shown, pixel aspect
// included). A node without a camera gives the view of a camera with default settings.
hostsdk::ViewParams cameraView(const scene::Scene& scene, int node, double ticks, double imageAspect);

// A viewport's own view: its eye and target.
hostsdk::ViewParams viewportView(const scene::ViewportSettings& viewport);

// The vertical field of view that belongs to a horizontal one, radians.
float verticalFov(float horizontalFov, double imageAspect);

}  // namespace standin::host

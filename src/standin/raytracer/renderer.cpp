#include "standin/raytracer/renderer.h"

#include <tbb/info.h>

#include <mutex>
#include <stdexcept>
#include <utility>

#include "standin/raytracer/buckets.h"
#include "standin/raytracer/film.h"
#include "standin/raytracer/float_mode.h"
#include "standin/raytracer/shared_work.h"
#include "standin/scene/animation.h"

namespace standin::raytracer {

namespace {

// A scene with lights of its own is only filled in by the sky.
constexpr float kSkyAlone = 1.0F, kSkyBesideLights = 0.35F;
constexpr float kSkyReach = 0.25F;  // of the scene's radius

int threadsFor(int wanted) {
  const int available = tbb::info::default_concurrency();
  return wanted > 0 ? std::min(wanted, available) : available;
}

Region regionOf(const FrameRequest& request) {
  const Region region = request.region.value_or(Region{0, 0, request.width, request.height});
  return {std::max(region.left, 0), std::max(region.top, 0), std::min(region.right, request.width),
          std::min(region.bottom, request.height)};
}

void checkRequest(const FrameRequest& request, const Region& region) {
  if (request.width < 1 || request.height < 1) throw std::invalid_argument("Ray tracer: image without pixels");
  if (request.samples < 1) throw std::invalid_argument("Ray tracer: less than one sample a pixel");
  if (!(request.pixelAspect > 0)) throw std::invalid_argument("Ray tracer: pixel aspect not above 0");
  if (region.left >= region.right || region.top >= region.bottom) return;
  for (const Output& output : request.outputs) {
    if (!output.pixels || output.left > region.left || output.top > region.top ||
        output.left + output.width < region.right || output.top + output.height < region.bottom) {
      throw std::invalid_argument("Ray tracer: an output does not hold the pixels to render");
    }
  }
}

// All that the threads of one frame share.
struct FrameJob {
  FrameRequest request;
  MaterialTable materials;
  FrameWorld world;
  std::vector<Region> buckets;
  std::mutex countGuard;
  RayCounts rays;

  FrameJob(const scene::Scene& scene, const EmbreeScene& geometry, const ImageStore& images, const FrameRequest& asked,
           const std::vector<Transform>& worldTransforms, float skyReach)
      : request(asked),
        materials(scene.materials, images),
        world{geometry,
              SurfaceReader(scene, geometry, materials),
              placeLights(scene, worldTransforms),
              Sky(scene.lights.empty() ? kSkyAlone : kSkyBesideLights),
              Camera(asked.view, asked.width, asked.height, asked.pixelAspect),
              asked.samples,
              skyReach} {
    const double raysPerSample = 4 + 1.5 * static_cast<double>(world.lights.size());
    buckets = makeBuckets(regionOf(asked), bucketSize(raysPerSample * asked.samples));
  }

  void renderBucket(const Region& bucket) {
    const FlushToZero floatMode;
    Integrator integrator(world);
    for (int y = bucket.top; y < bucket.bottom; ++y) {
      for (int x = bucket.left; x < bucket.right; ++x) renderPixel(integrator, x, y);
    }
    const std::lock_guard lock(countGuard);
    rays.camera += integrator.rays().camera;
    rays.shadow += integrator.rays().shadow;
    rays.sky += integrator.rays().sky;
    rays.reflection += integrator.rays().reflection;
  }

  void renderPixel(Integrator& integrator, int x, int y) const {
    const PixelSampler sampler(x, y, request.frame, request.pass, request.samples);
    const bool centred = request.samples == 1 && request.pass == 0;
    PixelSum sum;
    for (int i = 0; i < request.samples; ++i) {
      const Vec2 offset = centred ? Vec2{0.5F, 0.5F} : sampler.point(SampleUse::pixel, i);
      sum.add(integrator.trace(sampler, i, static_cast<float>(x) + offset.x, static_cast<float>(y) + offset.y));
    }
    for (const Output& output : request.outputs) {
      store(output, x, y, sum.element(output.element, request.samples));
    }
  }
};

}  // namespace

class Renderer::Implementation {
 public:
  Implementation(const scene::Scene& scene, int threads)
      : scene_(scene), threads_(threadsFor(threads)), arena_(threads_, 1), images_(scene.images), geometry_(scene) {
    // Measured once, at the scene's first frame, so that every frame of the animation has the same shades.
    geometry_.place(scene, scene::worldTransforms(scene, scene.firstFrame * static_cast<double>(ticksPerFrame(scene))));
    skyReach_ = kSkyReach * geometry_.radius();
  }

  bool render(const FrameRequest& request, const FrameCallbacks& callbacks) {
    const Attempt attempt(isUnderWay_);
    checkRequest(request, regionOf(request));
    enter(Phase::preparing, callbacks);
    const std::vector<Transform> transforms = scene::worldTransforms(scene_, request.ticks);
    enter(Phase::building, callbacks);
    geometry_.place(scene_, transforms);
    job_ = std::make_unique<FrameJob>(scene_, geometry_, images_, request, transforms, skyReach_);
    enter(Phase::rendering, callbacks);
    return work(callbacks);
  }

  // Whether a machine fault has ended the last render, on this thread or another.
  bool isDamaged() const { return isUnderWay_ || (work_ && work_->hasFaulted()); }

  // Of the last render that came to its end.
  FrameStatistics statistics() const {
    FrameStatistics counted;
    counted.lights = static_cast<int>(job_->world.lights.size());
    counted.objects = static_cast<int>(geometry_.instances().size());
    for (const Instance& instance : geometry_.instances()) {
      for (const scene::Primitive& primitive : scene_.meshes[static_cast<std::size_t>(instance.mesh)].primitives) {
        counted.faces += static_cast<int>(primitive.indices.size() / 3);
      }
    }
    counted.cameraRays = job_->rays.camera;
    counted.shadowRays = job_->rays.shadow;
    counted.skyRays = job_->rays.sky;
    counted.reflectionRays = job_->rays.reflection;
    return counted;
  }

 private:
  // Ends with a return and with an exception, not with a jump.
  class Attempt {
   public:
    explicit Attempt(bool& isUnderWay) : isUnderWay_(isUnderWay) { isUnderWay_ = true; }
    ~Attempt() { isUnderWay_ = false; }
    Attempt(const Attempt&) = delete;
    Attempt& operator=(const Attempt&) = delete;

   private:
    bool& isUnderWay_;
  };

  static void enter(Phase phase, const FrameCallbacks& callbacks) {
    if (callbacks.onPhase) callbacks.onPhase(phase);
  }

  bool work(const FrameCallbacks& callbacks) {
    const int total = static_cast<int>(job_->buckets.size());
    const auto report = [&](int done) { return !callbacks.onProgress || callbacks.onProgress(done, total); };
    if (!report(0)) return false;
    work_ = std::make_unique<SharedWork>(arena_, total, [job = job_.get()](int piece) {
      job->renderBucket(job->buckets[static_cast<std::size_t>(piece)]);
    });
    // The last report, that all is done, is left to the end, when it is certain to come and to come once.
    const auto goOn = [&](int finished) { return finished == total || report(finished); };
    const bool complete = work_->run(std::min(threads_ - 1, total - 1), goOn);
    if (complete && total > 0) report(total);
    return complete;
  }

  const scene::Scene& scene_;
  const int threads_;
  tbb::task_arena arena_;
  ImageStore images_;
  EmbreeScene geometry_;
  float skyReach_ = 0;
  std::unique_ptr<FrameJob> job_;     // the last frame's
  std::unique_ptr<SharedWork> work_;  // on that job
  bool isUnderWay_ = false;
};

Renderer::Renderer(const scene::Scene& scene, int threads)
    : scene_(scene), threads_(threads), implementation_(std::make_unique<Implementation>(scene, threads)) {}

Renderer::~Renderer() = default;

bool Renderer::render(const FrameRequest& request, const FrameCallbacks& callbacks) {
  // Out of its place first: should it fault again while it goes, the next call does without it.
  if (implementation_ && implementation_->isDamaged()) std::exchange(implementation_, nullptr).reset();
  if (!implementation_) implementation_ = std::make_unique<Implementation>(scene_, threads_);
  const bool complete = implementation_->render(request, callbacks);
  statistics_ = implementation_->statistics();
  return complete;
}

}  // namespace standin::raytracer

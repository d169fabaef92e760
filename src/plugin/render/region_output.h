// Rendering and saving only a rectangle of the frame.
#pragma once

#include <optional>

#include "hostsdk/bitmap.h"
#include "hostsdk/types.h"
#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// The rectangle to hand to the renderer, padding included; nullopt without region rendering.
std::optional<hostsdk::Rect> regionToRender(const JobSettings& settings);

// With a region that is cropped or blown up (regionType 4) the outputs get the region's size; sizes keep 16 bits.
void applyRegionSize(JobState& job);

// Saves the image with writeOutput after cutting away the padding that was really rendered. Without padding the image
// itself is saved at its own size, even where the region reached beyond the output. A cut that leaves nothing gives
// size 0. Throws std::runtime_error "Failed to allocate region Bitmap: TheManager->Create() return NULL", and what
// writeOutput throws.
void writeRegionOutput(JobState& job, hostsdk::Bitmap& bitmap, const hostsdk::BitmapInfo& info,
                       win32::simple_socket& connection);

}  // namespace corvantis

// The extra images that a scene's renderer produces beside the main one. The three element lists of the job state are
// parallel; an element's output record belongs to the element, so its name is the scene's own and is set back after
// every frame.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "plugin/job/job_state.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Fills the element lists anew with the scene's enabled elements, in the manager's order. An enabled element without an
// output record is left out, and not counted.
void enumerateRenderElements(JobState& job);

// Gives each element its file name for the frame and a bitmap; one that the host cannot create is left out silently.
// The name is made from the entry of renderElementFilenames at the element's position with useRenderElementFilenames,
// else, and where that list is too short, from the scene's name; an empty name stays empty. frameElements
// receives what to set back, also for the elements named before a failure. Throws as frameOutputName does.
void nameRenderElements(JobState& job, std::int32_t frame);

// One bitmap an element to collect the passes of a multipass frame.
void createElementAccumulators(JobState& job);

// Adds pass `pass` (from 0) to the accumulators. An element or accumulator without a bitmap is passed over, though the
// worker is told of it like the others.
void accumulateRenderElements(JobState& job, int pass, hostsdk::TimeValue time, win32::simple_socket& connection);

// createOutputPath for each element that is not ignored by name.
void createElementOutputPaths(const JobState& job, win32::simple_socket& connection);

// Checks (with failOnBlackFrames and blackFramesCheckRenderElements) and saves the elements that are not ignored by
// name; in multipass their accumulators. One that has no bitmap is passed over silently, one without a file name with a
// warning. Throws what checkBlackFrame, writeOutput and writeRegionOutput throw.
void saveRenderElements(JobState& job, win32::simple_socket& connection);

}  // namespace corvantis

#include "plugin/render/render_elements.h"

#include <algorithm>
#include <utility>

#include "plugin/daemon/requests/requests.h"
#include "plugin/render/black_frame.h"
#include "plugin/render/output_files.h"
#include "plugin/render/output_image.h"
#include "plugin/render/region_output.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

void addElement(JobState& job, hostsdk::IRenderElement& element) {
  hostsdk::ElementOutput* output = nullptr;
  element.GetOutput(output);
  if (!output) return;
  prepareOutputInfo(job, output->info);
  job.renderElements.push_back(&element);
  job.elementOutputs.push_back(output);
  ++job.renderElementCount;
}

std::u16string baseNameOf(const JobState& job, std::size_t index) {
  const auto& given = job.settings.renderElementFilenames;
  if (job.settings.useRenderElementFilenames && index < given.size()) return given[index];
  return job.elementOutputs[index]->info.Name();
}

bool isIgnored(const JobState& job, std::size_t index) {
  const auto& ignored = job.settings.ignoredRenderElementNames;
  return std::find(ignored.begin(), ignored.end(), job.renderElements[index]->ElementName()) != ignored.end();
}

// Borrowed; null when the element has no image.
hostsdk::Bitmap* imageToSave(JobState& job, std::size_t index) {
  hostsdk::Bitmap*& rendered = job.elementOutputs[index]->bitmap;
  if (!job.multipassEnabled || !rendered) return rendered;
  std::exchange(rendered, nullptr)->DeleteThis();
  return job.elementAccumulators[index];
}

void saveElement(JobState& job, std::size_t index, win32::simple_socket& connection) {
  hostsdk::Bitmap* image = imageToSave(job, index);
  if (!image) return;
  const hostsdk::BitmapInfo& info = job.elementOutputs[index]->info;
  if (job.settings.failOnBlackFrames && job.settings.blackFramesCheckRenderElements) {
    sendStdoutLine(connection, u"Checking if " + info.Name() + u" is black");
    checkBlackFrame(job, *image, connection);
  }
  if (info.Name().empty()) {
    sendWarnLine(connection, u"Not saving render element " + to_wstring(index) + u" because its output path is empty");
  } else if (job.settings.regionRendering) {
    writeRegionOutput(job, *image, info, connection);
  } else {
    writeOutput(job, *image, info, connection);
  }
}

}  // namespace

void enumerateRenderElements(JobState& job) {
  job.renderElements.clear();
  job.elementOutputs.clear();
  job.renderElementCount = 0;

  hostsdk::IRenderElementMgr* manager = job.hostCore.v8->RenderElementManager();
  if (!manager || !manager->ElementsActive()) return;
  for (int i = 0; i < manager->NumRenderElements(); ++i) {
    hostsdk::IRenderElement* element = manager->GetRenderElement(i);
    if (element && element->IsEnabled()) addElement(job, *element);
  }
}

void nameRenderElements(JobState& job, std::int32_t frame) {
  for (std::size_t i = 0; i < job.elementOutputs.size(); ++i) {
    hostsdk::ElementOutput& output = *job.elementOutputs[i];
    const std::u16string base = baseNameOf(job, i);
    job.frameElements.push_back({&output, output.info.Name()});
    output.info.SetName(base.empty() ? base : frameOutputName(job.settings, base, frame));
    output.bitmap = hostsdk::TheManager()->Create(output.info);
    log_file << "Element Bitmap " << static_cast<const void*>(output.bitmap) << LogFile::endl;
  }
}

void createElementAccumulators(JobState& job) {
  for (const hostsdk::ElementOutput* output : job.elementOutputs) {
    job.elementAccumulators.push_back(hostsdk::TheManager()->Create(output->info));
  }
}

void accumulateRenderElements(JobState& job, int pass, hostsdk::TimeValue time, win32::simple_socket& connection) {
  for (std::size_t i = 0; i < job.elementOutputs.size(); ++i) {
    sendStdoutLine(connection, u"  Accumulating render element " + to_wstring(i + 1) + u" of " +
                                   to_wstring(job.renderElementCount));
    hostsdk::Bitmap* collected = job.elementAccumulators[i];
    hostsdk::Bitmap* rendered = job.elementOutputs[i]->bitmap;
    if (collected && rendered) job.multipassEffect->AccumulateBitmap(collected, rendered, pass, time);
  }
}

void createElementOutputPaths(const JobState& job, win32::simple_socket& connection) {
  for (std::size_t i = 0; i < job.elementOutputs.size(); ++i) {
    if (!isIgnored(job, i)) createOutputPath(job.elementOutputs[i]->info, connection);
  }
}

void saveRenderElements(JobState& job, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Checking render elements");
  for (std::size_t i = 0; i < job.elementOutputs.size(); ++i) {
    if (!isIgnored(job, i)) saveElement(job, i, connection);
  }
}

}  // namespace corvantis

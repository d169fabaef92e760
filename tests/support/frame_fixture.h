// A running job with a scene whose outputs lie in a folder of the test, and files that fail on demand.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "plugin/render/render_frame.h"
#include "plugin/util/text.h"
#include "support/fake_clock.h"
#include "support/fake_files.h"
#include "support/job_fixture.h"
#include "support/temporary_folder.h"

namespace support {

// After every test no bitmap is left, none was misused, and the outputs have the scene's names.
class FrameFixture : public JobFixture {
 protected:
  FrameFixture() {
    bindCore();
    job.jobRunning = true;
    job.renderViewport = &host.core.viewports[0];
    host.core.renderOutput.SetName(at("beauty.exr"));
    host.core.renderWidth = 8;
    host.core.renderHeight = 6;
    host.bitmaps.writeFiles = true;
  }

  void TearDown() override {
    EXPECT_THAT(host.bitmaps.live(), testing::ElementsAre());
    EXPECT_THAT(host.bitmaps.problems, testing::ElementsAre());
    EXPECT_EQ(narrow(job.outputInfo.Name()), narrow(job.outputBaseName));
    for (const ElementName& element : sceneElementNames_) {
      EXPECT_EQ(narrow(element.element->output.info.Name()), narrow(element.name));
    }
  }

  std::u16string at(const std::string& name) const { return out.wide(name); }

  FakeElement& addElement(const std::u16string& name, const std::u16string& file) {
    FakeElement& element = host.core.elements.add(name, file);
    sceneElementNames_.push_back({&element, file});
    return element;
  }

  FakeMultipassEffect& giveEffect(FakeCamera& camera, int passes) {
    FakeMultipassEffect& effect = host.core.addEffect();
    effect.passes = passes;
    camera.effect = &effect;
    camera.effectEnabled = true;
    return effect;
  }
  FakeMultipassEffect& useMultipass(int passes) {
    FakeCamera& camera = host.core.addCamera();
    job.renderCamera = &host.core.addNode(u"Cam", &camera);
    return giveEffect(camera, passes);
  }

  void useRegion(std::int32_t type, hostsdk::Rect rect) {
    job.settings.regionRendering = true;
    job.settings.regionType = type;
    job.settings.regionLeft = rect.left;
    job.settings.regionTop = rect.top;
    job.settings.regionRight = rect.right;
    job.settings.regionBottom = rect.bottom;
  }

  void failOnBlack(bool checkElements) {
    job.settings.failOnBlackFrames = true;
    job.settings.blackPixelPercentage = 50;
    job.settings.blackPixelThreshold = 0.1F;
    job.settings.blackFramesCheckRenderElements = checkElements;
  }

  // The failure's text, "" when the frame was rendered.
  std::string render(std::int32_t frame = 7) {
    return errorOf([&] { EXPECT_EQ(corvantis::RenderFrame(job, frame, connection), 0); });
  }

  // What the worker was told, the test's folder written as OUT, without the kinds of the default actions.
  std::vector<std::string> told() const {
    std::vector<std::string> lines = log.unsentLines();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("  TYPE_"); });
    return relative(std::move(lines));
  }
  // What it was told from `line` on.
  std::vector<std::string> toldFrom(const std::string& line) const {
    std::vector<std::string> lines = told();
    lines.erase(lines.begin(), std::find(lines.begin(), lines.end(), line));
    return lines;
  }
  std::vector<std::string> calls(const std::vector<std::string>& operations) const {
    return relative(host.calls.linesOf(operations));
  }
  std::vector<std::string> savedFiles() const {
    std::vector<std::string> names;
    for (const std::u16string& name : job.savedOutputFiles) names.push_back(narrow(name));
    return relative(std::move(names));
  }
  // The same of a frame that is to be rendered first.
  std::vector<std::string> saved(std::int32_t frame) {
    EXPECT_EQ(render(frame), "");
    return savedFiles();
  }
  std::vector<std::string> relative(std::vector<std::string> lines) const {
    const std::string folder = narrow(out.wide());
    for (std::string& line : lines) {
      for (std::size_t at = 0; (at = line.find(folder, at)) != std::string::npos;)
        line.replace(at, folder.size(), "OUT");
    }
    return lines;
  }

  TemporaryFolder out;
  FakeFiles files;
  platform::FilesReplacement filesInForce{files};
  FakeClock clock;
  platform::ClockReplacement clockInForce{clock};

 private:
  struct ElementName {
    FakeElement* element;
    std::u16string name;
  };
  std::vector<ElementName> sceneElementNames_;
};

}  // namespace support

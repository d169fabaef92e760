#include "standin/host/core.h"

#include <gtest/gtest.h>

#include <map>

#include "hostkit/image/bitmap_manager.h"
#include "hostkit/services/renderer_classes.h"
#include "support/build_folders.h"
#include "support/small_scene.h"
#include "support/temporary_folder.h"

namespace standin::host {
namespace {

class CoreTest : public testing::Test {
 protected:
  bool load(const std::string& text) {
    folder_.write("scene.gltf", text);
    return core_.LoadFromFile(folder_.wide("scene.gltf"), 14);
  }
  // A float bitmap that is released with the test.
  hostsdk::Bitmap& bitmap(int width, int height) {
    hostsdk::BitmapInfo info;
    info.SetWidth(static_cast<std::uint16_t>(width));
    info.SetHeight(static_cast<std::uint16_t>(height));
    info.SetType(hostsdk::kBitmapRealPixFloat32);
    bitmaps_.emplace_back(manager_.Create(info));
    return *bitmaps_.back();
  }
  static hostsdk::ColorFloat pixel(hostsdk::Bitmap& bitmap, int x, int y) {
    hostsdk::ColorFloat color;
    bitmap.Storage()->GetLinearPixels(x, y, 1, &color);
    return color;
  }

  struct Release {
    void operator()(hostsdk::Bitmap* bitmap) const { bitmap->DeleteThis(); }
  };
  support::TemporaryFolder folder_;
  std::vector<std::string> log_, listener_, events_;
  hostkit::services::GammaManager gamma_;
  hostkit::image::ImageCodecLibrary codecs_{support::programFolder() + "/libimage_codec.so"};
  hostkit::image::ImageBitmapManager manager_{codecs_, gamma_, "test", [](const std::string&) {}};
  hostkit::services::PathConfiguration paths_{[](const std::string&) {}};
  Core core_{paths_, [this](const std::string& line) { log_.push_back(line); },
             [this](const std::string& line) { listener_.push_back(line); }};
  std::vector<std::unique_ptr<hostsdk::Bitmap, Release>> bitmaps_;
};

TEST_F(CoreTest, AHostWithoutASceneAnswersAllTheSame) {
  EXPECT_EQ(core_.TicksPerFrame(), 160);
  EXPECT_NE(core_.ActiveViewport(), nullptr);
  EXPECT_EQ(core_.ActiveViewport()->ViewCamera(), nullptr);
  EXPECT_EQ(core_.Viewport(7), nullptr);
  EXPECT_EQ(core_.Viewport(-1), nullptr);
  EXPECT_EQ(core_.NodeByName(u"Camera01"), nullptr);
  EXPECT_EQ(core_.CurRendererRenderFrame(0, &bitmap(8, 8), nullptr, 1.0F, nullptr, nullptr), 0) << "nothing is open";
}

TEST_F(CoreTest, TellsScenesFromOtherFiles) {
  folder_.write("scene.gltf", support::smallScene());
  folder_.write("text.gltf", "not a scene");
  EXPECT_TRUE(core_.IsSceneFile(folder_.wide("scene.gltf")));
  EXPECT_FALSE(core_.IsSceneFile(folder_.wide("text.gltf")));
  EXPECT_FALSE(core_.IsSceneFile(folder_.wide("missing.gltf")));
  EXPECT_FALSE(core_.LoadFromFile(folder_.wide("text.gltf"), 14));
  EXPECT_EQ(log_.size(), 1U);
}

TEST_F(CoreTest, TakesTheScenesSettings) {
  ASSERT_TRUE(
      load(support::smallScene(R"("frameRate":24,"render":{"width":320,"height":200,"pixelAspect":1.5,"saveFile":false,
    "output":"out/a.exr","skipExisting":true,"renderer":"B","requirements":[2,3]},
    "viewports":[{"camera":"Side"},{"eye":[0,1,5]}],"activeViewport":1,"lockedViewport":0,"unknownKey":1)")))
      << testing::PrintToString(log_);
  EXPECT_EQ(core_.TicksPerFrame(), 200);
  EXPECT_EQ(core_.RenderWidth(), 320);
  EXPECT_EQ(core_.RenderHeight(), 200);
  EXPECT_EQ(core_.RenderPixelAspect(), 1.5F);
  EXPECT_FALSE(core_.RenderSaveFile());
  EXPECT_TRUE(core_.RenderSkipExisting());
  EXPECT_EQ(core_.RenderOutput().Name(), folder_.wide("out/a.exr"));
  EXPECT_EQ(core_.RenderUsesActiveViewport(), 0);
  EXPECT_EQ(core_.LockedViewportIndex(), 0);
  EXPECT_EQ(core_.ActiveViewport()->ViewCamera(), nullptr);
  ASSERT_NE(core_.Viewport(0)->ViewCamera(), nullptr);
  EXPECT_EQ(core_.Viewport(0)->ViewCamera()->Name(), u"Side");
  EXPECT_EQ(core_.CurrentRenderer(true)->ClassID(), hostkit::services::kRendererB);
  EXPECT_TRUE(core_.CurrentRenderer(true)->HasRequirement(2));
  EXPECT_FALSE(core_.CurrentRenderer(true)->HasRequirement(1));
  ASSERT_EQ(listener_.size(), 1U) << "an unknown key is a warning";
  EXPECT_NE(listener_[0].find("unknownKey"), std::string::npos);

  hostsdk::INode* side = core_.NodeByName(u"Side");
  ASSERT_EQ(side->NumberOfChildren(), 1);
  EXPECT_EQ(side->ChildNode(0)->Name(), u"Multipass");
  EXPECT_EQ(side->ChildNode(1), nullptr);
  EXPECT_NE(side->EvalWorldState(0, true).obj->AsCamera(), nullptr);
  EXPECT_EQ(core_.NodeByName(u"Quad")->EvalWorldState(0, true).obj->AsCamera(), nullptr);

  core_.ResetScene(1);
  EXPECT_EQ(core_.NodeByName(u"Side"), nullptr);
  EXPECT_EQ(core_.RenderWidth(), 640);
}

// The four kinds of load problems under every action that the system sets.
TEST_F(CoreTest, DefaultActionsDecideWhatAProblemMeans) {
  std::string scene = support::smallScene(R"("xrefs":["missing_props.gltf"],"plugins":["glass.dlt"])");
  scene.replace(scene.find(R"("metallicFactor":0)"), std::string(R"("metallicFactor":0)").size(),
                R"("metallicFactor":0,"baseColorTexture":{"index":0}},"emissiveTexture":{"index":1)");
  scene.insert(
      scene.find("\"materials\""),
      R"("textures":[{"source":0},{"source":1}],"images":[{"uri":"missing_wood.png"},{"uri":"data:image/png;base64,)"
      "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR42mNk+M9QDwADhgGAWjR9awAAAABJRU5ErkJggg=="
      R"("}],)");

  const std::map<std::uint32_t, const char*> named{{hostsdk::kTypeMissingExternalFiles, "missing_wood.png"},
                                                   {hostsdk::kTypeMissingXrefFiles, "missing_props.gltf"},
                                                   {hostsdk::kTypeMissingDllFiles, "glass.dlt"},
                                                   {hostsdk::kTypeMissingUvws, "Quad"}};
  for (const auto& [type, name] : named) {
    for (const std::uint32_t action : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
      SCOPED_TRACE(testing::Message() << "type " << type << ", action " << action);
      for (std::uint32_t each = 1; each <= 4; ++each)
        core_.DefaultActionSystem()->SetDefaultAction(each, 0, 0, nullptr);
      core_.DefaultActionSystem()->SetDefaultAction(type, action, 0, nullptr);
      log_.clear();
      const bool records = (action & 2) != 0;
      EXPECT_EQ(load(scene), (action & 4) == 0 || records);
      EXPECT_EQ(log_.size(), (action & 1) != 0 ? 1U : 0U) << testing::PrintToString(log_);
      EXPECT_EQ(core_.DefaultActionSystem()->MessageCount(type), records ? 1 : 0);
      if (records) {
        const std::u16string text = core_.DefaultActionSystem()->MessageText(type, 0);
        EXPECT_NE(std::string(text.begin(), text.end()).find(name), std::string::npos);
      }
    }
  }
}

TEST_F(CoreTest, RendersTheImageItsElementsAndRegions) {
  ASSERT_TRUE(load(support::smallScene(R"("render":{"width":40,"height":30,"samples":4},
    "elements":[{"name":"Z","type":"depth"},{"name":"A","type":"alpha","enabled":false}])")));
  core_.onEvent = [this](const char* event, const EventParameter&) { events_.emplace_back(event); };
  ASSERT_EQ(core_.OpenCurRenderer(core_.NodeByName(u"Camera01"), nullptr, 0, 40, 30), 1);

  hostsdk::Bitmap& whole = bitmap(40, 30);
  hostsdk::Bitmap& depth = bitmap(40, 30);
  hostsdk::ElementOutput* record = nullptr;
  core_.RenderElementManager()->GetRenderElement(0)->GetOutput(record);
  record->bitmap = &depth;
  ASSERT_EQ(core_.CurRendererRenderFrame(0, &whole, nullptr, 1.0F, nullptr, nullptr), 1)
      << testing::PrintToString(log_);
  EXPECT_GT(pixel(whole, 20, 15).r, pixel(whole, 20, 15).b) << "the quad is red";
  EXPECT_EQ(pixel(whole, 20, 15).a, 1.0F);
  EXPECT_EQ(pixel(whole, 0, 0).a, 0.0F);
  EXPECT_NEAR(pixel(depth, 20, 15).r, 5.0F, 1e-3F);
  core_.CloseCurRenderer();
  EXPECT_EQ(events_, (std::vector<std::string>{"preRender", "preRenderFrame", "postRenderFrame", "postRender"}));

  // A region of the full-size bitmap, then one of its own size: the same pixels bit for bit.
  record->bitmap = nullptr;
  const hostsdk::Rect region{10, 5, 30, 22};
  for (const int type : {1, 4}) {
    SCOPED_TRACE(type);
    ASSERT_EQ(core_.OpenCurRenderer(core_.NodeByName(u"Camera01"), nullptr, type, 40, 30), 1);
    hostsdk::Bitmap& part = type == 4 ? bitmap(20, 17) : bitmap(40, 30);
    ASSERT_EQ(core_.CurRendererRenderFrame(0, &part, nullptr, 1.0F, nullptr, &region), 1);
    const int dx = type == 4 ? 10 : 0, dy = type == 4 ? 5 : 0;
    for (int y = 5; y < 22; ++y)
      for (int x = 10; x < 30; ++x) {
        const auto a = pixel(whole, x, y), b = pixel(part, x - dx, y - dy);
        ASSERT_TRUE(a.r == b.r && a.g == b.g && a.b == b.b && a.a == b.a) << x << "," << y;
      }
    if (type == 1) {
      EXPECT_EQ(pixel(part, 20, 3).a, 0.0F) << "outside the region nothing is written";
    }
    core_.CloseCurRenderer();
  }
}

class RecordingProgress : public hostsdk::RendProgressCallback {
 public:
  explicit RecordingProgress(int answer) : answer_(answer) {}
  void SetTitle(const char16_t* title) override {
    for (const char16_t* c = title; *c; ++c) titles += static_cast<char>(*c);
    titles += '|';
  }
  int Progress(int, int) override { return answer_; }
  std::string titles;

 private:
  int answer_;
};

TEST_F(CoreTest, TellsItsPhasesAndCanBeAborted) {
  for (const auto& [renderer, titles] : std::map<std::string, std::string>{
           {"default", "Preparing scene|Building acceleration structure|Rendering image|"},
           {"B",
            "Loading bitmaps |Updating object Quad|Updating transformation matrices |Compiling geometry |Rendering "
            "image|"}}) {
    ASSERT_TRUE(load(support::smallScene(R"("render":{"width":16,"height":16,"renderer":")" + renderer + "\"}")));
    ASSERT_EQ(core_.OpenCurRenderer(core_.NodeByName(u"Camera01"), nullptr, 0, 16, 16), 1);
    RecordingProgress go(1), stop(0);
    EXPECT_EQ(core_.CurRendererRenderFrame(0, &bitmap(16, 16), &go, 1.0F, nullptr, nullptr), 1);
    EXPECT_EQ(go.titles, titles);
    EXPECT_EQ(core_.CurRendererRenderFrame(0, &bitmap(16, 16), &stop, 1.0F, nullptr, nullptr), 0);
    EXPECT_EQ(core_.CurRendererRenderFrame(0, &bitmap(8, 8), nullptr, 1.0F, nullptr, nullptr), 0) << "wrong size";
    core_.CloseCurRenderer();
  }
}

TEST_F(CoreTest, ARendererThatSavesItsOutputDoes) {
  ASSERT_TRUE(load(support::smallScene(R"("render":{"width":16,"height":16,"requirements":[2]})")));
  ASSERT_EQ(core_.OpenCurRenderer(core_.NodeByName(u"Camera01"), nullptr, 0, 16, 16), 1);
  hostsdk::BitmapInfo info;
  info.SetWidth(16);
  info.SetHeight(16);
  info.SetName(folder_.wide("own.png"));
  bitmaps_.emplace_back(manager_.Create(info));
  ASSERT_EQ(core_.CurRendererRenderFrame(0, bitmaps_.back().get(), nullptr, 1.0F, nullptr, nullptr), 1);
  EXPECT_TRUE(folder_.exists("own.png"));
}

}  // namespace
}  // namespace standin::host

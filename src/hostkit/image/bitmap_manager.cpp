#include "hostkit/image/bitmap_manager.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <memory>
#include <new>
#include <utility>

#include "hostkit/image/output_file.h"
#include "platform/files.h"

namespace hostkit::image {
namespace {

std::string extensionOf(const std::string& nativePath) {
  std::string extension = std::filesystem::path(nativePath).extension().string();
  if (!extension.empty()) extension.erase(0, 1);
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return extension;
}

std::uint16_t code(OutputResult result) { return static_cast<std::uint16_t>(result); }

}  // namespace

class ImageBitmap final : public hostsdk::Bitmap {
 public:
  ImageBitmap(ImageBitmapManager& manager, const hostsdk::BitmapInfo& info)
      : manager_(manager), info_(info), storage_(info.Width(), info.Height(), info.Type()) {
    ++manager_.live_;
  }

  int Width() const override { return storage_.width(); }
  int Height() const override { return storage_.height(); }
  const hostsdk::BitmapInfo& Info() const override { return info_; }
  hostsdk::BitmapStorage* Storage() override { return &storage_; }
  int PrepareGChannels(const hostsdk::BitmapInfo&) override { return 1; }

  // There is no window to show it in.
  int Display(const char16_t*, int, bool, bool, hostsdk::CropCallback*, hostsdk::Bitmap*) override { return 1; }
  int UnDisplay() override { return 1; }

  std::uint16_t OpenOutput(const hostsdk::BitmapInfo& info) override {
    output_.reset();
    if (info.Name().empty()) return fail(OutputResult::noName, "The output names no file");
    const std::string path = platform::nativePath(info.Name());
    if (!imageFormatOf(extensionOf(path)))
      return fail(OutputResult::unknownFormat, "Cannot write " + path + ": no image format has this extension");
    return attempt(OutputResult::cannotOpen, [&] { output_ = std::make_unique<OutputFile>(path); });
  }

  // The file stands complete under its final name when this has returned success.
  std::uint16_t Write(const hostsdk::BitmapInfo& info, int) override {
    if (!output_ || platform::nativePath(info.Name()) != output_->path())
      return fail(OutputResult::notOpen, "Write without OpenOutput");
    const std::unique_ptr<OutputFile> output = std::move(output_);  // whatever happens, nothing stays aside
    std::vector<unsigned char> bytes;
    if (const auto result = attempt(OutputResult::cannotEncode, [&] { bytes = encoded(info, output->path()); }))
      return result;
    if (const auto result = attempt(OutputResult::cannotWrite, [&] { output->write(bytes); })) return result;
    return attempt(OutputResult::cannotRename, [&] { output->commit(); });
  }

  int Close(const hostsdk::BitmapInfo&, int) override {
    output_.reset();
    return 1;
  }

  void DeleteThis() override { delete this; }

 private:
  ~ImageBitmap() override { --manager_.live_; }

  std::vector<unsigned char> encoded(const hostsdk::BitmapInfo& info, const std::string& path) {
    std::vector<float> converted;
    EncodeRequest request;
    request.extension = extensionOf(path);
    request.product = manager_.product_;
    request.width = storage_.width();
    request.height = storage_.height();
    request.floatSource = storage_.isFloat();
    if (storage_.isFloat()) {
      request.pixels = storage_.floats().data();
    } else {
      converted = storage_.copyAsFloats();
      request.pixels = converted.data();
    }
    request.hasAlpha = (info.Flags() & hostsdk::kMapHasAlpha) != 0;
    request.pixelAspect = info.Aspect();
    request.gamma = manager_.gamma_.effectiveOut();
    return manager_.codecs_.encode(request);
  }

  std::uint16_t fail(OutputResult result, const std::string& text) {
    manager_.log_(text);
    return code(result);
  }

  template <class Work>
  std::uint16_t attempt(OutputResult whenFailed, Work&& work) {
    try {
      work();
      return code(OutputResult::success);
    } catch (const std::exception& e) {
      return fail(whenFailed, e.what());
    }
  }

  ImageBitmapManager& manager_;
  hostsdk::BitmapInfo info_;
  PixelStorage storage_;
  std::unique_ptr<OutputFile> output_;
};

ImageBitmapManager::ImageBitmapManager(ImageCodecLibrary& codecs, const services::GammaManager& gamma,
                                       std::string product, std::function<void(const std::string&)> log)
    : codecs_(codecs), gamma_(gamma), product_(std::move(product)), log_(std::move(log)) {}

hostsdk::Bitmap* ImageBitmapManager::Create(const hostsdk::BitmapInfo& info) {
  const bool known = info.Type() == hostsdk::kBitmapTrueColor64 || info.Type() == hostsdk::kBitmapRealPixFloat32;
  if (!known || info.Width() == 0 || info.Height() == 0) return nullptr;
  const std::string size = std::to_string(info.Width()) + " x " + std::to_string(info.Height());
  if (std::uint64_t{info.Width()} * info.Height() > kLargestBitmap) {
    log_("Cannot make a bitmap of " + size + ": at most " + std::to_string(kLargestBitmap) + " pixels are possible");
    return nullptr;
  }
  try {
    return new ImageBitmap(*this, info);
  } catch (const std::bad_alloc&) {
    log_("Cannot make a bitmap of " + size + ": out of memory");
    return nullptr;
  }
}

}  // namespace hostkit::image

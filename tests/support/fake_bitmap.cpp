#include "support/fake_bitmap.h"

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "platform/files.h"

namespace support {
namespace {

namespace fs = std::filesystem;
using hostsdk::BitmapInfo;
using hostsdk::ColorFloat;

std::string sizeText(const BitmapInfo& info) {
  return std::to_string(info.Width()) + "x" + std::to_string(info.Height()) + " type " + std::to_string(info.Type());
}

bool writeFile(const WrittenImage& image) {
  std::ofstream file(platform::nativePath(image.name), std::ios::binary);
  file << image.width << "x" << image.height << "\n";
  if (!image.pixels.empty()) {
    const ColorFloat& first = image.pixels.front();
    file << first.r << " " << first.g << " " << first.b << " " << first.a << "\n";
  }
  return static_cast<bool>(file.flush());
}

}  // namespace

FakeStorage::FakeStorage(int width, int height)
    : pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height)), width_(width), height_(height) {}

bool FakeStorage::inside(int x, int y, int count) const {
  return x >= 0 && y >= 0 && y < height_ && count >= 0 && x + count <= width_;
}

int FakeStorage::GetLinearPixels(int x, int y, int count, ColorFloat* out) {
  if (!inside(x, y, count)) return 0;
  std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(y) * width_ + x, count, out);
  return count;
}

int FakeStorage::PutLinearPixels(int x, int y, int count, const ColorFloat* from) {
  if (!inside(x, y, count)) return 0;
  std::copy_n(from, count, pixels.begin() + static_cast<std::ptrdiff_t>(y) * width_ + x);
  return count;
}

int FakeStorage::CopyImage(hostsdk::Bitmap* from, int operation, hostsdk::Color64 fill, const BitmapInfo& info) {
  if (operation != hostsdk::kCopyImageUseCustom || !from || !from->Storage()) return 0;
  constexpr float scale = 1.0F / 65535.0F;
  std::fill(pixels.begin(), pixels.end(),
            ColorFloat{static_cast<float>(fill.r) * scale, static_cast<float>(fill.g) * scale,
                       static_cast<float>(fill.b) * scale, static_cast<float>(fill.a) * scale});
  for (int y = 0; y < from->Height(); ++y) {
    for (int x = 0; x < from->Width(); ++x) {
      ColorFloat color;
      from->Storage()->GetLinearPixels(x, y, 1, &color);
      PutLinearPixels(x + info.CustomX(), y + info.CustomY(), 1, &color);
    }
  }
  return 1;
}

void FakeStorage::fill(const ColorFunction& color) {
  for (int y = 0; y < height_; ++y) {
    for (int x = 0; x < width_; ++x) {
      const ColorFloat value = color(x, y);
      PutLinearPixels(x, y, 1, &value);
    }
  }
}

ColorFloat FakeStorage::pixel(int x, int y) const {
  return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) + static_cast<std::size_t>(x));
}

FakeBitmap::FakeBitmap(FakeBitmapManager& manager, int number, const BitmapInfo& info)
    : manager_(manager),
      number_(number),
      info_(info),
      storage_(std::make_unique<FakeStorage>(info.Width(), info.Height())) {}

void FakeBitmap::checkAlive(const char* operation) const {
  if (released_) manager_.problems.push_back(std::string(operation) + " on released " + label());
}

int FakeBitmap::Width() const {
  checkAlive("Width");
  return storage_ ? info_.Width() : 0;
}

int FakeBitmap::Height() const {
  checkAlive("Height");
  return storage_ ? info_.Height() : 0;
}

hostsdk::BitmapStorage* FakeBitmap::Storage() {
  checkAlive("Storage");
  return storage_.get();
}

int FakeBitmap::PrepareGChannels(const BitmapInfo&) {
  checkAlive("PrepareGChannels");
  return manager_.calls.note("PrepareGChannels", label()).value_or(1);
}

int FakeBitmap::Display(const char16_t* title, int position, bool autonomous, bool saveButton,
                        hostsdk::CropCallback* crop, hostsdk::Bitmap* clone) {
  checkAlive("Display");
  std::string arguments = label() + " " + (title ? narrow(title) : "none") + " " + std::to_string(position) + " ";
  arguments += std::string(autonomous ? "1 " : "0 ") + (saveButton ? "1 " : "0 ") + (crop ? "crop " : "none ");
  arguments += bitmapLabel(clone);
  return manager_.calls.note("Display", std::move(arguments)).value_or(1);
}

int FakeBitmap::UnDisplay() {
  checkAlive("UnDisplay");
  return manager_.calls.note("UnDisplay", label()).value_or(1);
}

std::uint16_t FakeBitmap::OpenOutput(const BitmapInfo& info) {
  checkAlive("OpenOutput");
  if (open_) manager_.problems.push_back("OpenOutput twice on " + label());
  const auto code = manager_.calls.note("OpenOutput", label() + " " + narrow(info.Name()) + " " + sizeText(info));
  if (code && *code != hostsdk::kBitmapSuccess) return static_cast<std::uint16_t>(*code);
  if (manager_.writeFiles) {
    const fs::path folder = fs::path(platform::nativePath(info.Name())).parent_path();
    if (!fs::is_directory(folder)) return 3;
  }
  open_ = true;
  written_ = false;
  return hostsdk::kBitmapSuccess;
}

std::uint16_t FakeBitmap::Write(const BitmapInfo& info, int frame) {
  checkAlive("Write");
  if (!open_) manager_.problems.push_back("Write before OpenOutput on " + label());
  const auto code =
      manager_.calls.note("Write", label() + " " + narrow(info.Name()) + " frame " + std::to_string(frame));
  if (code && *code != hostsdk::kBitmapSuccess) {
    open_ = false;
    return static_cast<std::uint16_t>(*code);
  }
  written_ = true;
  return hostsdk::kBitmapSuccess;
}

int FakeBitmap::Close(const BitmapInfo& info, int flag) {
  checkAlive("Close");
  if (!open_ || !written_) manager_.problems.push_back("Close before Write on " + label());
  open_ = false;
  const auto code = manager_.calls.note("Close", label() + " " + narrow(info.Name()) + " " + std::to_string(flag));
  manager_.written.push_back(
      {info.Name(), info_.Width(), info_.Height(), storage_ ? storage_->pixels : std::vector<ColorFloat>()});
  if (manager_.writeFiles && !writeFile(manager_.written.back())) return 0;
  return code.value_or(1);
}

void FakeBitmap::DeleteThis() {
  if (released_) manager_.problems.push_back("DeleteThis twice on " + label());
  released_ = true;
  manager_.calls.note("DeleteThis", label());
  storage_.reset();
}

hostsdk::Bitmap* FakeBitmapManager::Create(const BitmapInfo& info) {
  const auto answer = calls.note("Create", narrow(info.Name()) + " " + sizeText(info));
  if (answer && *answer == 0) return nullptr;
  constexpr std::uint64_t largest = 1 << 24;  // pixels: as a real host, the fake has no memory for more
  if (std::uint64_t{info.Width()} * info.Height() > largest) return nullptr;
  bitmaps.push_back(std::make_unique<FakeBitmap>(*this, static_cast<int>(bitmaps.size()) + 1, info));
  return bitmaps.back().get();
}

std::vector<int> FakeBitmapManager::live() const {
  std::vector<int> numbers;
  for (const auto& bitmap : bitmaps) {
    if (!bitmap->released()) numbers.push_back(bitmap->number());
  }
  return numbers;
}

std::string bitmapLabel(const hostsdk::Bitmap* bitmap) {
  const auto* fake = dynamic_cast<const FakeBitmap*>(bitmap);
  if (fake) return std::string("#").append(std::to_string(fake->number()));
  return bitmap ? "foreign" : "none";
}

}  // namespace support

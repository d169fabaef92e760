// Bitmaps in memory, and a manager that knows which of them are still alive.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "hostsdk/bitmap.h"
#include "support/call_log.h"

namespace support {

class FakeBitmapManager;

// "#3", or "none".
std::string bitmapLabel(const hostsdk::Bitmap* bitmap);

using ColorFunction = std::function<hostsdk::ColorFloat(int x, int y)>;

class FakeStorage : public hostsdk::BitmapStorage {
 public:
  FakeStorage(int width, int height);
  int GetLinearPixels(int x, int y, int count, hostsdk::ColorFloat* out) override;
  int PutLinearPixels(int x, int y, int count, const hostsdk::ColorFloat* pixels) override;
  int CopyImage(hostsdk::Bitmap* from, int operation, hostsdk::Color64 fill, const hostsdk::BitmapInfo& info) override;

  void fill(const ColorFunction& color);
  hostsdk::ColorFloat pixel(int x, int y) const;

  std::vector<hostsdk::ColorFloat> pixels;  // row by row

 private:
  bool inside(int x, int y, int count) const;
  int width_, height_;
};

// A released bitmap keeps its place until the host goes, so that a second release or a later use is seen.
class FakeBitmap : public hostsdk::Bitmap {
 public:
  FakeBitmap(FakeBitmapManager& manager, int number, const hostsdk::BitmapInfo& info);

  int Width() const override;
  int Height() const override;
  const hostsdk::BitmapInfo& Info() const override { return info_; }
  hostsdk::BitmapStorage* Storage() override;
  int PrepareGChannels(const hostsdk::BitmapInfo& info) override;
  int Display(const char16_t* title, int position, bool autonomous, bool saveButton, hostsdk::CropCallback* crop,
              hostsdk::Bitmap* clone) override;
  int UnDisplay() override;
  std::uint16_t OpenOutput(const hostsdk::BitmapInfo& info) override;
  std::uint16_t Write(const hostsdk::BitmapInfo& info, int frame) override;
  int Close(const hostsdk::BitmapInfo& info, int flag) override;
  void DeleteThis() override;

  FakeStorage& storage() { return *storage_; }
  void dropStorage() { storage_.reset(); }  // the bitmap then holds no image
  int number() const { return number_; }    // from 1, in order of creation; "#1" in the call log
  bool released() const { return released_; }

 private:
  std::string label() const { return bitmapLabel(this); }
  void checkAlive(const char* operation) const;

  FakeBitmapManager& manager_;
  int number_;
  hostsdk::BitmapInfo info_;
  std::unique_ptr<FakeStorage> storage_;
  bool released_ = false;
  bool open_ = false, written_ = false;
};

// What a Write handed to Close.
struct WrittenImage {
  std::u16string name;
  int width = 0, height = 0;
  std::vector<hostsdk::ColorFloat> pixels;
};

class FakeBitmapManager : public hostsdk::BitmapManager {
 public:
  explicit FakeBitmapManager(CallLog& callLog) : calls(callLog) {}
  hostsdk::Bitmap* Create(const hostsdk::BitmapInfo& info) override;  // hook answer 0: null

  std::vector<int> live() const;  // the numbers of the bitmaps not yet released
  FakeBitmap& bitmap(int number) { return *bitmaps.at(static_cast<std::size_t>(number) - 1); }

  CallLog& calls;
  std::vector<std::unique_ptr<FakeBitmap>> bitmaps;
  // Misuse: second releases, uses after release, output calls out of order. A sound test ends with none.
  std::vector<std::string> problems;
  // Every image closed, in order.
  std::vector<WrittenImage> written;
  // Whether Close also writes a small real file: its size and first pixel as text. OpenOutput then answers 3 when the
  // folder is missing, Close 0 when the file cannot be written.
  bool writeFiles = false;
};

}  // namespace support

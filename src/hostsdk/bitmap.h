// Images: their description, storage, file output and the manager that makes them.
#pragma once

#include <cstdint>
#include <string>

#include "hostsdk/api.h"

namespace hostsdk {

// Pixel types of a BitmapInfo, the host's own codes.
inline constexpr int kBitmapTrueColor64 = 7;      // RGBA, 16-bit integer a channel
inline constexpr int kBitmapRealPixFloat32 = 17;  // RGBA, 32-bit float a channel
// Flags of a BitmapInfo.
inline constexpr std::uint32_t kMapHasAlpha = 0x00000002;
// Custom flags of a BitmapInfo: its custom offset, its custom width and height hold.
inline constexpr std::uint32_t kCustomOffset = 0x02;
inline constexpr std::uint32_t kCustomSize = 0x08;
// Frame number that marks the output of a single image.
inline constexpr int kSingleFrame = -2000000;
// Result of OpenOutput and Write that means success; any other value is an error code.
inline constexpr std::uint16_t kBitmapSuccess = 0;
// CopyImage operation that places the source, unscaled, as the custom fields of the BitmapInfo say.
inline constexpr int kCopyImageUseCustom = 3;
// Window position code for Display.
inline constexpr int kDisplayPosition = 5;

struct ColorFloat {  // linear, nominally 0..1
  float r = 0, g = 0, b = 0, a = 0;
};
struct Color64 {  // 16 bits a channel
  std::uint16_t r = 0, g = 0, b = 0, a = 0;
};

// Describes an image: file name, size, pixel type, placement. A plain value; copies share nothing.
class HOSTSDK_API BitmapInfo {
 public:
  // Each setter returns the previous value.
  std::u16string SetName(const std::u16string& name);
  const std::u16string& Name() const { return name_; }
  std::uint16_t SetWidth(std::uint16_t width);
  std::uint16_t SetHeight(std::uint16_t height);
  std::uint16_t Width() const { return width_; }
  std::uint16_t Height() const { return height_; }
  float SetAspect(float pixelAspect);
  float Aspect() const { return aspect_; }
  int SetType(int type);
  int Type() const { return type_; }
  // Adds to, or returns, the flags.
  void SetFlags(std::uint32_t flags) { flags_ |= flags; }
  std::uint32_t Flags() const { return flags_; }

  void SetCustomX(int x) { customX_ = x; }
  void SetCustomY(int y) { customY_ = y; }
  void SetCustomWidth(std::uint16_t width) { customWidth_ = width; }
  void SetCustomHeight(std::uint16_t height) { customHeight_ = height; }
  void SetCustomFlags(std::uint32_t flags) { customFlags_ = flags; }
  int CustomX() const { return customX_; }
  int CustomY() const { return customY_; }
  std::uint16_t CustomWidth() const { return customWidth_; }
  std::uint16_t CustomHeight() const { return customHeight_; }
  std::uint32_t CustomFlags() const { return customFlags_; }

  // Takes over all settings of `other`, its name included.
  void Copy(const BitmapInfo& other) { *this = other; }

 private:
  std::u16string name_;
  std::uint16_t width_ = 0, height_ = 0;
  float aspect_ = 1.0F;
  int type_ = kBitmapTrueColor64;
  std::uint32_t flags_ = 0;
  int customX_ = 0, customY_ = 0;
  std::uint16_t customWidth_ = 0, customHeight_ = 0;
  std::uint32_t customFlags_ = 0;
};

class Bitmap;

// The pixels of a bitmap. Origin top left.
class HOSTSDK_API BitmapStorage {
 public:
  virtual ~BitmapStorage();
  // Reads `count` pixels of row y from x on as linear floats; 0 when they lie outside the image.
  virtual int GetLinearPixels(int x, int y, int count, ColorFloat* out) = 0;
  // Writes likewise.
  virtual int PutLinearPixels(int x, int y, int count, const ColorFloat* pixels) = 0;
  // Copies `from` into this image by `operation` (kCopyImageUseCustom: its top left corner lands at the custom x and y
  // of `info`, what it does not cover becomes `fill`). Nonzero on success.
  virtual int CopyImage(Bitmap* from, int operation, Color64 fill, const BitmapInfo& info) = 0;
};

// Receives the visible rectangle of a frame-buffer window; this port never calls one.
class CropCallback;

// An image that the host owns and hands out by pointer; DeleteThis releases it.
class HOSTSDK_API Bitmap {
 public:
  virtual int Width() const = 0;   // pixels
  virtual int Height() const = 0;  // pixels
  virtual const BitmapInfo& Info() const = 0;
  // Null when the bitmap holds no image.
  virtual BitmapStorage* Storage() = 0;

  // Prepares the extra channels that `info` asks for.
  virtual int PrepareGChannels(const BitmapInfo& info) = 0;
  // Shows the image in a frame-buffer window, or hides it again.
  virtual int Display(const char16_t* title, int position, bool autonomous, bool saveButton, CropCallback* crop,
                      Bitmap* clone) = 0;
  virtual int UnDisplay() = 0;

  // Writing a file: open, write, close, in that order. The format follows the extension of info.Name().
  // OpenOutput and Write return kBitmapSuccess or an error code. A file is complete or absent under its final
  // name, never partial.
  virtual std::uint16_t OpenOutput(const BitmapInfo& info) = 0;
  virtual std::uint16_t Write(const BitmapInfo& info, int frame) = 0;
  virtual int Close(const BitmapInfo& info, int flag) = 0;

  virtual void DeleteThis() = 0;

 protected:
  virtual ~Bitmap();
};

class HOSTSDK_API BitmapManager {
 public:
  virtual ~BitmapManager();
  // A new bitmap, all zero, of the size and type of `info`; null when out of resources.
  virtual Bitmap* Create(const BitmapInfo& info) = 0;
};

// The host's bitmap manager. Throws MAXException when no host is bound.
HOSTSDK_API BitmapManager* TheManager();

}  // namespace hostsdk

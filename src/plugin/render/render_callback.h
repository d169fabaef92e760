// Turns what the renderer reports while it renders a frame into requests to the worker.
#pragma once

#include <cstdint>
#include <mutex>
#include <string>

#include "hostsdk/render.h"
#include "plugin/transport/simple_socket.h"

namespace corvantis {

// One object a call of the renderer. Titles become lines of the task's log, unless they name the rendering phase itself
// ("Rendering image", "50%  Rendering", ..., whatever their letter case); progress becomes the task's title and
// progress bar, at most once a second for all objects of the process together. The renderer is never told to abort.
// Nor does anything reach it that keeps a report from being sent: a lost connection, a title with an unpaired
// surrogate. Of a title that is not sent nobody learns, of progress the log has a line.
class CorvantisRenderCallback : public hostsdk::RendProgressCallback {
 public:
  // `connection` is borrowed and must outlive the object.
  CorvantisRenderCallback(win32::simple_socket& connection, std::u16string passPrefix);
  ~CorvantisRenderCallback() override;
  CorvantisRenderCallback(const CorvantisRenderCallback&) = delete;
  CorvantisRenderCallback& operator=(const CorvantisRenderCallback&) = delete;

  // The host's notifications. A null title counts as an empty one.
  void SetTitle(const char16_t* title) override;
  int Progress(int done, int total) override;

  // Before pass `pass` (from 1) of `passCount`: from now on each pass is its share of the whole progress.
  void setPass(std::int32_t pass, std::int32_t passCount);

  // Leaves renderer B's titles about preparing the scene out of the task's log.
  bool isRendererB = false;

 private:
  bool isInformative(const std::u16string& text) const;
  void sendProgress(float percent);

  win32::simple_socket& connection_;
  std::mutex lock_;
  std::u16string passPrefix_;
  std::u16string title_;     // the renderer's last, cleaned
  float passOffset_ = 0.0F;  // start of the current pass in overall percent
  float passScale_ = 1.0F;   // share of one pass in the whole
};

}  // namespace corvantis

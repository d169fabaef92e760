#include "worker/report/console.h"

#include <fmt/color.h>
#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace worker {
namespace {

constexpr const char* kRed = "\033[31m";
constexpr const char* kGreen = "\033[32m";
constexpr const char* kYellow = "\033[33m";
constexpr const char* kDim = "\033[2m";
constexpr const char* kReset = "\033[0m";

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

// `text` cut to `columns` characters, counted in bytes of UTF-8 sequences' beginnings.
std::string fitted(const std::string& text, std::size_t columns) {
  std::size_t seen = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if ((static_cast<unsigned char>(text[i]) & 0xC0) == 0x80) continue;
    if (seen++ == columns) return text.substr(0, i);
  }
  return text;
}

std::string resultWord(const FrameResult& frame) {
  if (!frame.rendered) return "failed";
  return frame.skipped ? "skipped" : "rendered";
}

}  // namespace

Console::Console(std::FILE* out, const ConsoleOptions& options) : out_(out), options_(options) {}
Console::~Console() { clearBars(); }

std::string Console::paint(const char* colour, const std::string& text) const {
  return options_.terminal ? colour + text + kReset : text;
}

void Console::line(const std::string& text) {
  clearBars();
  fmt::print(out_, "{}\n", text);
  drawBars();
  std::fflush(out_);
}

void Console::jobStarted(const Job& job, const std::string& pluginVersion) {
  job_ = &job;
  if (!options_.quiet)
    line(fmt::format("Rendering {} frame{} of {} (plug-in {})", job.frames.size(), job.frames.size() == 1 ? "" : "s",
                     job.scene, pluginVersion));
}

void Console::frameStarted(std::size_t index) {
  current_ = index;
  rendering_ = true;
  percent_ = 0;
  lastDecile_ = -1;
  title_.clear();
  clearBars();
  drawBars();
}

void Console::frameFinished(std::size_t index, const FrameResult& result) {
  rendering_ = false;
  finished_ = index + 1;
  if (options_.quiet && result.rendered) return;
  std::string text = fmt::format("Frame {:>4}  {}  {:>7.2f} s", result.frame, resultWord(result), result.seconds);
  if (!result.files.empty()) text += "  " + result.files.front();
  line(paint(result.rendered ? kGreen : kRed, text));
  for (const std::string& error : result.errors) line(paint(kRed, "  " + firstLine(error)));
}

void Console::progress(float percent) {
  if (percent < 0) return;
  percent_ = percent;
  if (options_.terminal) {
    clearBars();
    drawBars();
    std::fflush(out_);
    return;
  }
  // Where there is no terminal a line for every tenth of a long frame is enough.
  const int decile = static_cast<int>(percent / 10);
  if (options_.quiet || decile <= lastDecile_ || decile >= 10) return;
  lastDecile_ = decile;
  line(fmt::format("Frame {:>4}  {:>3.0f} %", job_->frames[current_], percent));
}

void Console::title(const std::string& title) { title_ = title; }

void Console::log(const std::string& text) {
  if (options_.verbose) line(paint(kDim, "plug-in | " + text));
}

void Console::hostLine(const std::string& text) {
  if (options_.verbose) line(paint(kDim, "host    | " + text));
}

void Console::warning(const std::string& text) { line(paint(kYellow, "Warning: " + text)); }

std::string Console::bar(double share, int columns) const {
  const int filled = static_cast<int>(std::lround(std::clamp(share, 0.0, 1.0) * columns));
  std::string text;
  for (int i = 0; i < columns; ++i) text += i < filled ? "█" : "░";
  return text;
}

void Console::drawBars() {
  if (!options_.terminal || options_.quiet || !job_ || finished_ == job_->frames.size()) return;
  const int columns = std::clamp(options_.width - 50, 10, 40);
  const double frameShare = rendering_ ? std::clamp(percent_ / 100.0, 0.0, 1.0) : 0.0;
  const double jobShare = (static_cast<double>(finished_) + frameShare) / static_cast<double>(job_->frames.size());
  const std::string frame =
      fmt::format("Frame {:>4} {} {:>3.0f} %  {}", job_->frames[std::min(current_, job_->frames.size() - 1)],
                  bar(frameShare, columns), frameShare * 100, title_);
  const std::string job = fmt::format("Job   {:>4} {} {:>3.0f} %", fmt::format("{}/{}", finished_, job_->frames.size()),
                                      bar(jobShare, columns), jobShare * 100);
  const auto width = static_cast<std::size_t>(std::max(options_.width - 1, 20));
  fmt::print(out_, "{}\n{}\n", fitted(frame, width), fitted(job, width));
  drawn_ = true;
}

void Console::clearBars() {
  if (!drawn_) return;
  fmt::print(out_, "\033[2A\033[J");
  drawn_ = false;
}

void Console::report(const Job& job, const JobResult& result, double seconds) {
  clearBars();
  job_ = nullptr;
  if (!options_.quiet && !result.frames.empty()) {
    line("");
    line(fmt::format("{:>6}  {:<8}  {:>8}  {}", "frame", "result", "seconds", "file"));
    for (const FrameResult& frame : result.frames) {
      const std::string row = fmt::format("{:>6}  {:<8}  {:>8.2f}  {}", frame.frame, resultWord(frame), frame.seconds,
                                          frame.files.empty() ? "-" : frame.files.front());
      line(paint(frame.rendered ? kGreen : kRed, row));
      for (std::size_t i = 1; i < frame.files.size(); ++i) line(fmt::format("{:>28}{}", "", frame.files[i]));
    }
    line("");
  }
  for (const FrameResult& frame : result.frames)
    for (const std::string& error : frame.errors) line(paint(kRed, fmt::format("Frame {}: {}", frame.frame, error)));
  if (!result.message.empty()) line(paint(kRed, result.message));

  const auto rendered = static_cast<std::size_t>(
      std::count_if(result.frames.begin(), result.frames.end(), [](const FrameResult& f) { return f.rendered; }));
  const bool complete = result.status == JobStatus::done && rendered == job.frames.size();
  line(paint(complete ? kGreen : kRed, fmt::format("{} of {} frame{} rendered in {:.2f} s", rendered, job.frames.size(),
                                                   job.frames.size() == 1 ? "" : "s", seconds)));
}

}  // namespace worker

// What is kept of a host for whoever asks later what it did: its log, its output, and why it ended.
#pragma once

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

#include "worker/host/errand.h"

namespace worker {

class HostRecord {
 public:
  // Keeps them in the next free folder of `hosts` (1, 2, ...), made with it; in none where `hosts` is empty. The host
  // writes its log into `hostFolder`, its output is gathered beside it.
  HostRecord(const std::string& hosts, const std::string& hostFolder);

  void addLine(const std::string& line);
  // Copies what has come since, every ten seconds.
  void look();
  // Copies what has come since now; done when isKept() says so.
  void keep();
  // The same for a text of its own, as "crash.txt".
  void keep(const std::string& name, const std::string& text);

  bool isKept() const { return errand_.isDone(); }
  // The folder, once it is known, and why nothing can be kept in it; empty otherwise.
  std::string folder() const;
  std::string problem() const;

 private:
  struct Place;

  std::shared_ptr<Place> place_;
  Errand errand_;
  std::string log_, output_;
  std::ofstream outputStream_;
  std::uint64_t outputBytes_ = 0;
  std::uint32_t lastLook_;
};

}  // namespace worker

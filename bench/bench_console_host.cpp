// What a command costs with the plug-in in a host's process, as a Linux library and as a Windows DLL under Wine: an
// unknown command and the error reply that it gets, against a bare TCP round trip of the same sizes in the same run.
#include <fmt/format.h>

#include <boost/process.hpp>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/ping_pong.h"

namespace {

namespace process = boost::process;
namespace fs = std::filesystem;

constexpr std::size_t kHeaderSize = 4;
const std::string kToken = "token";
const std::string kCommand = "WhatIsThisWord";
const std::string kReply = "ERROR: Unexpected command \"" + kCommand + "\" received.";

std::string message(const std::string& payload) {
  const std::size_t size = payload.size();
  return std::string{static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
                     static_cast<char>(size)} +
         payload;
}

std::size_t sizeOfHeader(const std::string& header) {
  std::size_t size = 0;
  for (const char byte : header) size = size << 8 | static_cast<unsigned char>(byte);
  return size;
}

// A console host with the plug-in, past the handshake; its log goes into a folder of its own.
class HostRounds {
 public:
  HostRounds(const std::vector<std::string>& start, const std::string& library, const fs::path& logFolder) {
    std::vector<std::string> arguments(start.begin() + 1, start.end());
    arguments.insert(arguments.end(), {library, std::to_string(worker_.port()), kToken});
    process::environment environment = boost::this_process::environment();
    environment["TMP"] = logFolder.string();
    host_ = process::child(process::exe = start.front(), process::args = arguments, environment,
                           process::std_out > process::null, process::std_err > process::null);
    worker_.accept();
    worker_.receive(kHeaderSize + kToken.size());
    worker_.send(message("TessarynStartup"));
    worker_.receive(sizeOfHeader(worker_.take(kHeaderSize)));
  }
  ~HostRounds() {
    worker_.close();
    host_.wait();
  }
  HostRounds(const HostRounds&) = delete;
  HostRounds& operator=(const HostRounds&) = delete;

  void round() {
    worker_.send(command_);
    worker_.receive(kHeaderSize + kReply.size());
  }

 private:
  const std::string command_ = message(kCommand);
  bench::CallingEnd worker_;
  process::child host_;
};

void measure(const std::string& name, const std::vector<std::string>& start, const std::string& library,
             const fs::path& logFolder, int rounds) {
  if (!fs::exists(library)) {
    fmt::print(stderr, "{}: {} is not built; ./test.sh --windows builds it\n", name, library);
    return;
  }
  HostRounds host(start, library, logFolder);
  bench::PingPong bare({kHeaderSize + kCommand.size(), kHeaderSize + kReply.size(), 1});
  bench::reportRounds(name, bench::compareRounds([&] { host.round(); }, [&] { bare.round(); }, rounds), 3.0);
}

}  // namespace

int main() try {
  bench::keepToOneProcessor();
  const fs::path folder = fs::temp_directory_path() / "corvantis-bench-console-host";
  fs::create_directories(folder);
  const std::string root = CORVANTIS_SOURCE_DIR;
  const std::string windows = root + "/build/windows/bin";
  measure("command in another process, Linux library", {CORVANTIS_BIN_DIR "/console-host"},
          CORVANTIS_BIN_DIR "/libcorvantis.so", folder, 20000);
  measure("command in another process, Windows DLL", {root + "/cmake/run-under-wine", windows + "/console-host.exe"},
          windows + "/corvantis.dll", folder, 5000);
  fs::remove_all(folder);
  return 0;
} catch (const std::exception& e) {
  fmt::print(stderr, "bench_console_host: {}\n", e.what());
  return 1;
}

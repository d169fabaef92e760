#include "worker/host/host_link.h"

#include <utility>  // needed before Asio, which forgets it

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <boost/asio.hpp>
#include <boost/process.hpp>
#include <boost/process/group.hpp>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <random>

#include "platform/environment.h"
#include "protocol/framing.h"

namespace worker {
namespace asio = boost::asio;
namespace process = boost::process;
namespace fs = std::filesystem;
using asio::ip::tcp;

namespace {

constexpr std::size_t kKeptLines = 20;

// The start-up script, gone with the object.
class StartScript {
 public:
  StartScript(std::uint16_t port, const std::string& token) {
    path_ = fs::temp_directory_path() / ("tessaryn-" + token.substr(0, 16) + ".ms");
    std::ofstream stream(path_);
    stream << "-- Hands this host to the farm worker that started it.\n"
           << fmt::format("TessarynUtil.RunCorvantisDaemon {} \"{}\"\n", port, token);
    if (!stream.flush()) throw HostFailure("Cannot write the start-up script " + path_.string());
  }
  ~StartScript() {
    std::error_code ignored;
    fs::remove(path_, ignored);
  }
  StartScript(const StartScript&) = delete;
  StartScript& operator=(const StartScript&) = delete;
  std::string path() const { return path_.string(); }

 private:
  fs::path path_;
};

std::vector<std::string> withScript(std::vector<std::string> command, const std::string& script) {
  bool placed = false;
  for (std::string& argument : command)
    if (const auto at = argument.find("{script}"); at != std::string::npos) {
      argument.replace(at, std::string("{script}").size(), script);
      placed = true;
    }
  if (!placed) command.push_back(script);
  return command;
}

std::string describeExit(int code, bool signalled) {
  return signalled ? fmt::format("was ended by signal {}", code) : fmt::format("ended with exit code {}", code);
}

// Asio's signal handler writes into a pipe, which is closed with the last io_context that listens for signals, its
// reading end first. A child that ends just then would be a SIGPIPE and the end of this program: one io_context is
// kept for good, and the pipe with it.
void keepSignalPipeOpen() {
  // Volatile, so that the pointer stays in memory, where the leak checker finds it.
  static asio::signal_set* volatile kept = new asio::signal_set(*new asio::io_context);
  (void)kept;
}

}  // namespace

std::string randomToken() {
  std::random_device random;
  return fmt::format("{:08x}{:08x}{:08x}{:08x}", random(), random(), random(), random());
}

class HostLink::Implementation {
 public:
  Implementation(const HostOptions& options, const std::string& token)
      : options_(options),
        acceptor_(io_, tcp::endpoint(asio::ip::address_v4::loopback(), 0)),
        socket_(io_),
        timer_(io_),
        signals_(io_, SIGINT, SIGTERM),
        script_(acceptor_.local_endpoint().port(), token) {
    keepSignalPipeOpen();
    watchSignals();
    startHost();
    acceptPlugin();
  }

  ~Implementation() {
    boost::system::error_code ignored;
    socket_.close(ignored);
    if (!exitCode_) endHost();
  }

  void send(const std::string& payload) {
    const auto size = static_cast<std::uint32_t>(payload.size());
    const std::array<unsigned char, protocol::kHeaderSize> header{
        static_cast<unsigned char>(size >> 24), static_cast<unsigned char>(size >> 16),
        static_cast<unsigned char>(size >> 8), static_cast<unsigned char>(size)};
    bool done = false;
    boost::system::error_code error;
    asio::async_write(socket_, std::array<asio::const_buffer, 2>{asio::buffer(header), asio::buffer(payload)},
                      [&](const boost::system::error_code& e, std::size_t) {
                        error = e;
                        done = true;
                      });
    runUntil(done, "take a command");
    if (error) throw HostFailure(lost("The connection to the host broke: " + error.message()));
  }

  std::string receive() {
    std::array<unsigned char, protocol::kHeaderSize> header{};
    read(header.data(), header.size());
    const std::uint32_t size = (std::uint32_t{header[0]} << 24) | (std::uint32_t{header[1]} << 16) |
                               (std::uint32_t{header[2]} << 8) | header[3];
    if (size > protocol::kLargestMessage)
      throw HostFailure(fmt::format("Expected a message of at most {} bytes from the plug-in, got one of {}",
                                    protocol::kLargestMessage, size));
    std::string payload(size, '\0');
    if (size > 0) read(payload.data(), payload.size());
    return payload;
  }

  bool finish(std::chrono::milliseconds patience) {
    boost::system::error_code ignored;
    socket_.shutdown(tcp::socket::shutdown_both, ignored);
    socket_.close(ignored);
    if (!waitForExit(patience)) endHost();
    return exitCode_ == 0 && !signalled_;
  }

  const std::deque<std::string>& lastLines() const { return lastLines_; }

 private:
  void watchSignals() {
    signals_.async_wait([this](const boost::system::error_code& error, int) {
      if (!error) interrupted_ = true;
    });
  }

  void startHost() {
    const std::vector<std::string> command = withScript(options_.command, script_.path());
    std::error_code error;
    const auto onExit = [this](int code, const std::error_code&) { exitCode_ = code; };
    fs::path program = command.front();
    if (!program.has_parent_path()) program = process::search_path(command.front()).string();
    if (program.empty()) throw HostFailure("Cannot start the host: there is no program \"" + command.front() + "\"");
    child_ = process::child(process::exe = program.string(),
                            process::args = std::vector<std::string>(command.begin() + 1, command.end()),
                            process::std_in<process::null, process::std_out> output_, process::std_err > errors_, io_,
                            process::on_exit = onExit, group_, error);
    if (error) throw HostFailure(fmt::format("Cannot start the host \"{}\": {}", program.string(), error.message()));
    readLines(output_, outputText_);
    readLines(errors_, errorText_);
  }

  void readLines(process::async_pipe& pipe, std::string& text) {
    asio::async_read_until(pipe, asio::dynamic_buffer(text, 1 << 20), '\n',
                           [this, &pipe, &text](const boost::system::error_code& error, std::size_t count) {
                             if (error) {
                               if (!text.empty()) hostLine(std::exchange(text, {}));
                               return;
                             }
                             std::string line = text.substr(0, count - 1);
                             text.erase(0, count);
                             hostLine(std::move(line));
                             readLines(pipe, text);
                           });
  }

  void hostLine(std::string line) {
    if (options_.onHostLine) options_.onHostLine(line);
    lastLines_.push_back(std::move(line));
    if (lastLines_.size() > kKeptLines) lastLines_.pop_front();
  }

  void acceptPlugin() {
    bool done = false;
    boost::system::error_code error;
    acceptor_.async_accept(socket_, [&](const boost::system::error_code& e) {
      error = e;
      done = true;
    });
    runUntil(done, "connect", [this] { return exitCode_.has_value(); });
    acceptor_.close();
    if (error) throw HostFailure(lost("The host's connection failed: " + error.message()));
    socket_.set_option(tcp::no_delay(true));
  }

  template <class Byte>
  void read(Byte* bytes, std::size_t count) {
    bool done = false;
    boost::system::error_code error;
    asio::async_read(socket_, asio::buffer(bytes, count), [&](const boost::system::error_code& e, std::size_t) {
      error = e;
      done = true;
    });
    runUntil(done, "answer");
    if (error == asio::error::eof) throw HostFailure(lost("The host closed the connection early"));
    if (error) throw HostFailure(lost("The connection to the host broke: " + error.message()));
  }

  // Runs handlers until `done`, the host's silence lasts too long, `ended` holds, or the user interrupts. The pending
  // operation is always over when this returns or throws.
  void runUntil(bool& done, const char* what, const std::function<bool()>& ended = {}) {
    std::string failure;
    bool expired = false;
    timer_.expires_after(options_.silence);
    timer_.async_wait([&](const boost::system::error_code& error) {
      if (!error) expired = true;
    });
    while (!done && failure.empty()) {
      io_.run_one();
      if (done) break;
      if (interrupted_)
        failure = kInterrupted;
      else if (ended && ended() && !isDoneAfterAll(done))
        failure = lost("The host ended before it could " + std::string(what));
      else if (expired)
        failure = lost(fmt::format("The host did not {} within {:.0f} seconds", what,
                                   std::chrono::duration<double>(options_.silence).count()));
    }
    timer_.cancel();
    if (failure.empty()) return;
    boost::system::error_code ignored;
    acceptor_.close(ignored);
    socket_.close(ignored);
    while (!done) io_.run_one();
    throw HostFailure(failure);
  }

  // What the host did just before it ended may have arrived, and not have been looked at yet.
  bool isDoneAfterAll(const bool& done) {
    while (!done && io_.poll_one() > 0) {
    }
    return done;
  }

  // The reason, how the host ended if it did, and what it said last.
  std::string lost(std::string reason) {
    waitForExit(std::chrono::milliseconds(500));
    if (exitCode_) reason += fmt::format("; the host {}", describeExit(*exitCode_, signalled_));
    if (!lastLines_.empty()) reason += fmt::format("; it last said:\n  {}", fmt::join(lastLines_, "\n  "));
    return reason;
  }

  bool waitForExit(std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!exitCode_ && io_.run_one_until(end) > 0) {
    }
    if (!exitCode_) return false;
    noteSignal();
    while (io_.poll_one() > 0) {  // its last lines
    }
    return true;
  }

  void noteSignal() {
    const platform::ProcessEnd end = platform::processEnd(child_.native_exit_code());
    exitCode_ = end.code;
    signalled_ = end.signalled;
  }

  void endHost() {
    std::error_code ignored;
    group_.terminate(ignored);
    waitForExit(std::chrono::seconds(5));
  }

  const HostOptions& options_;
  asio::io_context io_;
  tcp::acceptor acceptor_;
  tcp::socket socket_;
  asio::steady_timer timer_;
  asio::signal_set signals_;
  StartScript script_;
  process::async_pipe output_{io_}, errors_{io_};
  std::string outputText_, errorText_;
  std::deque<std::string> lastLines_;
  process::group group_;
  process::child child_;
  std::optional<int> exitCode_;
  bool signalled_ = false;
  bool interrupted_ = false;
};

HostLink::HostLink(const HostOptions& options, const std::string& token)
    : implementation_(std::make_unique<Implementation>(options, token)) {}
HostLink::~HostLink() = default;
void HostLink::send(const std::string& payload) { implementation_->send(payload); }
std::string HostLink::receive() { return implementation_->receive(); }
bool HostLink::finish(std::chrono::milliseconds patience) { return implementation_->finish(patience); }
const std::deque<std::string>& HostLink::lastLines() const { return implementation_->lastLines(); }

}  // namespace worker

#include "worker/host/host_link.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>
#include <cstdint>
#include <iterator>
#include <optional>
#include <random>
#include <utility>

#include "protocol/framing.h"
#include "worker/host/door.h"
#include "worker/host/event_loop.h"
#include "worker/host/host_process.h"
#include "worker/host/host_record.h"
#include "worker/host/start_script.h"

namespace worker {
namespace asio = boost::asio;
using asio::ip::tcp;
using std::chrono::milliseconds;

namespace {

constexpr std::size_t kKeptLines = 200;
constexpr std::size_t kToldLines = 20;
// How long a host whose connection broke is given to end, so that its end can be told.
constexpr milliseconds kEndAfterLoss{500};
// How long the folder of records may take to answer at the end.
constexpr milliseconds kKeeping{10000};

}  // namespace

std::string randomToken() {
  std::random_device random;
  return fmt::format("{:08x}{:08x}{:08x}{:08x}", random(), random(), random(), random());
}

// The order of the members is that of their ends: the host's process first, what it was given and the loop last.
class HostLink::Implementation {
 public:
  explicit Implementation(const HostOptions& options)
      : options_(options),
        loop_(options.stop, options.grace, options.look),
        door_(loop_, token_),
        socket_(loop_.context()),
        script_(door_.port(), token_),
        record_(options.records, script_.hostFolder()) {
    const HostCommand command{options.keeper, script_.in(options.command), script_.environment()};
    process_.emplace(loop_, command, [this](const std::string& line) { hostLine(line); });
    try {
      awaitPlugin();
    } catch (...) {
      endProcess();
      throw;
    }
  }
  ~Implementation() {
    close();
    try {
      if (process_) endProcess();
    } catch (const std::exception&) {  // of whoever is told its lines or warnings
    }
  }

  void send(const std::string& payload) {
    const auto size = static_cast<std::uint32_t>(payload.size());
    const std::array<unsigned char, protocol::kHeaderSize> header{
        static_cast<unsigned char>(size >> 24), static_cast<unsigned char>(size >> 16),
        static_cast<unsigned char>(size >> 8), static_cast<unsigned char>(size)};
    transfer("take a command", [&](auto handler) {
      asio::async_write(socket_, std::array<asio::const_buffer, 2>{asio::buffer(header), asio::buffer(payload)},
                        handler);
    });
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

  std::optional<std::string> receiveWithin(milliseconds patience) {
    bool done = false, readable = false;
    socket_.async_wait(tcp::socket::wait_read, [&](const boost::system::error_code& error) {
      readable = !error;
      done = true;
    });
    const auto over = [&] { return done; };
    const auto outcome = loop_.runUntil(over, patience);
    boost::system::error_code ignored;
    if (!done) socket_.cancel(ignored);
    loop_.settle(over);
    if (outcome == EventLoop::Outcome::stopped) throw HostFailure(kInterrupted);
    return readable ? std::optional(receive()) : std::nullopt;
  }

  std::vector<std::string> takePrinted() {
    loop_.runUntil([] { return true; }, milliseconds(0), false);
    const std::deque<std::string> lines = std::exchange(printed_, {});
    return {lines.begin(), lines.end()};
  }

  void betweenFrames() {
    loop_.protect(false);
    if (loop_.mustStop()) throw HostFailure(kInterrupted);
    loop_.protect(true);
  }

  bool finish(milliseconds patience) {
    // One that exited before has left another as the host, which has no exit code to tell.
    const bool launched = process_->hasExited();
    close();
    const auto ended = [&] { return process_->isGone() || (!launched && process_->hasExited()); };
    const bool byItself = loop_.runUntil(ended, patience) == EventLoop::Outcome::over;
    endProcess();
    return byItself && process_->succeeded();
  }

  const std::deque<std::string>& lastLines() const { return lastLines_; }

 private:
  void hostLine(const std::string& line) {
    if (options_.onHostLine) options_.onHostLine(line);
    record_.addLine(line);
    for (std::deque<std::string>* lines : {&lastLines_, &printed_}) {
      lines->push_back(line);
      if (lines->size() > kKeptLines) lines->pop_front();
    }
  }

  void endProcess() {
    if (std::exchange(isEnded_, true)) return;
    process_->kill();
    process_->awaitOutput(kEndAfterLoss);
    record_.keep();
    const bool isKept =
        loop_.runUntil([this] { return record_.isKept(); }, kKeeping, false) == EventLoop::Outcome::over;
    const std::string problem = isKept ? record_.problem() : "the folder does not answer";
    if (!problem.empty() && options_.onWarning)
      options_.onWarning(fmt::format("The host's log cannot be kept in {}: {}", options_.records, problem));
  }

  void awaitPlugin() {
    await([this] { return door_.hasCome() || !door_.failure().empty(); }, "connect");
    if (!door_.hasCome()) throw HostFailure(lost("The host cannot be let in: " + door_.failure()));
    socket_ = door_.take();
    socket_.set_option(tcp::no_delay(true));
    if (door_.strangers() > 0 && options_.onWarning)
      options_.onWarning(fmt::format("{} other connection{} came before the host's and did not know the token",
                                     door_.strangers(), door_.strangers() == 1 ? "" : "s"));
  }

  template <class Byte>
  void read(Byte* bytes, std::size_t count) {
    transfer("answer", [&](auto handler) { asio::async_read(socket_, asio::buffer(bytes, count), handler); });
  }

  // Carries out one transfer to its end; nothing of it is under way when this returns or throws.
  template <class Start>
  void transfer(const char* what, const Start& start) {
    bool done = false;
    boost::system::error_code error;
    start([&](const boost::system::error_code& e, std::size_t) {
      error = e;
      done = true;
    });
    const auto over = [&] { return done; };
    try {
      await(over, what);
    } catch (...) {
      close();
      loop_.settle(over);
      throw;
    }
    if (error == asio::error::eof || error == asio::error::connection_reset)
      throw HostFailure(lost("The host closed the connection early"));
    if (error) throw HostFailure(lost("The connection to the host broke: " + error.message()));
  }

  void await(const std::function<bool()>& done, const char* what) {
    const auto over = [&] {
      record_.look();
      return done() || process_->isGone();
    };
    switch (loop_.runUntil(over, options_.silence)) {
      case EventLoop::Outcome::over:
        if (!done()) throw HostFailure(lost(fmt::format("The host ended before it could {}", what)));
        return;
      case EventLoop::Outcome::stopped:
        throw HostFailure(kInterrupted);
      case EventLoop::Outcome::expired:
        throw HostFailure(told(fmt::format("The host did not {} within {:.0f} seconds", what,
                                           std::chrono::duration<double>(options_.silence).count())));
    }
  }

  // The reason and how the host ended, if it does.
  std::string lost(std::string reason) {
    loop_.runUntil([this] { return process_->hasExited() || process_->isGone(); }, kEndAfterLoss);
    const std::string end = process_->end();
    if (!end.empty()) {
      reason += "; the host " + end;
      process_->awaitOutput(kEndAfterLoss);
    }
    return told(std::move(reason));
  }

  // The reason and what the host said last.
  std::string told(std::string reason) {
    const auto skipped = static_cast<std::ptrdiff_t>(lastLines_.size() - std::min(lastLines_.size(), kToldLines));
    const std::vector<std::string> lines(std::next(lastLines_.begin(), skipped), lastLines_.end());
    if (!lines.empty()) reason += fmt::format("; it last said:\n  {}", fmt::join(lines, "\n  "));
    return reason;
  }

  void close() {
    boost::system::error_code ignored;
    socket_.shutdown(tcp::socket::shutdown_both, ignored);
    socket_.close(ignored);
  }

  const HostOptions& options_;
  const std::string token_ = randomToken();
  EventLoop loop_;
  Door door_;
  tcp::socket socket_;
  StartScript script_;
  HostRecord record_;
  std::deque<std::string> lastLines_, printed_;
  std::optional<HostProcess> process_;
  bool isEnded_ = false;
};

namespace {

// What the system refuses on the way to a host, such as handles or a folder, is a host that cannot be started.
template <class Make>
auto orHostFailure(const Make& make) {
  try {
    return make();
  } catch (const HostFailure&) {
    throw;
  } catch (const boost::system::system_error& e) {
    throw HostFailure("Cannot start the host: " + e.code().message());
  } catch (const std::runtime_error& e) {
    throw HostFailure(std::string("Cannot start the host: ") + e.what());
  }
}

}  // namespace

HostLink::HostLink(const HostOptions& options)
    : implementation_(orHostFailure([&] { return std::make_unique<Implementation>(options); })) {}
HostLink::~HostLink() = default;
void HostLink::send(const std::string& payload) { implementation_->send(payload); }
std::string HostLink::receive() { return implementation_->receive(); }
std::optional<std::string> HostLink::receiveWithin(milliseconds patience) {
  return implementation_->receiveWithin(patience);
}
std::vector<std::string> HostLink::takePrinted() { return implementation_->takePrinted(); }
void HostLink::betweenFrames() { implementation_->betweenFrames(); }
bool HostLink::finish(std::chrono::milliseconds patience) { return implementation_->finish(patience); }
const std::deque<std::string>& HostLink::lastLines() const { return implementation_->lastLines(); }

}  // namespace worker

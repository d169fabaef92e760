#include "worker/host/host_process.h"

#include <fmt/format.h>

#include <boost/asio/buffer.hpp>
#include <boost/asio/read_until.hpp>
#include <sstream>
#include <system_error>
#include <utility>

#include "worker/conversation/connection.h"

namespace worker {
namespace {

namespace asio = boost::asio;
using Milliseconds = EventLoop::Milliseconds;

// Starting a program and ending one: the system's own work.
constexpr Milliseconds kStart{30000};
constexpr Milliseconds kEnd{5000};

std::string cannotStart(const std::string& program, int error) {
  return fmt::format("Cannot start the host \"{}\": {}", program, std::generic_category().message(error));
}

}  // namespace

HostProcess::HostProcess(EventLoop& loop, const HostCommand& command,
                         const std::function<void(const std::string&)>& onLine)
    : loop_(loop), line_(loop.context()), output_(loop.context(), onLine), errors_(loop.context(), onLine) {
  start(command);
  readLine();
  read(output_);
  read(errors_);
  loop_.runUntil([this] { return started_ || gone_; }, kStart, false);
  if (started_) return;
  kill();
  throw HostFailure(startError_ != 0 ? cannotStart(command.command.front(), startError_)
                                     : "Cannot start the host: its keeper was lost");
}

HostProcess::~HostProcess() {
  try {
    kill();
  } catch (const std::exception&) {  // of whoever is told its lines; the keeper ends it nevertheless
  }
}

void HostProcess::start(const HostCommand& command) {
  platform::adoptOrphans();  // what a killed keeper leaves
  try {
    const platform::StartedKeeper started = platform::startKeeper(command.keeper, command.command, command.environment);
    keeper_ = started.id;
    line_.assign(asio::local::stream_protocol(), started.line);
    output_.pipe.assign(started.output);
    errors_.pipe.assign(started.errors);
  } catch (const std::system_error& e) {
    throw HostFailure(fmt::format("Cannot start the host: its keeper {}: {}", command.keeper, e.code().message()));
  }
}

void HostProcess::readLine() {
  asio::async_read_until(line_, asio::dynamic_buffer(text_), '\n',
                         [this](const boost::system::error_code& error, std::size_t count) {
                           if (error) {
                             keeperLost_ = !std::exchange(gone_, true);
                             return;
                           }
                           hear(text_.substr(0, count - 1));
                           text_.erase(0, count);
                           readLine();
                         });
}

void HostProcess::hear(const std::string& message) {
  std::istringstream stream(message);
  std::string word;
  int number = 0;
  stream >> word >> number;
  if (word == "started") started_ = true;
  if (word == "failed") startError_ = number;
  if (word == "exited" || word == "signalled") exit_ = Exit{number, word == "signalled"};
  if (word == "gone" || word == "failed") gone_ = true;
}

void HostProcess::read(Output& output) {
  output.pipe.async_read_some(asio::buffer(output.bytes),
                              [this, &output](const boost::system::error_code& error, std::size_t count) {
                                output.lines.add({output.bytes.data(), count});
                                if (!error) return read(output);
                                output.open = false;
                                output.lines.finish();
                              });
}

std::string HostProcess::end() const {
  if (exit_)
    return exit_->signalled ? fmt::format("was ended by signal {}", exit_->code)
                            : fmt::format("ended with exit code {}", exit_->code);
  return keeperLost_ ? "was ended because its keeper was lost" : "";
}

void HostProcess::awaitOutput(Milliseconds patience) {
  loop_.runUntil([this] { return !output_.open && !errors_.open; }, patience, false);
}

void HostProcess::kill() {
  if (keeper_ == 0) return;
  boost::system::error_code ignored;
  if (!gone_) line_.shutdown(asio::socket_base::shutdown_send, ignored);
  const bool gone = loop_.runUntil([this] { return gone_; }, kEnd, false) == EventLoop::Outcome::over;
  if (gone) platform::waitForKeeper(keeper_);
  // A keeper that was killed or stopped has not done its work.
  if (!gone || keeperLost_) loop_.runUntil(platform::endAllBelow, kEnd, false);
  keeper_ = 0;
}

}  // namespace worker

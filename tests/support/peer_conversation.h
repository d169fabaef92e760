// The connection behind a ScriptedPeer, and the thread that carries its steps out.
#pragma once

#include <utility>  // before Boost.Asio, which uses it without including it

#include <boost/asio.hpp>
#include <chrono>
#include <functional>
#include <future>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/scripted_peer.h"

namespace support {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

// Only ends what would otherwise hang: no outcome of a sound test depends on it.
inline constexpr std::chrono::seconds kSafetyLimit{20};

// A step that did not go as stated.
class Departure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The text with control characters made visible.
std::string escape(const std::string& text);

// The peer's side of the connection. Steps run on its thread; everything else is called by the test's.
class ScriptedPeer::Conversation {
 public:
  Conversation() : acceptor_(io_, tcp::endpoint(asio::ip::address_v4::loopback(), 0)), socket_(io_) {}

  std::uint16_t port() const { return port_; }
  const std::vector<std::string>& received() const { return received_; }

  void add(std::string name, std::function<void()> action);

  void start() {
    thread_ = std::thread([this] { run(); });
  }

  // Ends the conversation and gives the report.
  std::string finish();
  bool finished() const { return finished_; }

  void awaitSteps() const {
    if (thread_.joinable()) stepsDone_.wait();
  }

  // For steps. All but the last two throw Departure when the connection does not go along.
  std::string readMessage();
  std::string readExactly(std::size_t count);
  void write(const std::string& bytes);
  void expectEnd();
  void endOfSpeech() { socket_.shutdown(tcp::socket::shutdown_send, ignored_); }
  void breakOff();

 private:
  struct Step {
    std::string name;
    std::function<void()> action;
  };

  void run();
  void accept();
  // After the last step only the client's close, or finish(), ends the conversation.
  void expectNothingMore();
  // What is still to be read until the client closes or finish() is called.
  std::string readToEnd();

  // Starts an operation and runs until it is over; timed_out beyond the safety limit.
  template <class Start>
  error_code await(Start&& start) {
    bool over = false;
    error_code outcome;
    start([&over, &outcome](error_code error) {
      over = true;
      outcome = error;
    });
    const auto end = std::chrono::steady_clock::now() + kSafetyLimit;
    io_.restart();
    while (!over && std::chrono::steady_clock::now() < end) io_.run_one_until(end);
    if (over) return outcome;
    acceptor_.cancel(ignored_);
    socket_.cancel(ignored_);
    io_.restart();
    while (!over) io_.run_one();
    return asio::error::timed_out;
  }

  asio::io_context io_;
  tcp::acceptor acceptor_;
  tcp::socket socket_;
  const std::uint16_t port_ = acceptor_.local_endpoint().port();
  error_code ignored_;
  std::vector<Step> steps_;
  std::vector<std::string> received_;
  std::promise<void> stepsOver_;
  std::shared_future<void> stepsDone_ = stepsOver_.get_future().share();
  bool endSeen_ = false;
  bool finishing_ = false;  // on the peer's thread
  bool finished_ = false;
  std::string report_;
  std::thread thread_;
};

}  // namespace support

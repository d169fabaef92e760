#include "bench/ping_pong.h"

#include <fmt/core.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sched.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>
#include <vector>

#include "bench/report.h"

namespace bench {
namespace {

constexpr int kBatches = 20;

int checked(int result, const char* what) {
  if (result < 0) throw std::system_error(errno, std::generic_category(), what);
  return result;
}

void sendAtOnce(int socket) {
  const int on = 1;
  checked(::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on), "TCP_NODELAY");
}

void sendAll(int socket, const std::string& bytes) {
  for (std::size_t sent = 0; sent < bytes.size();) {
    const ssize_t taken = ::send(socket, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
    if (taken < 0) throw std::system_error(errno, std::generic_category(), "send");
    sent += static_cast<std::size_t>(taken);
  }
}

// False when the peer has closed.
bool receiveAll(int socket, std::string& bytes) {
  for (std::size_t received = 0; received < bytes.size();) {
    const ssize_t read = ::recv(socket, bytes.data() + received, bytes.size() - received, 0);
    if (read <= 0) return false;
    received += static_cast<std::size_t>(read);
  }
  return true;
}

sockaddr_in loopback(std::uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

// A listening socket on a free loopback port.
int listenOnLoopback(std::uint16_t& port) {
  const int listener = checked(::socket(AF_INET, SOCK_STREAM, 0), "socket");
  sockaddr_in address = loopback(0);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  checked(::bind(listener, generic, size), "bind");
  checked(::listen(listener, 1), "listen");
  checked(::getsockname(listener, generic, &size), "getsockname");
  port = ntohs(address.sin_port);
  return listener;
}

double microsecondsOf(const std::function<void()>& round) {
  const auto start = std::chrono::steady_clock::now();
  round();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count();
}

double sleepsSoFar() {
  rusage used{};
  checked(::getrusage(RUSAGE_SELF, &used), "getrusage");
  return static_cast<double>(used.ru_nvcsw);
}

// The rounds of one side.
class Series {
 public:
  explicit Series(const std::function<void()>& round) : round_(round) {}

  void run(int rounds) {
    const double before = sleepsSoFar();
    for (int i = 0; i < rounds; ++i) times_.push_back(microsecondsOf(round_));
    sleeps_ += sleepsSoFar() - before;
  }

  Latencies summary() {
    std::sort(times_.begin(), times_.end());
    const std::size_t count = times_.size();
    return {times_[count / 2], times_[count * 99 / 100], sleeps_ / static_cast<double>(count)};
  }

 private:
  const std::function<void()>& round_;
  std::vector<double> times_;
  double sleeps_ = 0;
};

}  // namespace

AnsweringServer::AnsweringServer(const RoundShape& shape, std::string answer, std::vector<std::string> lines)
    : listener_(listenOnLoopback(port_)), lines_(std::move(lines)) {
  const std::size_t bytesOfARound = shape.requestSize * static_cast<std::size_t>(shape.requests);
  thread_ = std::thread([this, bytesOfARound, reply = std::move(answer)] { serve(bytesOfARound, reply); });
}

AnsweringServer::~AnsweringServer() {
  ::shutdown(listener_, SHUT_RDWR);  // if nobody ever connected
  thread_.join();
  ::close(listener_);
}

void AnsweringServer::serve(std::size_t bytesOfARound, const std::string& answer) const {
  const int connection = ::accept(listener_, nullptr, nullptr);
  if (connection < 0) return;
  sendAtOnce(connection);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> log(std::tmpfile(), &std::fclose);
  std::string requests(bytesOfARound, '\0');
  while (receiveAll(connection, requests)) {
    for (const std::string& line : lines_)
      checked(static_cast<int>(::write(::fileno(log.get()), line.data(), line.size())), "write");
    sendAll(connection, answer);
  }
  ::close(connection);
}

CallingEnd::CallingEnd() : listener_(listenOnLoopback(port_)) {}

CallingEnd::~CallingEnd() {
  close();
  ::close(listener_);
}

void CallingEnd::accept() {
  connection_ = checked(::accept(listener_, nullptr, nullptr), "accept");
  sendAtOnce(connection_);
}

void CallingEnd::send(const std::string& bytes) { sendAll(connection_, bytes); }

void CallingEnd::receive(std::size_t count) {
  received_.resize(count);
  if (!receiveAll(connection_, received_)) throw std::system_error(errno, std::generic_category(), "recv");
}

std::string CallingEnd::take(std::size_t count) {
  receive(count);
  return received_;
}

void CallingEnd::close() {
  if (connection_ >= 0) ::close(connection_);
  connection_ = -1;
}

PingPong::PingPong(const RoundShape& shape, SmallMessages smallMessages, std::vector<std::string> linesOfTheServer)
    : shape_(shape),
      request_(shape.requestSize, 'q'),
      answer_(shape.answerSize, '\0'),
      server_(shape, std::string(shape.answerSize, 'a'), std::move(linesOfTheServer)),
      socket_(checked(::socket(AF_INET, SOCK_STREAM, 0), "socket")) {
  if (smallMessages == SmallMessages::sentAtOnce) sendAtOnce(socket_);
  const sockaddr_in address = loopback(server_.port());
  checked(::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), "connect");
}

PingPong::~PingPong() { ::close(socket_); }

void PingPong::round() {
  for (int request = 0; request < shape_.requests; ++request) sendAll(socket_, request_);
  if (!receiveAll(socket_, answer_)) throw std::system_error(errno, std::generic_category(), "recv");
}

void keepToOneProcessor() {
  cpu_set_t allowed;
  checked(::sched_getaffinity(0, sizeof allowed, &allowed), "sched_getaffinity");
  int first = 0;
  while (!CPU_ISSET(first, &allowed)) ++first;
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(first, &one);
  checked(::sched_setaffinity(0, sizeof one, &one), "sched_setaffinity");
}

Comparison compareRounds(const std::function<void()>& ours, const std::function<void()>& peer, int rounds) {
  const int perBatch = std::max(1, rounds / kBatches);
  for (int round = 0; round < perBatch; ++round) {
    ours();
    peer();
  }
  Series oursSeries(ours), peerSeries(peer);
  for (int batch = 0; batch < kBatches; ++batch) {
    oursSeries.run(perBatch);
    peerSeries.run(perBatch);
  }
  return {oursSeries.summary(), peerSeries.summary()};
}

void reportRounds(const std::string& name, const Comparison& comparison, double goal) {
  reportAtMost({name + " p50", comparison.ours.p50, comparison.peer.p50, "us"}, goal);
  reportAtMost({name + " p99", comparison.ours.p99, comparison.peer.p99, "us"}, goal);
  fmt::print(stderr, "  {}: {:.2f} sleeps a round, the peer {:.2f}\n", name, comparison.ours.sleeps,
             comparison.peer.sleeps);
}

}  // namespace bench

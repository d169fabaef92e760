// Bare TCP ping-pong over the loopback interface: what a round trip costs when nothing but the system's own socket
// calls take part. The peer of every benchmark that measures a conversation.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace bench {

// Bytes on the wire, message headers included. A round is `requests` sends of `requestSize` bytes, then one answer.
struct RoundShape {
  std::size_t requestSize = 0;
  std::size_t answerSize = 0;
  int requests = 1;
};

enum class SmallMessages { sentAtOnce, held };  // TCP_NODELAY, or the system's default

// A server on 127.0.0.1 with a thread of its own that serves one connection: it reads the bytes of a round, answers
// `answer`, and so on until the client closes.
class AnsweringServer {
 public:
  // `lines` are written to a file of its own before each answer, with a call each.
  AnsweringServer(const RoundShape& shape, std::string answer, std::vector<std::string> lines = {});
  // Blocks until the client has closed.
  ~AnsweringServer();
  AnsweringServer(const AnsweringServer&) = delete;
  AnsweringServer& operator=(const AnsweringServer&) = delete;

  std::uint16_t port() const { return port_; }

 private:
  void serve(std::size_t bytesOfARound, const std::string& answer) const;

  std::uint16_t port_ = 0;
  int listener_;
  std::vector<std::string> lines_;
  std::thread thread_;
};

// The end of one connection that speaks first although it is the one that listens, as a worker does.
class CallingEnd {
 public:
  CallingEnd();
  ~CallingEnd();
  CallingEnd(const CallingEnd&) = delete;
  CallingEnd& operator=(const CallingEnd&) = delete;

  std::uint16_t port() const { return port_; }
  // Blocks until the other end has connected.
  void accept();
  void send(const std::string& bytes);
  // Blocks until that many bytes have come, and drops them.
  void receive(std::size_t count);
  // The same, and returns them.
  std::string take(std::size_t count);
  void close();

 private:
  std::uint16_t port_ = 0;
  int listener_;
  int connection_ = -1;
  std::string received_;
};

// The bare client of a server of its own.
class PingPong {
 public:
  explicit PingPong(const RoundShape& shape, SmallMessages smallMessages = SmallMessages::sentAtOnce,
                    std::vector<std::string> linesOfTheServer = {});
  ~PingPong();
  PingPong(const PingPong&) = delete;
  PingPong& operator=(const PingPong&) = delete;

  // Sends the requests and reads the whole answer.
  void round();

 private:
  RoundShape shape_;
  std::string request_;
  std::string answer_;
  AnsweringServer server_;
  int socket_;
};

// From here on the process, and what it starts, keeps to one processor: what is compared is the work of a round, and
// not what waking another processor costs, which a worker and a host on two do pay.
void keepToOneProcessor();

// Microseconds a round, and how often one of the process's threads went to sleep in it.
struct Latencies {
  double p50 = 0;
  double p99 = 0;
  double sleeps = 0;
};
struct Comparison {
  Latencies ours;
  Latencies peer;
};

// Times `rounds` rounds of each, in alternating batches so that both meet the same machine, after a warm-up.
Comparison compareRounds(const std::function<void()>& ours, const std::function<void()>& peer, int rounds);

// Prints "<name> p50", "<name> p99" and, as a remark on standard error, the sleeps.
void reportRounds(const std::string& name, const Comparison& comparison, double goal);

}  // namespace bench

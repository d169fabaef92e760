// What the packet socket adds to a bare TCP round trip, and what holding small messages back would cost it.
#include <string>

#include "bench/ping_pong.h"
#include "plugin/transport/simple_socket.h"

namespace {

using bench::RoundShape;
using corvantis::win32::simple_socket;

constexpr std::size_t kHeaderSize = 4;

// The packet socket as client of a server whose answers are whole messages.
class PacketRounds {
 public:
  explicit PacketRounds(const RoundShape& shape)
      : shape_(shape), payload_(shape.requestSize - kHeaderSize, 'q'), server_(shape, answerOf(shape)) {
    socket_.connect("127.0.0.1", server_.port(), 1);
  }

  void round() {
    for (int request = 0; request < shape_.requests; ++request) socket_.send(payload_);
    socket_.receive(corvantis::win32::COMMAND_TIMEOUT_MS);
  }

 private:
  static std::string answerOf(const RoundShape& shape) {
    const std::size_t size = shape.answerSize - kHeaderSize;
    const std::string header{static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
                             static_cast<char>(size)};
    return header + std::string(size, 'a');
  }

  RoundShape shape_;
  std::string payload_;
  bench::AnsweringServer server_;
  simple_socket socket_;
};

void measureRoundTrip(const std::string& name, const RoundShape& shape, int rounds) {
  PacketRounds ours(shape);
  bench::PingPong bare(shape);
  bench::reportRounds(name, bench::compareRounds([&] { ours.round(); }, [&] { bare.round(); }, rounds), 1.3);
}

// Without TCP_NODELAY the second small message waits for the acknowledgement of the first, which the receiver delays
// while it has nothing to answer. The peer here is the bare client that leaves the default in place.
void measureBurst(const std::string& name, const RoundShape& shape, int rounds) {
  PacketRounds ours(shape);
  bench::PingPong held(shape, bench::SmallMessages::held);
  bench::reportRounds(name, bench::compareRounds([&] { ours.round(); }, [&] { held.round(); }, rounds), 1.0);
}

}  // namespace

int main() {
  bench::keepToOneProcessor();
  measureRoundTrip("socket round trip, 64 bytes", {64, 64}, 40000);
  measureRoundTrip("socket round trip, 16 KiB", {16384, 16384}, 10000);
  measureBurst("2 messages, 1 answer, against Nagle", {64, 64, 2}, 60);
  measureBurst("10 messages, 1 answer, against Nagle", {64, 64, 10}, 60);
}

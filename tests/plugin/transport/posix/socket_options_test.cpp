// What only a socket with options of its own shows.
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "support/packet_socket.h"

namespace corvantis::win32 {
namespace {

// A listener that never accepts and takes next to nothing into its buffer.
class FullPeer {
 public:
  FullPeer() {
    const int smallest = 1;
    ::setsockopt(descriptor_, SOL_SOCKET, SO_RCVBUF, &smallest, sizeof smallest);
    address_.sin_family = AF_INET;
    address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address_;
    auto* const address = reinterpret_cast<sockaddr*>(&address_);
    if (::bind(descriptor_, address, size) != 0 || ::listen(descriptor_, 1) != 0 ||
        ::getsockname(descriptor_, address, &size) != 0) {
      ADD_FAILURE() << "cannot listen";
    }
  }
  ~FullPeer() { ::close(descriptor_); }
  FullPeer(const FullPeer&) = delete;
  FullPeer& operator=(const FullPeer&) = delete;

  std::uint16_t port() const { return ntohs(address_.sin_port); }

 private:
  const int descriptor_ = ::socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address_{};
};

TEST_F(PacketSocket, ReportsAMessageThatIsTakenInPartAndStaysOpen) {
  const FullPeer full;
  socket.connect("127.0.0.1", full.port(), 1);
  // The kernel's buffers hold a fraction of the message, and the call is made to give up on the rest.
  const int smallest = 1;
  const timeval brief{0, 1000};
  ASSERT_EQ(::setsockopt(static_cast<int>(socket.handle()), SOL_SOCKET, SO_SNDBUF, &smallest, sizeof smallest), 0);
  ASSERT_EQ(::setsockopt(static_cast<int>(socket.handle()), SOL_SOCKET, SO_SNDTIMEO, &brief, sizeof brief), 0);
  expectError<simple_socket_error>([&] { socket.send(std::string(99996, 'x')); },
                                   "send: failed to send the entire message.");
  EXPECT_TRUE(socket.isConnected());
}

}  // namespace
}  // namespace corvantis::win32

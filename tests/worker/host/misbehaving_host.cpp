// misbehaving_host ROLE SCRIPT: reads port and token from a start-up script, connects back, and plays ROLE.
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>

#include "platform/socket.h"

namespace {

class Conversation {
 public:
  explicit Conversation(std::uint16_t port) {
    std::uint32_t loopback = 0;
    platform::parseAddress("127.0.0.1", loopback);
    if (!platform::connectSocket(socket_, loopback, port)) std::exit(8);
  }
  ~Conversation() { platform::closeSocket(socket_); }
  Conversation(const Conversation&) = delete;
  Conversation& operator=(const Conversation&) = delete;

  void sendRaw(const std::string& bytes) {
    for (std::size_t sent = 0; sent < bytes.size();) {
      const std::ptrdiff_t taken = platform::sendBytes(socket_, bytes.data() + sent, bytes.size() - sent);
      if (taken < 0) return;
      sent += static_cast<std::size_t>(taken);
    }
  }
  void send(const std::string& payload) {
    const auto size = static_cast<std::uint32_t>(payload.size());
    sendRaw(std::string{static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
                        static_cast<char>(size)} +
            payload);
  }
  // Ends the program when the worker has closed the connection.
  std::string receive() {
    const std::string header = receiveRaw(4);
    const auto byte = [&](std::size_t i) { return static_cast<std::size_t>(static_cast<unsigned char>(header[i])); };
    return receiveRaw(byte(2) << 8 | byte(3));
  }

 private:
  std::string receiveRaw(std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t got = 0; got < count;) {
      const std::ptrdiff_t part = platform::receiveBytes(socket_, bytes.data() + got, count - got);
      if (part <= 0) std::exit(0);
      got += static_cast<std::size_t>(part);
    }
    return bytes;
  }

  platform::SocketHandle socket_ = platform::openSocket(platform::SocketType::stream);
};

// The port and token of the script's one call.
std::pair<std::uint16_t, std::string> readStartScript(const char* path) {
  std::ifstream stream(path);
  std::string word, token;
  std::uint16_t port = 0;
  while (stream >> word && word != "TessarynUtil.RunCorvantisDaemon") {
  }
  if (!(stream >> port >> std::quoted(token))) std::exit(9);
  return {port, token};
}

}  // namespace

int main(int, char** argv) {
  const std::string role = argv[1];
  const auto [port, token] = readStartScript(argv[2]);

  Conversation worker(port);
  if (role == "close") return 0;
  worker.send(role == "token" ? "someone else" : token);
  if (role == "token") return 0;
  worker.receive();
  worker.send("Corvantis test");
  worker.receive();  // StartJob
  worker.send("SUCCESS Scene loaded successfully");
  while (worker.receive().rfind("RenderTask", 0) != 0) {
  }
  worker.send("STARTED");
  std::cout << "about to " << role << std::endl;
  if (role == "abort") std::raise(SIGKILL);
  if (role == "exit") std::_Exit(7);
  if (role == "huge") worker.sendRaw("\x7f\xff\xff\xff");
  if (role == "gibberish") worker.send("DANCE");
  worker.receive();
  return 0;
}

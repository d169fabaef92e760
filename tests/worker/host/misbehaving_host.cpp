// misbehaving_host ROLE SCRIPT: reads port and token from a start-up script, connects back, and plays ROLE.
#include <utility>  // needed before Asio, which forgets it

#include <boost/asio.hpp>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <string>

namespace {

using boost::asio::ip::tcp;

void send(tcp::socket& socket, const std::string& payload) {
  const auto size = static_cast<std::uint32_t>(payload.size());
  const std::string header{static_cast<char>(size >> 24), static_cast<char>(size >> 16), static_cast<char>(size >> 8),
                           static_cast<char>(size)};
  boost::asio::write(socket, boost::asio::buffer(header + payload));
}

std::string receive(tcp::socket& socket) {
  unsigned char header[4];
  boost::asio::read(socket, boost::asio::buffer(header));
  std::string payload((static_cast<std::size_t>(header[2]) << 8) | header[3], '\0');
  boost::asio::read(socket, boost::asio::buffer(payload));
  return payload;
}

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

  boost::asio::io_context io;
  tcp::socket socket(io);
  socket.connect({boost::asio::ip::address_v4::loopback(), port});
  if (role == "close") return 0;
  send(socket, role == "token" ? "someone else" : token);
  if (role == "token") return 0;
  receive(socket);
  send(socket, "Corvantis test");
  receive(socket);  // StartJob
  send(socket, "SUCCESS Scene loaded successfully");
  while (receive(socket).rfind("RenderTask", 0) != 0) {
  }
  send(socket, "STARTED");
  std::cout << "about to " << role << std::endl;
  if (role == "abort") std::raise(SIGKILL);
  if (role == "exit") std::_Exit(7);
  if (role == "huge") boost::asio::write(socket, boost::asio::buffer(std::string("\x7f\xff\xff\xff", 4)));
  if (role == "gibberish") send(socket, "DANCE");
  receive(socket);
  return 0;
}

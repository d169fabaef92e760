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

platform::SocketHandle worker = platform::kInvalidSocket;

void connect(std::uint16_t port) {
  std::uint32_t loopback = 0;
  platform::parseAddress("127.0.0.1", loopback);
  worker = platform::openSocket(platform::SocketType::stream);
  if (!platform::connectSocket(worker, loopback, port)) std::exit(8);
}

void sendRaw(const std::string& bytes) { (void)platform::sendBytes(worker, bytes.data(), bytes.size()); }

void send(const std::string& payload) { sendRaw(std::string(3, '\0') + static_cast<char>(payload.size()) + payload); }

// Ends the program when the worker has closed the connection.
void awaitWord(const std::string& word) {
  std::string seen;
  char byte = 0;
  while (!seen.ends_with(word)) {
    if (platform::receiveBytes(worker, &byte, 1) <= 0) std::exit(0);
    seen += byte;
  }
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

  connect(port);
  if (role == "close") return 0;
  send(role == "token" ? "someone else" : token);
  if (role == "token") return 0;
  awaitWord("TessarynStartup");
  send("Corvantis test");
  awaitWord("StartJob");
  send("SUCCESS Scene loaded successfully");
  awaitWord("RenderTask,1");
  send("STARTED");
  std::cout << "about to " << role << std::endl;
  if (role == "abort") std::raise(SIGKILL);
  if (role == "exit") std::_Exit(7);
  if (role == "huge") sendRaw("\x7f\xff\xff\xff");
  if (role == "gibberish") send("DANCE");
  awaitWord("the end of the connection");
}

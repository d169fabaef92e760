// scripted_host ORDERS SCRIPT: a host that does what the orders say, one after another; they are parted by blanks.
//
//   come            reads the start-up script, connects, shakes hands
//   guest:KIND      someone else connects and stays: silent, half, wrong, huge, web, gone; a number: so many silent
//   ones serve:MESSAGE   answers as a good host until a message that begins so; "serve" alone until the connection ends
//   say:TEXT        sends a message, "_" for a blank
//   raw:KIND        sends what is no message: huge
//   print:TEXT      a line of its own output, "_" for a blank
//   log:TEXT        a line of its log, "_" for a blank
//   flood:KIND      much output: line (without an end), bars, lines
//   show:WHAT       a line with facts: handles, folder (its TMP), mode (the permissions of script and folder)
//   hold:PIPE       opens the named pipe, which stays open while anything of this host runs
//   ready           writes a line to that pipe
//   fork, detach, launch   goes on with a child that stalls; with one in a session of its own; in the child, and ends
//   fault:SIGNAL, exit:CODE, stall
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <sstream>
#include <string>

#include "platform/socket.h"

namespace {

const char* script = nullptr;
platform::SocketHandle worker = platform::kInvalidSocket;
int pipe = -1;

struct Start {
  std::uint16_t port = 0;
  std::string token;
};

// The port and token of the script's one call.
Start readStartScript() {
  std::ifstream stream(script);
  Start start;
  std::string word;
  while (stream >> word && word != "TessarynUtil.RunCorvantisDaemon") {
  }
  if (!(stream >> start.port >> std::quoted(start.token))) std::exit(9);
  return start;
}

platform::SocketHandle connected() {
  std::uint32_t loopback = 0;
  platform::parseAddress("127.0.0.1", loopback);
  const platform::SocketHandle socket = platform::openSocket(platform::SocketType::stream);
  if (!platform::connectSocket(socket, loopback, readStartScript().port)) std::exit(8);
  return socket;
}

void sendRaw(platform::SocketHandle socket, const std::string& bytes) {
  (void)platform::sendBytes(socket, bytes.data(), bytes.size());
}

std::string message(const std::string& payload) {
  return std::string(3, '\0') + static_cast<char>(payload.size()) + payload;
}

void say(const std::string& payload) { sendRaw(worker, message(payload)); }

// The next message; the program ends when the worker has closed the connection.
std::string hear() {
  const auto read = [](std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t at = 0; at < count;) {
      const auto got = platform::receiveBytes(worker, bytes.data() + at, count - at);
      if (got <= 0) std::exit(0);
      at += static_cast<std::size_t>(got);
    }
    return bytes;
  };
  std::size_t size = 0;
  for (const char byte : read(4)) size = size * 256 + static_cast<unsigned char>(byte);
  return read(size);
}

void come() {
  worker = connected();
  say(readStartScript().token);
  hear();
  say("Corvantis test");
}

void serve(const std::string& last) {
  for (;;) {
    const std::string command = hear();
    if (!last.empty() && command.starts_with(last)) return;
    const bool renders = command.starts_with("RenderTask");
    if (renders) say("STARTED");
    if (renders || command.starts_with("StartJob") || command.starts_with("Execute") || command == "EndJob")
      say("SUCCESS");
  }
}

void admitGuests(const std::string& kind) {
  const std::string token = readStartScript().token;
  const std::map<std::string, std::string> says{{"silent", ""},
                                                {"half", message(token).substr(0, 20)},
                                                {"wrong", message(std::string(token.size(), 'f'))},
                                                {"huge", "\x40" + std::string(100, '\0')},
                                                {"web", "GET / HTTP/1.1\r\nHost: localhost\r\n\r\n"},
                                                {"gone", ""}};
  const auto said = says.find(kind);
  const int count = said == says.end() ? std::stoi(kind) : 1;
  for (int i = 0; i < count; ++i) {
    const platform::SocketHandle guest = connected();
    if (said != says.end()) sendRaw(guest, said->second);
    if (kind == "gone") platform::closeSocket(guest);
  }
}

void flood(const std::string& kind) {
  const std::string piece = kind == "line" ? std::string(1000, 'x') : kind == "bars" ? "\r\033[32m 50 %\033[0m" : "y\n";
  for (int i = 0; i < 20000; ++i) std::cout << piece;
  std::cout << "\nflooded" << std::endl;
}

std::string facts(const std::string& what) {
  namespace fs = std::filesystem;
  std::ostringstream text;
  text << what;
  if (what == "handles")
    for (int handle = 0; handle < 1000; ++handle)
      if (::fcntl(handle, F_GETFD) >= 0) text << " " << handle;
  if (what == "folder") text << " " << std::getenv("TMP") << (fs::is_directory(std::getenv("TMP")) ? "" : " missing");
  if (what == "mode")
    for (const fs::path& path : {fs::path(script), fs::path(script).parent_path()})
      text << " " << std::oct << static_cast<int>(fs::status(path).permissions());
  return text.str();
}

[[noreturn]] void stall() {
  for (;;) ::pause();
}

void follow(const std::string& order) {
  const std::size_t colon = order.find(':');
  const std::string word = order.substr(0, colon);
  std::string text = colon == std::string::npos ? "" : order.substr(colon + 1);
  if (word == "say" || word == "print" || word == "log")
    for (char& c : text)
      if (c == '_') c = ' ';
  if (word == "come") come();
  if (word == "guest") admitGuests(text);
  if (word == "serve") serve(text);
  if (word == "say") say(text);
  if (word == "raw") sendRaw(worker, "\x7f\xff\xff\xff");
  if (word == "print") std::cout << text << std::endl;
  if (word == "log") std::ofstream(std::string(std::getenv("TMP")) + "/corvantis.log", std::ios::app) << text << "\n";
  if (word == "flood") flood(text);
  if (word == "show") std::cout << facts(text) << std::endl;
  if (word == "hold") pipe = ::open(text.c_str(), O_WRONLY);
  if (word == "ready") (void)!::write(pipe, "ready\n", 6);
  if (word == "fork" && ::fork() == 0) stall();
  if (word == "detach" && ::fork() == 0) {
    ::setsid();
    stall();
  }
  if (word == "launch" && ::fork() != 0) std::_Exit(0);
  if (word == "fault") {
    std::signal(std::stoi(text), SIG_DFL);  // a sanitizer's handler would end it by an exit code
    std::raise(std::stoi(text));
  }
  if (word == "exit") std::_Exit(std::stoi(text));
  if (word == "stall") stall();
}

}  // namespace

int main(int, char** argv) {
  script = argv[2];
  std::istringstream orders(argv[1]);
  for (std::string order; orders >> order;) follow(order);
}

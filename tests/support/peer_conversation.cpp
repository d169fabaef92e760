#include "support/peer_conversation.h"

#include <array>
#include <exception>
#include <utility>

namespace support {

std::string ScriptedPeer::Conversation::finish() {
  if (!std::exchange(finished_, true) && thread_.joinable()) {
    stepsDone_.wait();
    asio::post(io_, [this] {
      finishing_ = true;
      socket_.cancel(ignored_);
    });
    thread_.join();
  }
  return report_;
}

std::string ScriptedPeer::Conversation::readMessage() {
  const std::string head = readExactly(4);
  std::uint32_t size = 0;
  for (const char byte : head) size = size << 8 | static_cast<unsigned char>(byte);
  received_.push_back(readExactly(size));
  return received_.back();
}

std::string ScriptedPeer::Conversation::readExactly(std::size_t count) {
  std::string bytes(count, '\0');
  std::size_t got = 0;
  const error_code failure = await([&](auto done) {
    asio::async_read(socket_, asio::buffer(bytes), [&got, done](error_code error, std::size_t size) {
      got = size;
      done(error);
    });
  });
  if (!failure) return bytes;
  const std::string partly = got == 0 ? "" : " after \"" + escape(bytes.substr(0, got)) + "\"";
  if (failure == asio::error::eof) throw Departure("  the client closed the connection" + partly);
  throw Departure("  " + failure.message() + partly);
}

void ScriptedPeer::Conversation::write(const std::string& bytes) {
  const error_code failure = await([&](auto done) {
    asio::async_write(socket_, asio::buffer(bytes), [done](error_code error, std::size_t) { done(error); });
  });
  if (failure) throw Departure("  cannot send: " + failure.message());
}

void ScriptedPeer::Conversation::breakOff() {
  socket_.set_option(asio::socket_base::linger(true, 0), ignored_);
  socket_.close(ignored_);
}

void ScriptedPeer::Conversation::expectEnd() {
  const std::string rest = readToEnd();
  if (!rest.empty()) throw Departure("  expected the end of the connection, got \"" + escape(rest) + "\"");
  if (!endSeen_) throw Departure("  the client did not close the connection");
}

void ScriptedPeer::Conversation::run() {
  std::string name = "connecting";
  int number = 0;
  try {
    accept();
    for (const Step& step : steps_) {
      name = step.name;
      ++number;
      step.action();
    }
    stepsOver_.set_value();
    name = "the end";
    if (socket_.is_open() && !endSeen_) expectNothingMore();
  } catch (const std::exception& departure) {
    report_ = "step " + std::to_string(number) + ", " + name + ":\n" + departure.what();
    socket_.close(ignored_);
    if (name != "the end") stepsOver_.set_value();
  }
  acceptor_.close(ignored_);
  socket_.close(ignored_);
}

void ScriptedPeer::Conversation::accept() {
  const error_code failure = await([&](auto done) { acceptor_.async_accept(socket_, done); });
  if (failure) throw Departure("  nobody connected: " + failure.message());
  socket_.set_option(tcp::no_delay(true), ignored_);
}

void ScriptedPeer::Conversation::expectNothingMore() {
  const std::string rest = readToEnd();
  if (!rest.empty()) throw Departure("  got more than was expected: \"" + escape(rest) + "\"");
  if (!endSeen_ && !finishing_) throw Departure("  the client left the connection open and silent");
}

std::string ScriptedPeer::Conversation::readToEnd() {
  std::string rest;
  std::array<char, 4096> chunk;
  error_code failure;
  while (!failure && !finishing_) {
    failure = await([&](auto done) {
      socket_.async_read_some(asio::buffer(chunk), [&rest, &chunk, done](error_code error, std::size_t size) {
        rest.append(chunk.data(), size);
        done(error);
      });
    });
  }
  endSeen_ = failure == asio::error::eof || failure == asio::error::connection_reset;
  // finish() stopped the wait: take what has arrived already.
  while (!endSeen_ && socket_.available(failure) > 0 && !failure) {
    rest.append(chunk.data(), socket_.read_some(asio::buffer(chunk), failure));
  }
  return rest;
}

void ScriptedPeer::Conversation::add(std::string name, std::function<void()> action) {
  if (thread_.joinable() || finished_) throw std::logic_error("a step was added after the start: " + name);
  steps_.push_back({std::move(name), std::move(action)});
}

}  // namespace support

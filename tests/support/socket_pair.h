// Two ends of one loopback connection: ours through the platform's layer, the far one to be told what to do.
#pragma once

#include <memory>
#include <string>

#include "platform/socket.h"

namespace support {

class SocketPair {
 public:
  SocketPair();
  ~SocketPair();
  SocketPair(const SocketPair&) = delete;
  SocketPair& operator=(const SocketPair&) = delete;

  platform::SocketHandle ours() const { return ours_; }
  // The far end sends, or ends the connection in order, or breaks it off. Each is done when the call returns.
  void send(const std::string& bytes);
  void close();
  void reset();

 private:
  struct FarEnd;
  std::unique_ptr<FarEnd> far_;
  platform::SocketHandle ours_;
};

}  // namespace support

// Replies to the worker.
#pragma once

#include <string>

#include "plugin/transport/simple_socket.h"

namespace corvantis {

// Sends one message. Narrow text is in the ANSI code page. Throws the socket's errors and those of to_utf8.
void sendReply(win32::simple_socket& socket, const std::u16string& text);
void sendReply(win32::simple_socket& socket, const std::string& text);

}  // namespace corvantis

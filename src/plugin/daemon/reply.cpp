#include "plugin/daemon/reply.h"

#include "plugin/util/text.h"

namespace corvantis {

void sendReply(win32::simple_socket& socket, const std::u16string& text) { socket.send(to_utf8(text)); }
void sendReply(win32::simple_socket& socket, const std::string& text) { socket.send(to_utf8(text)); }

}  // namespace corvantis

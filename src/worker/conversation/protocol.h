// The messages of the conversation with a plug-in, as the worker writes and reads them.
#pragma once

#include <string>
#include <vector>

namespace worker {

// One command line: fields joined by commas; a field that holds a comma, quote, backslash or line feed is escaped so
// that the plug-in reads it unchanged.
std::string commandLine(const std::vector<std::string>& fields);

// What a message from the plug-in is.
enum class MessageKind {
  log,            // a line of output; text is the line
  warning,        // text is the warning
  title,          // text is the task title
  progress,       // value is the percentage, -1 for work that cannot be measured
  question,       // word is the request word, text its argument
  unknownNotice,  // a notice of a newer plug-in; text is the whole message
  started,        // a long command has begun
  success,        // text is what follows "SUCCESS", without ": "
  error,          // text is what follows "ERROR: "
  unknown         // text is the whole message
};

struct Message {
  MessageKind kind = MessageKind::unknown;
  std::string word;
  std::string text;
  float value = 0;
};

Message readMessage(const std::string& payload);

}  // namespace worker

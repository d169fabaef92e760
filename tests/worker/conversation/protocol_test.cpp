#include "worker/conversation/protocol.h"

#include <gtest/gtest.h>

namespace worker {
namespace {

TEST(Protocol, EscapesWhatTheCommandLineWouldSplitOrDrop) {
  EXPECT_EQ(commandLine({"EndJob"}), "EndJob");
  EXPECT_EQ(commandLine({"StartJob", "C:\\a\\b.max", ""}), "StartJob,C:\\\\a\\\\b.max,");
  EXPECT_EQ(commandLine({"X", "a,b", "say \"hi\"", "two\nlines"}), "X,a\\,b,say \\\"hi\\\",two\\nlines");
}

TEST(Protocol, TellsMessagesApart) {
  const struct {
    const char* payload;
    MessageKind kind;
    const char* word;
    const char* text;
  } cases[] = {
      {"STARTED", MessageKind::started, "", ""},
      {"SUCCESS", MessageKind::success, "", ""},
      {"SUCCESS Scene loaded successfully", MessageKind::success, "", " Scene loaded successfully"},
      {"SUCCESS: ", MessageKind::success, "", ""},
      {"ERROR: Failed to save file.", MessageKind::error, "", "Failed to save file."},
      {"FUNCTION: STDOUT: MaxCorvantis: x", MessageKind::log, "", "MaxCorvantis: x"},
      {"FUNCTION: WARN: y", MessageKind::warning, "", "y"},
      {"FUNCTION: SETTITLE Pass 1 of 2 - a - 5.0%", MessageKind::title, "", "Pass 1 of 2 - a - 5.0%"},
      {"FUNCTION: PROGRESS 12.5", MessageKind::progress, "", "12.5"},
      {"FUNCTION: PROGRESS -1", MessageKind::progress, "", "-1"},
      {"FUNCTION: GETSUBMITINFOENTRYELEMENT 2 a key", MessageKind::question, "GETSUBMITINFOENTRYELEMENT", "2 a key"},
      {"FUNCTION: GETJOBINFOENTRY ", MessageKind::question, "GETJOBINFOENTRY", ""},
      {"FUNCTION: DANCE now", MessageKind::unknownNotice, "", "FUNCTION: DANCE now"},
      {"FUNCTION:", MessageKind::unknown, "", "FUNCTION:"},
      {"", MessageKind::unknown, "", ""},
  };
  for (const auto& c : cases) {
    const Message message = readMessage(c.payload);
    EXPECT_EQ(message.kind, c.kind) << c.payload;
    EXPECT_EQ(message.word, c.word) << c.payload;
    EXPECT_EQ(message.text, c.text) << c.payload;
  }
  EXPECT_EQ(readMessage("FUNCTION: PROGRESS 12.5").value, 12.5F);
  EXPECT_EQ(readMessage("FUNCTION: PROGRESS -1").value, -1.0F);
}

}  // namespace
}  // namespace worker

#include "plugin/daemon/dispatch.h"

#include <algorithm>

#include "plugin/daemon/command_line.h"
#include "plugin/daemon/command_table.h"
#include "plugin/daemon/reply.h"
#include "plugin/util/log_file.h"

namespace corvantis {
namespace {

void logLine(const std::u16string& line, std::span<const std::u16string> fields) {
  log_file << "Command: " << line << LogFile::endl;
  for (const std::u16string& field : fields) log_file << field << LogFile::endl;
  log_file << LogFile::endl;
}

}  // namespace

void dispatchCommand(JobState& jobState, win32::simple_socket& socket, const std::u16string& line) {
  const std::vector<std::u16string> fields = splitCommandLine(line);
  logLine(line, fields);
  const std::u16string word = fields.empty() ? std::u16string() : fields.front();
  const auto rows = commandTable();
  const auto row = std::ranges::find(rows, word, &CommandRow::word);
  if (row == rows.end()) return sendReply(socket, u"ERROR: Unexpected command \"" + word + u"\" received.");
  runCommand(*row, {jobState, socket, word, std::span(fields).subspan(1)});
}

}  // namespace corvantis

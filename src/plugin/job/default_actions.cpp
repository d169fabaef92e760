#include "plugin/job/default_actions.h"

#include <cstdint>
#include <string>

#include "plugin/daemon/requests/requests.h"
#include "plugin/util/log_file.h"

namespace corvantis {
namespace {

using hostsdk::kActionFail;
using hostsdk::kActionLog;
using hostsdk::kActionRecord;

struct MissingKind {
  std::uint32_t type;
  bool JobSettings::*ignored;
  std::uint32_t failAction;
  const char* ignoring;
  const char* notIgnoring;
  const char16_t* label;
};

constexpr std::uint32_t kIgnore = kActionLog;

// The order in which every operation visits the kinds. A missing external scene is also recorded, so that the load can
// be failed with the host's own text. "cooridinate" is spelled as the system spells it.
constexpr MissingKind kKinds[] = {
    {hostsdk::kTypeMissingExternalFiles, &JobSettings::ignoreMissingExternalFiles, kActionLog | kActionFail,
     "Ignoring missing external file errors", "Not ignoring missing external file errors",
     u"  TYPE_MISSING_EXTERNAL_FILES = "},
    {hostsdk::kTypeMissingUvws, &JobSettings::ignoreMissingUVWs, kActionLog | kActionFail,
     "Ignoring missing UVW cooridinate errors", "Not ignoring missing UVW cooridinate errors",
     u"  TYPE_MISSING_UVWS = "},
    {hostsdk::kTypeMissingDllFiles, &JobSettings::ignoreMissingDLLs, kActionLog | kActionFail,
     "Ignoring missing DLL errors", "Not ignoring missing DLL errors", u"  TYPE_MISSING_DLL_FILES = "},
    {hostsdk::kTypeMissingXrefFiles, &JobSettings::ignoreMissingXREFs, kActionLog | kActionRecord | kActionFail,
     "Ignoring missing XREF errors", "Not ignoring missing XREF errors", u"  TYPE_MISSING_XREF_FILES = "},
};

}  // namespace

void applyDefaultActions(JobState& job) {
  for (const MissingKind& kind : kKinds) {
    const bool ignored = job.settings.*kind.ignored;
    job.hostCore.v8->DefaultActionSystem()->SetDefaultAction(kind.type, ignored ? kIgnore : kind.failAction, 0,
                                                             nullptr);
    log_file << (ignored ? kind.ignoring : kind.notIgnoring) << LogFile::endl;
  }
}

void reportDefaultActions(JobState& job, win32::simple_socket& connection) {
  sendStdoutLine(connection, u"Checking default actions");
  std::uint32_t action = 0;
  for (const MissingKind& kind : kKinds) {
    job.hostCore.v8->DefaultActionSystem()->GetDefaultAction(kind.type, action);
    sendStdoutLine(connection, std::u16string(kind.label) + (action == kIgnore ? u"IGNORE" : u"FAIL"));
  }
}

}  // namespace corvantis

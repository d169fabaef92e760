// A command line is split, its word looked up in the table of commands, its parameters counted by the row's rule, and
// the row's step run. Most settings are rows alone: a row form says what becomes of the parameters.
#include "plugin/daemon/dispatch.h"

#include <algorithm>
#include <boost/tokenizer.hpp>
#include <concepts>

#include "plugin/daemon/commands.h"
#include "plugin/util/log_file.h"
#include "plugin/util/text.h"

namespace corvantis {
namespace {

using Kind = CountRule::Kind;

constexpr CountRule any;
constexpr CountRule exactly(std::size_t count) { return {Kind::exactly, count}; }
constexpr CountRule atLeast(std::size_t count) { return {Kind::atLeast, count}; }

// The group of settings that a member of JobSettings belongs to.
template <class Value>
constexpr SettingGroup groupOf(Value OneJobSettings::*) {
  return SettingGroup::oneJob;
}
template <class Value>
constexpr SettingGroup groupOf(Value OpeningSettings::*) {
  return SettingGroup::opening;
}
template <class Value>
constexpr SettingGroup groupOf(Value LastingSettings::*) {
  return SettingGroup::lasting;
}

template <auto Flag, bool Value = true>
void setFlag(const CommandCall& call) {
  call.job.settings.*Flag = Value;
}

std::u16string withBackslashes(const std::u16string& path) { return replace_all(path, u"/", u"\\"); }

// Row forms. Sets a flag; parameters are not looked at.
template <auto Flag, bool Value = true>
constexpr CommandRow flag(std::string_view word) {
  return {.word = word, .parameters = any, .run = setFlag<Flag, Value>, .group = groupOf(Flag)};
}

// Stores a number; another text is an error, "... is not a valid <meaning>.".
template <auto Number>
constexpr CommandRow number(std::string_view word, const char16_t* meaning) {
  const CommandStep store = [](const CommandCall& call) {
    const std::optional<std::int32_t> value = integerIn(call.parameters[0]);
    if (!value) return replyError(call, invalidParameter(call, 0, std::u16string(u"a valid ") + call.row.meaning));
    call.job.settings.*Number = *value;
  };
  return {.word = word, .parameters = exactly(1), .run = store, .meaning = meaning, .group = groupOf(Number)};
}

// Stores paths, one a parameter, with backslashes.
template <auto First, auto... Others>
constexpr CommandRow folders(std::string_view word) {
  const CommandStep store = [](const CommandCall& call) {
    auto parameter = call.parameters.begin();
    call.job.settings.*First = withBackslashes(*parameter);
    ((call.job.settings.*Others = withBackslashes(*++parameter)), ...);
  };
  return {.word = word, .parameters = exactly(1 + sizeof...(Others)), .run = store, .group = groupOf(First)};
}

// Runs the handler, which switches something on; another number of parameters switches it off.
template <auto... Flags>
constexpr CommandRow switched(std::string_view word, std::size_t count, CommandStep run,
                              const char* announcement = nullptr) {
  const CommandStep turnOff = [](const CommandCall& call) { ((call.job.settings.*Flags = false), ...); };
  const SettingGroup groups[] = {groupOf(Flags)...};
  return {.word = word,
          .parameters = {Kind::exactlyOrOff, count, turnOff},
          .run = run,
          .announcement = announcement,
          .group = groups[0]};
}

// The same around a text, which is stored.
template <auto Flag, auto Text>
constexpr CommandRow switchedText(std::string_view word, const char* announcement = nullptr,
                                  const char* note = nullptr) {
  const CommandStep store = [](const CommandCall& call) {
    call.job.settings.*Flag = true;
    call.job.settings.*Text = call.parameters[0];
    if (call.row.note != nullptr) log_file << call.row.note << call.parameters[0] << LogFile::endl;
  };
  CommandRow row = switched<Flag>(word, 1, store, announcement);
  row.note = note;
  return row;
}

using S = JobSettings;
using namespace protocol::command;

constexpr CommandRow kTable[] = {
    // The job.
    {kRenderTask, exactly(1), renderTask},
    {kCurrentTask, exactly(1), currentTask},
    {kStartJob, exactly(2), startJob},
    {kEndJob, any, endJob},
    {kContinue, any, ignoreContinue},
    // Scripts.
    {kExecuteMaxScriptFile, atLeast(4), executeMaxScriptFile},
    {kExecuteStringScript, atLeast(2), executeStringScript},
    // Settings.
    folders<&S::jobsDataFolder, &S::pluginsFolder>(kSlaveFolders),
    folders<&S::tempFolder>(kTempFolder),
    number<&S::frameNumberBase>(kFrameNumberBase, u"value for frame number base"),
    flag<&S::removePadding>(kRemovePadding),
    flag<&S::localRendering>(kLocalRendering),
    flag<&S::useAltOutput, false>(kDisableAltOutput),
    flag<&S::restartRendererMode>(kRestartRendererMode),
    flag<&S::showFrameBuffer, false>(kHideFrameBuffer),
    flag<&S::disableMultipass>(kDisableMultipass),
    flag<&S::ignoreMissingExternalFiles>(kIgnoreMissingExternalFiles),
    flag<&S::ignoreMissingUVWs>(kIgnoreMissingUvws),
    flag<&S::ignoreMissingDLLs>(kIgnoreMissingDlls),
    flag<&S::ignoreMissingXREFs>(kIgnoreMissingXrefs),
    flag<&S::mergePathConfigFile>(kMergePathConfigFile),
    switchedText<&S::usePathConfigFile, &S::pathConfigFile>(kPathConfigFile, "Setting alternate path config file",
                                                            "Using alternate path config file "),
    switchedText<&S::useOutputImageFilename, &S::outputImageFilename>(
        kOutputImageFilename, "Setting output image filename", "Saving output to "),
    switchedText<&S::useJpegOutput, &S::jpegOutputPath>(kUseJpegOutput),
    switched<&S::overrideSaveFile, &S::overrideSaveFileValue>(kOverrideSaveFile, 1, overrideSaveFile,
                                                              "Overriding save file option"),
    switched<&S::gammaCorrection>(kGammaCorrection, 2, setGamma),
    switched<&S::failOnBlackFrames>(kFailOnBlackFrames, 2, setBlackFrameCheck),
    flag<&S::blackFramesCheckRenderElements>(kBlackFramesCheckRenderElements),
    switched<&S::useRenderElementFilenames>(kOutputImageReFilename, 2, setElementFilename),
    flag<&S::saveRenderElements, false>(kIgnoreRenderElements),
    {kIgnoreRenderElementsByName, any, ignoreElementsByName},
    {kRegionRendering, exactly(6), setRegion, setFlag<&S::regionRendering>},
};

// What is sent before a job starts must survive its start, and what its start uses must be sent before.
static_assert(std::ranges::all_of(kTable, [](const CommandRow& row) {
  const bool sentBefore = precedesStartJob(row.word);
  return row.group == SettingGroup::opening ? sentBefore : row.group != SettingGroup::oneJob || !sentBefore;
}));

const CommandRow* findRow(const std::u16string& word) {
  const auto row = std::ranges::find_if(kTable, [&](const CommandRow& candidate) {
    return std::equal(word.begin(), word.end(), candidate.word.begin(), candidate.word.end());
  });
  return row == std::end(kTable) ? nullptr : &*row;
}

void logLine(const std::u16string& line, std::span<const std::u16string> fields) {
  log_file << "Command: " << line << LogFile::endl;
  for (const std::u16string& field : fields) log_file << field << LogFile::endl;
  log_file << LogFile::endl;
}

void replyCountError(const CommandCall& call) {
  const std::size_t expected = call.row.parameters.count;
  replyError(call, u"Expected " + to_wstring(std::uint64_t{expected}) +
                       (expected == 1 ? u" parameter, got " : u" parameters, got ") +
                       to_wstring(std::uint64_t{call.parameters.size()}));
}

void turnOff(const CommandCall& call) {
  log_file << std::string(call.row.word) << ": requires " << std::uint64_t{call.row.parameters.count}
           << " parameters, got " << std::uint64_t{call.parameters.size()} << ", setting to false" << LogFile::endl;
  call.row.parameters.turnOff(call);
}

// Counts the parameters by the row's rule and runs the row's steps accordingly.
void runCommand(const CommandCall& call) {
  const CommandRow& row = call.row;
  const std::size_t expected = row.parameters.count, received = call.parameters.size();
  if (row.announcement != nullptr) log_file << row.announcement << LogFile::endl;
  if (row.begin != nullptr) row.begin(call);
  switch (row.parameters.kind) {
    case Kind::notExamined:
      return row.run(call);
    case Kind::exactly:
      return received == expected ? row.run(call) : replyCountError(call);
    case Kind::atLeast:
      return received >= expected ? row.run(call) : replyCountError(call);
    case Kind::exactlyOrOff:
      return received == expected ? row.run(call) : turnOff(call);
  }
}

}  // namespace

void dispatchCommand(JobState& job, win32::simple_socket& connection, const std::u16string& line) {
  const std::vector<std::u16string> fields = splitCommandLine(line);
  logLine(line, fields);
  const std::u16string word = fields.empty() ? std::u16string() : fields.front();
  const CommandRow* row = findRow(word);
  if (row == nullptr) return sendReply(connection, protocol::kError, u"Unexpected command \"" + word + u"\" received.");
  runCommand({job, connection, *row, std::span(fields).subspan(1)});
}

std::vector<std::u16string> splitCommandLine(const std::u16string& line) {
  using Separator = boost::escaped_list_separator<char16_t>;
  using Fields = boost::tokenizer<Separator, std::u16string::const_iterator, std::u16string>;
  const Fields fields(line, Separator(u'\\', u',', u'"'));
  return {fields.begin(), fields.end()};
}

}  // namespace corvantis

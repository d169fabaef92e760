#include "worker/conversation/answers.h"

#include <gtest/gtest.h>

namespace worker {
namespace {

TEST(Answers, EveryQuestionHasAnAnswer) {
  Job job;
  job.jobInfo = {{"Name", "orrery"}, {"Comment", ""}};
  job.submitInfo = {{"Pool", {"all"}}, {"Files", {"a b.txt", "c.txt"}}};
  job.auxFiles = {"/jobs/setup.ini"};
  job.pathMappings = {{"Z:\\assets", "/mnt/assets"}, {"z:", "/mnt/z"}};
  const struct {
    const char* word;
    const char* argument;
    const char* answer;
  } cases[] = {
      {"GETJOBINFOENTRY", "Name", "SUCCESS: orrery"},
      {"GETJOBINFOENTRY", "Comment", "SUCCESS: "},
      {"GETJOBINFOENTRY", "name", "ERROR: no job entry \"name\""},
      {"GETSUBMITINFOENTRY", "Pool", "SUCCESS: all"},
      {"GETSUBMITINFOENTRY", "Files", "SUCCESS: a b.txt;c.txt"},
      {"GETSUBMITINFOENTRY", "None", "ERROR: no submission entry \"None\""},
      {"GETSUBMITINFOENTRYELEMENTCOUNT", "Files", "SUCCESS: 2"},
      {"GETSUBMITINFOENTRYELEMENT", "1 Files", "SUCCESS: c.txt"},
      {"GETSUBMITINFOENTRYELEMENT", "2 Files", "ERROR: element 2 does not exist; there are 2"},
      {"GETSUBMITINFOENTRYELEMENT", "-1 Files", "ERROR: element -1 does not exist; there are 2"},
      {"GETAUXFILE", "0", "SUCCESS: /jobs/setup.ini"},
      {"GETAUXFILE", "x", "ERROR: auxiliary file x does not exist; there are 1"},
      {"GETPATHMAPPEDFILENAME", "Z:/Assets/wood.png", "SUCCESS: /mnt/assets/wood.png"},
      {"GETPATHMAPPEDFILENAME", "Z:\\other.png", "SUCCESS: /mnt/z\\other.png"},
      {"GETPATHMAPPEDFILENAME", "C:\\other.png", "SUCCESS: C:\\other.png"},
  };
  for (const auto& c : cases)
    EXPECT_EQ(answerQuestion(job, c.word, c.argument), c.answer) << c.word << " " << c.argument;
}

}  // namespace
}  // namespace worker

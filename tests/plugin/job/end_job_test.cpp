#include "plugin/job/end_job.h"

#include "plugin/job/start_job.h"
#include "support/job_fixture.h"

namespace corvantis {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

class EndOfJob : public support::JobFixture {
 protected:
  EndOfJob() {
    StartJob(job, u"C:\\scene.max", u"");
    host.calls.clear();
  }
  const std::string noJob = "EndJob called when consistency check flag jobRunning was not set";
};

TEST_F(EndOfJob, EmptiesTheSceneAndForgetsTheMultipassEffect) {
  job.multipassEffect = &host.core.addEffect();
  EndJob(job);
  EXPECT_THAT(host.calls.lines(), ElementsAre("ResetScene 1"));
  EXPECT_FALSE(job.jobRunning);
  EXPECT_EQ(job.multipassEffect, nullptr);
}

TEST_F(EndOfJob, ClosesARendererThatIsOpenFirst) {
  job.rendererOpen = true;
  EndJob(job);
  EXPECT_THAT(host.calls.lines(), ElementsAre("CloseCurRenderer", "ResetScene 1"));
  EXPECT_FALSE(job.rendererOpen);
}

TEST_F(EndOfJob, IsRefusedWithoutAJob) {
  EndJob(job);
  host.calls.clear();
  job.rendererOpen = true;
  EXPECT_EQ(errorOf([&] { EndJob(job); }), noJob);
  EXPECT_THAT(host.calls.lines(), ElementsAre());
  EXPECT_TRUE(job.rendererOpen);
}

TEST_F(EndOfJob, IsRefusedAfterAFailedStart) {
  EndJob(job);
  host.core.isSceneFile = false;
  EXPECT_NE(errorOf([&] { StartJob(job, u"C:\\scene.max", u""); }), "");
  EXPECT_EQ(errorOf([&] { EndJob(job); }), noJob);
}

TEST_F(EndOfJob, LetsThrownErrorsOfTheHostPassTheTrap) {
  std::string sehText = "old";
  host.calls.on("ResetScene", support::throwingStandard("no reset"));
  EXPECT_EQ(errorOf([&] { trappedEndJob(job, sehText); }), "no reset");
  EXPECT_EQ(sehText, "");
  EXPECT_TRUE(job.jobRunning);
}

TEST_F(EndOfJob, StaysOpenWhenTheRendererFaultsWhileClosing) {
  job.rendererOpen = true;
  host.calls.on("CloseCurRenderer", support::onCall(1, support::writingToNull()));
  const std::string error = errorOf([&] { EndJob(job); });
  EXPECT_THAT(error, StartsWith("Trapped SEH Exception in CloseCurRenderer(): Access Violation\nProcess:  "));
  EXPECT_EQ(error, "Trapped SEH Exception in CloseCurRenderer(): Access Violation\n" + job.crashDescription);
  EXPECT_TRUE(job.jobRunning);
  EXPECT_TRUE(job.rendererOpen);
  EXPECT_EQ(host.calls.count("ResetScene"), 0);

  EndJob(job);  // the next attempt closes it
  EXPECT_FALSE(job.jobRunning);
  EXPECT_FALSE(job.rendererOpen);
}

TEST_F(EndOfJob, ReportsAFaultInTheResetAndEndsAtTheNextAttempt) {
  std::string sehText;
  host.calls.on("ResetScene", support::onCall(1, support::dividingByZero()));
  trappedEndJob(job, sehText);
  EXPECT_EQ(sehText, "Trapped SEH Exception in EndJob(): Integer Divide By Zero");
  EXPECT_THAT(job.crashDescription, HasSubstr("Exception Code:  C0000094"));
  EXPECT_TRUE(job.jobRunning);

  trappedEndJob(job, sehText);
  EXPECT_EQ(sehText, "");
  StartJob(job, u"C:\\next.max", u"");
  EXPECT_TRUE(job.jobRunning);
}

}  // namespace
}  // namespace corvantis

#include "plugin/job/end_job.h"

#include "plugin/job/start_job.h"
#include "support/job_fixture.h"

namespace corvantis {
namespace {

using namespace testing;

class EndOfJob : public support::JobFixture {
 protected:
  EndOfJob() {
    StartJob(job, u"C:\\scene.max", u"");
    host.calls.clear();
  }
};

TEST_F(EndOfJob, ClosesAnOpenRendererAndEmptiesTheScene) {
  for (const bool open : {false, true}) {
    job.multipassEffect = &host.core.addEffect();
    job.rendererOpen = open;
    host.calls.clear();
    EndJob(job);
    EXPECT_EQ(host.calls.count("CloseCurRenderer"), open ? 1 : 0);
    EXPECT_EQ(host.calls.lines().back(), "ResetScene 1");
    EXPECT_FALSE(job.rendererOpen || job.jobRunning);
    EXPECT_EQ(job.multipassEffect, nullptr);
    StartJob(job, u"C:\\scene.max", u"");
  }
}

TEST_F(EndOfJob, IsRefusedWithoutAJob) {
  EndJob(job);
  host.core.isSceneFile = false;
  EXPECT_NE(errorOf([&] { StartJob(job, u"C:\\scene.max", u""); }), "");
  host.calls.clear();
  job.rendererOpen = true;
  EXPECT_EQ(errorOf([&] { EndJob(job); }), "EndJob called when consistency check flag jobRunning was not set");
  EXPECT_THAT(host.calls.lines(), ElementsAre());
  EXPECT_TRUE(job.rendererOpen);
}

TEST_F(EndOfJob, GoesOnAfterAFaultAndEndsAtTheNextAttempt) {
  job.rendererOpen = true;
  host.calls.on("CloseCurRenderer", support::onCall(1, support::writingToNull()));
  host.calls.on("ResetScene", support::onCall(1, support::dividingByZero()));
  const std::string error = errorOf([&] { EndJob(job); });
  EXPECT_EQ(error, "Trapped SEH Exception in CloseCurRenderer(): Access Violation\n" + job.crashDescription);
  EXPECT_TRUE(job.jobRunning && job.rendererOpen);
  EXPECT_EQ(host.calls.count("ResetScene"), 0);

  EXPECT_EQ(trappedEndJob(job).sehText, "Trapped SEH Exception in EndJob(): Integer Divide By Zero");
  EXPECT_THAT(job.crashDescription, HasSubstr("Exception Code:  C0000094"));
  EXPECT_TRUE(job.jobRunning);
  EXPECT_FALSE(trappedEndJob(job).faulted());
  EXPECT_FALSE(job.jobRunning || job.rendererOpen);
}

}  // namespace
}  // namespace corvantis

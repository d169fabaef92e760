#include "hostsdk/services.h"

#include <gtest/gtest.h>

#include "hostsdk/exceptions.h"
#include "hostsdk/script_runtime.h"

namespace hostsdk {
namespace {

class Gamma : public GammaMgr {
 public:
  void Enable(int) override {}
  void SetFileInGamma(float) override {}
  void SetFileOutGamma(float) override {}
};

TEST(Services, EachIsMissingUntilAHostBindsIt) {
  const HostServices before = bindHost({});
  EXPECT_THROW(GetCOREInterface8(), MAXException);
  EXPECT_THROW(GetCOREInterface11(), MAXException);
  EXPECT_THROW(GetCOREInterface14(), MAXException);
  EXPECT_THROW(GetTicksPerFrame(), MAXException);
  EXPECT_THROW(TheManager(), MAXException);
  EXPECT_THROW(gammaMgr(), MAXException);
  EXPECT_THROW(Log(), MAXException);
  EXPECT_THROW(IPathConfigMgr::GetPathConfigMgr(), MAXException);
  EXPECT_THROW(scriptRuntime(), MAXException);

  Gamma gamma;
  HostServices services;
  services.gamma = &gamma;
  bindHost(services);
  EXPECT_EQ(&gammaMgr(), &gamma);
  EXPECT_THROW(TheManager(), MAXException);
  EXPECT_EQ(bindHost(before).gamma, &gamma) << "what was bound comes back";
}

TEST(BitmapInfo, SettersGiveThePreviousValueAndCopiesShareNothing) {
  BitmapInfo info;
  EXPECT_EQ(info.SetName(u"a"), u"");
  EXPECT_EQ(info.SetName(u"b"), u"a");
  EXPECT_EQ(info.SetWidth(640), 0);
  EXPECT_EQ(info.SetWidth(320), 640);
  info.SetFlags(kMapHasAlpha);
  info.SetFlags(4);
  EXPECT_EQ(info.Flags(), kMapHasAlpha | 4U);
  BitmapInfo copy;
  copy.Copy(info);
  info.SetName(u"c");
  EXPECT_EQ(copy.Name(), u"b");
  EXPECT_EQ(copy.Width(), 320);
}

}  // namespace
}  // namespace hostsdk

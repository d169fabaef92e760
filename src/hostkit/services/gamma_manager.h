// The host's gamma settings for image files.
#pragma once

#include "hostsdk/services.h"

namespace hostkit::services {

// At start gamma is on, 2.2 for files that are written, so that previews look as on any screen.
class GammaManager : public hostsdk::GammaMgr {
 public:
  void Enable(int on) override { enabled_ = on != 0; }
  void SetFileInGamma(float) override {}  // what is read says itself how it is encoded
  void SetFileOutGamma(float gamma) override { fileOut_ = gamma; }

  // The exponent that 8-bit files are written with: 1 when gamma is off or not a positive number.
  float effectiveOut() const { return enabled_ && fileOut_ > 0 ? fileOut_ : 1.0F; }

 private:
  bool enabled_ = true;
  float fileOut_ = 2.2F;
};

}  // namespace hostkit::services

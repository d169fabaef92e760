#include "support/fake_scene.h"

#include <string>

namespace support {

int FakeMultipassEffect::TotalPasses(hostsdk::TimeValue time) {
  return calls_.note("TotalPasses", std::to_string(time)).value_or(passes);
}

hostsdk::ViewParams* FakeMultipassEffect::SetupPass(hostsdk::INode* camera, hostsdk::CameraObject* object, int pass,
                                                    hostsdk::TimeValue& time) {
  const auto answer =
      calls_.note("SetupPass", (camera ? narrow(camera->Name()) : "none") + (object ? " camera" : " none") + " pass " +
                                   std::to_string(pass) + " time " + std::to_string(time));
  time += timeShift * pass;
  return answer && *answer == 0 ? nullptr : &view;
}

void FakeMultipassEffect::AccumulateBitmap(hostsdk::Bitmap* destination, hostsdk::Bitmap* source, int pass,
                                           hostsdk::TimeValue time) {
  calls_.note("AccumulateBitmap", bitmapLabel(destination) + " " + bitmapLabel(source) + " pass " +
                                      std::to_string(pass) + " time " + std::to_string(time));
  const float share = 1.0F / static_cast<float>(passes);
  for (int y = 0; y < destination->Height(); ++y) {
    for (int x = 0; x < destination->Width(); ++x) {
      hostsdk::ColorFloat sum;
      hostsdk::ColorFloat add;
      destination->Storage()->GetLinearPixels(x, y, 1, &sum);
      source->Storage()->GetLinearPixels(x, y, 1, &add);
      sum = {sum.r + add.r * share, sum.g + add.g * share, sum.b + add.b * share, sum.a + add.a * share};
      destination->Storage()->PutLinearPixels(x, y, 1, &sum);
    }
  }
}

void FakeMultipassEffect::Finish() { calls_.note("Finish"); }

bool FakeCamera::MultiPassEffectEnabled(hostsdk::TimeValue time, hostsdk::Interval& valid) {
  const hostsdk::Interval empty;
  const bool startsEmpty = valid.start == empty.start && valid.end == empty.end;
  const auto answer =
      calls_.note("MultiPassEffectEnabled", std::to_string(time) + (startsEmpty ? " empty" : " not empty"));
  valid = {time, time};
  return answer.value_or(effectEnabled ? 1 : 0) != 0;
}

hostsdk::ObjectState FakeNode::EvalWorldState(hostsdk::TimeValue time, bool evalHidden) {
  const auto answer =
      calls_.note("EvalWorldState", narrow(name) + " " + std::to_string(time) + (evalHidden ? " 1" : " 0"));
  return {answer && *answer == 0 ? nullptr : object};
}

FakeElement& FakeElementManager::add(const std::u16string& name, const std::u16string& output) {
  elements.push_back(std::make_unique<FakeElement>());
  elements.back()->name = name;
  elements.back()->output.info.SetName(output);
  return *elements.back();
}

}  // namespace support

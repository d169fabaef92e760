#include "plugin/job/renderer_kind.h"

namespace corvantis {
namespace {

struct KnownRenderer {
  bool JobState::*flag;
  hostsdk::Class_ID classId;
};

constexpr KnownRenderer kKnownRenderers[] = {
    {&JobState::isRendererA, {0x52ad1c02, 0x112d2fbc}},
    {&JobState::isRendererB, {0x73bab286, 0x77f8fd0c}},
    {&JobState::isRendererC, {0x58f67d6c, 0x4fcf3bc3}},
};

}  // namespace

void forgetRenderer(JobState& job) {
  for (const KnownRenderer& known : kKnownRenderers) job.*known.flag = false;
}

void recogniseRenderer(JobState& job) {
  for (const KnownRenderer& known : kKnownRenderers) {
    const hostsdk::Renderer* current = job.hostCore.v8->CurrentRenderer(true);
    if (current && current->ClassID() == known.classId) {
      job.*known.flag = true;
      return;
    }
  }
}

}  // namespace corvantis

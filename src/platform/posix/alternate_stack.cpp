#include "platform/posix/alternate_stack.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace platform::posix {
namespace {

constexpr std::size_t kForTheFilter = std::size_t{128} * 1024;

std::size_t pageSize() { return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE)); }

// A guard page, what the machine itself needs for a signal frame, and room for the filter, in whole pages.
std::size_t sizeWithGuard() {
  const auto frame = static_cast<std::size_t>(std::max(::sysconf(_SC_MINSIGSTKSZ), long{MINSIGSTKSZ}));
  const std::size_t page = pageSize();
  return page + (kForTheFilter + frame + page - 1) / page * page;
}

}  // namespace

AlternateStack::AlternateStack() {
  if (::sigaltstack(nullptr, &previous_) != 0 || (previous_.ss_flags & SS_ONSTACK) != 0) return;
  size_ = sizeWithGuard();
  void* const mapped = ::mmap(nullptr, size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK, -1, 0);
  if (mapped == MAP_FAILED) return;
  memory_ = static_cast<char*>(mapped);
  stack_t ours{};
  ours.ss_sp = memory_ + pageSize();
  ours.ss_size = size_ - pageSize();
  if (::mprotect(ours.ss_sp, ours.ss_size, PROT_READ | PROT_WRITE) == 0 && ::sigaltstack(&ours, nullptr) == 0) return;
  ::munmap(memory_, size_);
  memory_ = nullptr;
}

AlternateStack::~AlternateStack() {
  if (memory_ == nullptr) return;
  ::sigaltstack(&previous_, nullptr);
  ::munmap(memory_, size_);
}

}  // namespace platform::posix

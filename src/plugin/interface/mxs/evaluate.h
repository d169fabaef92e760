// Evaluation of script text: the scope that keeps values from being collected, the text of values and errors, and what
// is printed. Everything here runs on the thread that runs scripts and, but for printToListener, throws MAXException
// "No host is bound" when there is no host.
#pragma once

#include <cstddef>
#include <string>

#include "hostsdk/script_runtime.h"
#include "hostsdk/script_value.h"

namespace corvantis::mxs {

// One allocation frame of the script runtime: what is made inside it is kept alive until it ends.
class AllocationFrame {
 public:
  explicit AllocationFrame(hostsdk::ScriptRuntime& runtime) : runtime_(runtime) { runtime_.push_alloc_frame(); }
  ~AllocationFrame() { runtime_.pop_alloc_frame(); }
  AllocationFrame(const AllocationFrame&) = delete;
  AllocationFrame& operator=(const AllocationFrame&) = delete;

 private:
  hostsdk::ScriptRuntime& runtime_;
};

// Readies the calling thread for script values.
hostsdk::ScriptRuntime& readyRuntime();

[[noreturn]] void throwLinkOutOfBounds(std::size_t capacity);

// An allocation frame with slots for up to `Capacity` values. A value in a slot lives as long as the frame, also when
// it was made inside an inner allocation frame that has ended.
template <std::size_t Capacity>
class frame {
 public:
  frame() : slots_(Capacity), allocations_(readyRuntime()) {}
  frame(const frame&) = delete;
  frame& operator=(const frame&) = delete;

  // The next free slot, holding no value. Throws std::runtime_error
  // "mxs.frame.link: Index out of bounds [<capacity>]" when every slot is taken.
  hostsdk::Value*& link() {
    if (linked_ == Capacity) throwLinkOutOfBounds(Capacity);
    return slots_[linked_++] = nullptr;
  }

 private:
  hostsdk::ScopedValueTempArray slots_;
  AllocationFrame allocations_;  // popped before the slots are released
  std::size_t linked_ = 0;
};

// Compiles everything that `source` holds and evaluates it; errors of the compiler are shown where the thread's scripts
// print. Gives the value of the last expression in its heap form, `undefined` when there is none; the thread's result
// keeps it alive until the next evaluation. Throws std::runtime_error with the printed text of a script error; other
// exceptions pass.
hostsdk::Value* evaluate(hostsdk::CharStream& source);

// What the error prints, as the listener would show it.
std::u16string printedText(const hostsdk::MAXScriptException& error);

// The value's own conversion to text, or what it prints where it has none.
std::u16string textOf(hostsdk::Value& value);

// Prints where the calling thread's scripts print at present, the listener unless a script has turned it elsewhere:
// as it stands, without a line end. Does nothing when no host is bound.
void printToListener(const std::u16string& text);

}  // namespace corvantis::mxs

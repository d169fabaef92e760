// Evaluation of script text and the text of script values and errors. Everything here runs on the thread that runs
// scripts, and throws MAXException "No host is bound" when there is no host.
#pragma once

#include <string>

#include "hostsdk/script_value.h"

namespace corvantis::mxs {

// Compiles everything that `source` holds and evaluates it; errors of the compiler are shown where the thread's scripts
// print. Gives the value of the last expression in its heap form, `undefined` when there is none; the thread's result
// keeps it alive until the next evaluation. Throws std::runtime_error with the printed text of a script error; other
// exceptions pass.
hostsdk::Value* evaluate(hostsdk::CharStream& source);

// What the error prints, as the listener would show it.
std::u16string printedText(const hostsdk::MAXScriptException& error);

// The value's own conversion to text, or what it prints where it has none.
std::u16string textOf(hostsdk::Value& value);

}  // namespace corvantis::mxs

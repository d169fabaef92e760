// Answers to the questions that a plug-in asks while it works.
#pragma once

#include <string>

#include "worker/job/job.h"

namespace worker {

// The reply to question `word` with `argument`: "SUCCESS: " and the value, or "ERROR: " and why there is none.
std::string answerQuestion(const Job& job, const std::string& word, const std::string& argument);

}  // namespace worker

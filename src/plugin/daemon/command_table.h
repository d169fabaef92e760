// Every command that the worker can send.
#pragma once

#include <span>

#include "plugin/daemon/command.h"

namespace corvantis {

std::span<const CommandRow> commandTable();

}  // namespace corvantis

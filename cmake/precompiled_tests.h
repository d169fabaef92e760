// The same for tests, with what every one of them reads.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "precompiled.h"

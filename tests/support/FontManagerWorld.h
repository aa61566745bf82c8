// The world of fakes with its trace to read. For tests that link the facade.
#pragma once

#include <gmock/gmock.h>

#include "CapturedTrace.h"
#include "SilentWorld.h"

class FontManagerWorld : public testing::Test, public SilentWorld {
protected:
    CapturedTrace trace;
};

// An object whose volume layer could not be made.
#pragma once

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "tests/manager/internals.h"
#include "tests/support/application/application.h"
#include "tests/support/transcript.h"

class WithoutVolumeLayer : public testing::Test {
  protected:
    WithoutVolumeLayer() : application_(machine::FactoryMbr()) { application_.pc.journal.Clear(); }
    std::string Records() const { return Transcript(application_.pc.journal); }

    Application application_;
    internals::WithoutVolumeLayer without_{application_.kestova};
    Kestova& kestova_ = application_.kestova;
};

#include "base/com_apartment.h"

#include <gtest/gtest.h>

#include "machine/facts/machines.h"
#include "machine/journal/emulated_pc.h"

namespace {

TEST(ComApartment, Initialized_IsEndedWithItsScope) {
    const machine::EmulatedPc pc(machine::FactoryMbr());
    {
        const ComApartment com;
        EXPECT_EQ(com.Result(), S_OK);
        EXPECT_EQ(ComApartment().Result(), S_FALSE);
        EXPECT_EQ(pc.ledger.Outstanding().at("COM initialization"), 1);
    }
    EXPECT_TRUE(pc.ledger.Outstanding().empty());
    EXPECT_TRUE(pc.ledger.Violations().empty());
}

TEST(ComApartment, Refused_IsNotEnded) {
    machine::EmulatedPc pc(machine::FactoryMbr());
    pc.faults.Arm({.call = "CoInitializeEx", .code = static_cast<uint32_t>(RPC_E_CHANGED_MODE)});
    EXPECT_EQ(ComApartment().Result(), RPC_E_CHANGED_MODE);
    EXPECT_TRUE(pc.journal.Calls("CoUninitialize").empty());
    EXPECT_TRUE(pc.ledger.Violations().empty());
}

}  // namespace

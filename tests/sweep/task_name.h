// The name of a test that has a task of the sweep as its parameter.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "tests/sweep/engine/tasks.h"

// "IsVistaOS_C".
inline std::string NameOfTask(const testing::TestParamInfo<sweep::Task>& tested) {
    std::string name = tested.param.name;
    std::ranges::replace(name, ' ', '_');
    return name;
}

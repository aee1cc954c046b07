#pragma once

#include <unistd.h>

#include <gtest/gtest.h>

#include <string>

// For a file or folder of the running test alone: tests, and those of other builds, run at once.
inline std::string get_scratch_path(std::string const& ending) {
    return testing::TempDir() + "qz_poly_" + std::to_string(getpid()) + "_" +
           testing::UnitTest::GetInstance()->current_test_info()->name() + ending;
}

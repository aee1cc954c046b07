#pragma once

#include <unistd.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <system_error>

// Of this process alone, since tests, and those of other builds, run at once; gone with it.
struct ScratchFolder {
    std::filesystem::path const path = testing::TempDir() + "qz_poly_" + std::to_string(getpid());

    ScratchFolder() { std::filesystem::create_directories(path); }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

// For a file or folder of the running test.
inline std::string get_scratch_path(std::string const& ending) {
    static ScratchFolder const s_folder;
    return s_folder.path / (testing::UnitTest::GetInstance()->current_test_info()->name() + ending);
}

#include <platform/qz_sys.h>
#include <tests/scratch_path.h>

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

TEST(SysFile, WritesAndReadsBack) {
    std::string const name = get_scratch_path("\xC3\xA4.bin");
    CoreString const path(name.c_str());
    std::string const bytes(100000, 'q');
    SysFile file;
    EXPECT_FALSE(file.write("x", 1));
    ASSERT_TRUE(file.open(path, SysFile::MODE_WRITE));
    EXPECT_FALSE(file.has_failed());
    EXPECT_TRUE(file.write(bytes.data(), bytes.size()));
    EXPECT_TRUE(file.close());
    EXPECT_TRUE(file.close());
    EXPECT_TRUE(SysFilesystem::file_exists(path));

    ASSERT_TRUE(file.open(path, SysFile::MODE_READ));
    EXPECT_EQ(file.get_size(), bytes.size());
    std::string read(2 * bytes.size(), '\0');
    EXPECT_EQ(file.read(read.data(), read.size()), bytes.size());
    EXPECT_FALSE(file.has_failed());
    EXPECT_EQ(read.substr(0, bytes.size()), bytes);
    file.close();
}

TEST(SysFile, RefusesWhatIsNoFile) {
    struct Row {
        CoreString path;
        bool exists;
    };
    Row const rows[] = {
        {testing::TempDir().c_str(), true},
        {"/no/such/folder/file", false},
        {"", false},
        {CoreString("/\0x", 3), false},
    };
    for (Row const& row : rows) {
        SysFile file;
        for (SysFile::Mode const mode : {SysFile::MODE_READ, SysFile::MODE_WRITE}) {
            EXPECT_FALSE(file.open(row.path, mode)) << row.path.get_data();
            EXPECT_FALSE(file.is_open());
            EXPECT_TRUE(file.has_failed());
        }
        EXPECT_EQ(SysFilesystem::file_exists(row.path), row.exists) << row.path.get_data();
    }
}

TEST(SysThreadLock, LetsOneThreadIn) {
    constexpr unsigned int thread_count = 8;
    constexpr unsigned int round_count = 5000;
    SysThreadLock lock;
    unsigned int count = 0;
    std::vector<std::thread> threads;
    for (unsigned int thread = 0; thread < thread_count; ++thread) {
        threads.emplace_back([&, thread] {
            for (unsigned int round = 0; round < round_count; ++round) {
                lock.lock(thread % 2);
                if (++count % 16 == 0) {
                    std::this_thread::yield();  // makes others wait
                }
                lock.unlock();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, thread_count * round_count);
}

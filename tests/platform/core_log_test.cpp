#include <platform/qz_core.h>
#include <tests/log_capture.h>

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <thread>
#include <vector>

TEST(CoreLogHandler, PassesMessagesUpToItsLevel) {
    CoreLogHandler& log = CoreLogHandler::get_main();
    EXPECT_EQ(log.get_level(), 3u);
    LogCapture capture(2);
    log.log(3, CoreLogStream() << "no");
    log.log(2, CoreLogStream() << "vertex " << 7u << " at " << 0.5f << '\n');
    EXPECT_EQ(capture.take(), "2 vertex 7 at 0.5\n");
}

TEST(CoreLogHandler, HandsOverOneMessageAtATime) {
    LogCapture capture(3);
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < 100; ++i) {
                CoreLogHandler::get_main().log(1, CoreLogStream() << t * 100 + i << "\n");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::istringstream lines(capture.take());
    std::set<int> numbers;
    int level = 0;
    for (int number = 0; lines >> level >> number;) {
        EXPECT_EQ(level, 1);
        numbers.insert(number);
    }
    EXPECT_EQ(numbers.size(), 800u);
    EXPECT_EQ(*numbers.rbegin(), 799);
}

#include <platform/qz_core.h>
#include <tests/log_capture.h>

#include <gtest/gtest.h>

#include <string>
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
        threads.emplace_back([] {
            for (int i = 0; i < 100; ++i) {
                CoreLogHandler::get_main().log(1, CoreLogStream() << "one message\n");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::string const text = capture.take();
    EXPECT_EQ(text.size(), 800u * 14);
    for (std::size_t i = 0; i < text.size(); i += 14) {
        EXPECT_EQ(text.substr(i, 14), "1 one message\n");
    }
}

#include <platform/qz_event.h>
#include <tests/log_capture.h>

#include <gtest/gtest.h>

QZ_DEFINE_EVENT(test_event, "test.event");

TEST(Event, ReportsTwoNamesOfOneIdentifier) {
    EXPECT_EQ(event_identifier(""), 0x811C9DC5u);
    EXPECT_EQ(event_identifier("foobar"), 0xBF9CF968u);
    EXPECT_TRUE(test_event_is_unique);
    LogCapture capture(2);
    EXPECT_TRUE(event_debug_collisions("test.event", test_event));
    EXPECT_EQ(capture.take(), "");
    EXPECT_FALSE(event_debug_collisions("test.other", test_event));
    EXPECT_EQ(capture.take(), "2 event_debug_collisions: 'test.event' and 'test.other' have one "
                              "identifier.\n");
}

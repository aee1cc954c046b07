#include <platform/qz_app_base.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

// What the callback saw; it asks to stop once the value has come to `stop_at`.
struct Record {
    std::vector<double> values;
    std::vector<std::string> labels;
    double stop_at = 2.0;

    void attach(AppProgressBar& bar) {
        bar.set_callback(
            [](void* user, AppProgressBar const& shown) {
                auto& record = *static_cast<Record*>(user);
                record.values.push_back(shown.get_value());
                record.labels.emplace_back(shown.get_label().get_view());
                return shown.get_value() < record.stop_at;
            },
            this);
    }
};

}  // namespace

TEST(AppProgressBar, RisesThroughNestedTasksInFewCalls) {
    AppProgressBar bar("test");
    Record record;
    record.attach(bar);
    bar.start();
    bar.begin_task("first", 0.5f, false);
    for (char const* label : {"inner", "quiet"}) {
        bar.begin_task(label, 0.25f, label[0] == 'q');
        bar.set_step_count(3000000);
        for (unsigned int i = 0; i < 3000000; ++i) {
            bar.step(i + 1);
        }
        bar.end_task();
    }
    EXPECT_DOUBLE_EQ(bar.get_value(), 0.25);
    bar.set_step_count(4);  // steps of the outer task beside its inner ones
    bar.step(3);
    EXPECT_DOUBLE_EQ(bar.get_value(), 0.375);
    bar.step(1);
    EXPECT_DOUBLE_EQ(bar.get_value(), 0.375);  // never back
    bar.end_task();
    bar.begin_task("second", 0.5f, false);
    bar.set_value(2.0);
    bar.end_task();
    bar.end_task();  // one too many
    EXPECT_DOUBLE_EQ(bar.get_value(), 1.0);
    bar.finish();

    EXPECT_LE(record.values.size(), 258u);
    EXPECT_GE(record.values.size(), 50u);
    EXPECT_TRUE(std::is_sorted(record.values.begin(), record.values.end()));
    EXPECT_EQ(std::count(record.labels.begin(), record.labels.end(), "quiet"), 0);
    EXPECT_GT(std::count(record.labels.begin(), record.labels.end(), "inner"), 20);
}

TEST(AppProgressBar, StopsWhenAskedTo) {
    AppProgressBar bar("test");
    Record record;
    record.stop_at = 0.5;
    record.attach(bar);
    bar.start();
    bar.set_step_count(100);
    for (unsigned int i = 0; i < 49; ++i) {
        bar.step(i + 1);
    }
    EXPECT_FALSE(bar.is_stop_requested());
    bar.step(50);
    EXPECT_TRUE(bar.is_stop_requested());
    record.stop_at = 2.0;
    bar.start();
    EXPECT_FALSE(bar.is_stop_requested());
    EXPECT_EQ(bar.get_value(), 0.0);
}

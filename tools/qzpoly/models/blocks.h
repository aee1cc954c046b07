#pragma once

#include <platform/qz_app_base.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

// Calls work(i) for every i below `count`, each once, on `thread_count` threads. The steps of the
// task that is open in `progress` are counted. False, with some left out, when it was asked to
// stop.
template <typename Work>
bool work_in_blocks(unsigned int const& count, unsigned int const& thread_count,
                    AppProgressBar& progress, Work const& work) {
    std::atomic<unsigned int> next{0};
    auto const work_once = [&] {
        unsigned int const block = next.fetch_add(1);
        if (block >= count || progress.is_stop_requested()) {
            return false;
        }
        work(block);
        return true;
    };
    std::vector<std::jthread> helpers;
    for (unsigned int i = 1; i < thread_count; ++i) {
        helpers.emplace_back([&] {
            while (work_once()) {
            }
        });
    }
    progress.set_step_count(count);
    while (work_once()) {
        progress.step(std::min(next.load(), count));
    }
    helpers.clear();  // joins them
    return !progress.is_stop_requested();
}

#pragma once

#include <functional>
#include <memory>

// Bytes of memory that this process holds, files aside, after it gave back what it can.
long long get_resident_size();

// By how much a process that is forked for it grows when it builds this a second time, without what
// the first time left; 0 when it fails.
long long measure_in_child(std::function<std::shared_ptr<void>()> const& build);

#include <bench/memory_use.h>

#include <fstream>
#include <string>

#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

long long get_resident_size() {
    malloc_trim(0);
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("RssAnon:")) {
            return std::stoll(line.substr(8)) * 1024;
        }
    }
    return 0;
}

long long measure_in_child(std::function<std::shared_ptr<void>()> const& build) {
    int ends[2];
    if (pipe(ends) != 0) {
        return 0;
    }
    pid_t const child = fork();
    if (child == 0) {
        mallopt(M_MMAP_THRESHOLD, 1 << 14);  // what is freed goes back, of small models too
        build();                             // what is made on first use is no part of it
        long long const before = get_resident_size();
        std::shared_ptr<void> kept = build();
        long long const growth = get_resident_size() - before;
        kept.reset();
        _exit(write(ends[1], &growth, sizeof growth) == sizeof growth ? 0 : 1);
    }
    close(ends[1]);
    long long growth = 0;
    if (read(ends[0], &growth, sizeof growth) != sizeof growth) {
        growth = 0;
    }
    close(ends[0]);
    waitpid(child, nullptr, 0);
    return growth;
}

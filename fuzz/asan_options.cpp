// Inputs are small and many, so freed memory need not be kept for long.
extern "C" char const* __asan_default_options() {
    return "quarantine_size_mb=8:malloc_context_size=12:detect_leaks=1";
}

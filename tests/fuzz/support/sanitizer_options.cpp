// AddressSanitizer's options for many short runs: the memory that it holds back stays small, a
// block is not filled, and a stack of few frames is kept with it. ASAN_OPTIONS overrides them.

extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=1:thread_local_quarantine_size_kb=64:malloc_context_size=2:"
           "max_malloc_fill_size=0";
}

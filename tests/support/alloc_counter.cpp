// Two ways to see every allocation: under AddressSanitizer its allocator
// hooks; elsewhere by interposing the C allocation functions, which the
// shared library and libstdc++'s operator new reach through the PLT.
#include "support/support.hpp"

#include <atomic>
#include <cstdlib>

namespace {
std::atomic<std::size_t> g_allocations{0};
}

namespace smsutil::test {
std::size_t allocation_count() { return g_allocations.load(std::memory_order_relaxed); }
}  // namespace smsutil::test

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define SMSUTIL_TEST_ASAN 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define SMSUTIL_TEST_ASAN 1
#endif

#if defined(SMSUTIL_TEST_ASAN)

#include <sanitizer/allocator_interface.h>

namespace {
void on_malloc(const volatile void *, std::size_t) { g_allocations.fetch_add(1, std::memory_order_relaxed); }
void on_free(const volatile void *) {}
struct InstallHooks {
    InstallHooks() { __sanitizer_install_malloc_and_free_hooks(on_malloc, on_free); }
} g_install_hooks;
}  // namespace

#else

extern "C" {
void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void *__libc_realloc(void *, std::size_t);
void *__libc_memalign(std::size_t, std::size_t);

void *malloc(std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

void *calloc(std::size_t n, std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(n, size);
}

void *realloc(void *p, std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(p, size);
}

void *aligned_alloc(std::size_t align, std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_memalign(align, size);
}

void *memalign(std::size_t align, std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_memalign(align, size);
}

int posix_memalign(void **out, std::size_t align, std::size_t size)
{
    g_allocations.fetch_add(1, std::memory_order_relaxed);
    void *p = __libc_memalign(align, size);
    if (p == nullptr) return 12;  // ENOMEM
    *out = p;
    return 0;
}
}

#endif

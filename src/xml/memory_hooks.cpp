// The process-wide memory-function table: every byte the XML library
// allocates or releases goes through it.
#include <cstdlib>
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

// Wrappers rather than the C functions themselves: taking the address of
// a library function is not guaranteed to be a constant expression.
void *platform_malloc(size_t size) { return std::malloc(size); }
void *platform_calloc(size_t count, size_t size) { return std::calloc(count, size); }
void platform_free(void *ptr) { std::free(ptr); }
void *platform_realloc(void *ptr, size_t size) { return std::realloc(ptr, size); }

XML_MemHooks g_hooks = {platform_malloc, platform_calloc, platform_free, platform_realloc};

}  // namespace

// Calls through the table are not type-checked by the sanitizer runtime:
// its check lives in the C++ part of that runtime, which a C program
// linking the library does not carry, and the table's types are fixed by
// the registration signature anyway.
#if defined(__clang__)
#define XML_HOOK_CALL __attribute__((no_sanitize("function")))
#else
#define XML_HOOK_CALL
#endif

namespace smsutil::xml {

void *alloc_zeroed(std::size_t size)
{
    void *block = XML_Malloc(size);
    if (block != nullptr) std::memset(block, 0, size);
    return block;
}

char *copy_bytes(const char *text, std::size_t len)
{
    if (len == 0) return nullptr;
    auto *copy = static_cast<char *>(XML_Malloc(len + 1));
    if (copy == nullptr) return nullptr;
    std::memcpy(copy, text, len);
    copy[len] = '\0';
    return copy;
}

}  // namespace smsutil::xml

extern "C" SMSUTIL_API XML_HOOK_CALL void *XML_Malloc(size_t size) { return g_hooks.pfnMalloc(size); }

extern "C" SMSUTIL_API XML_HOOK_CALL void *XML_Calloc(size_t count, size_t size)
{
    return g_hooks.pfnCalloc(count, size);
}

extern "C" SMSUTIL_API XML_HOOK_CALL void *XML_Realloc(void *ptr, size_t size) { return g_hooks.pfnRealloc(ptr, size); }

extern "C" SMSUTIL_API XML_HOOK_CALL void XML_Free(void *ptr)
{
    if (ptr != nullptr) g_hooks.pfnFree(ptr);
}

extern "C" SMSUTIL_API uint32_t NDL_XML_RegMemFunc(XML_MallocFunc pfnMalloc, XML_CallocFunc pfnCalloc,
                                                   XML_FreeFunc pfnFree, XML_ReallocFunc pfnRealloc)
{
    if (pfnMalloc == nullptr || pfnCalloc == nullptr || pfnFree == nullptr || pfnRealloc == nullptr)
        return XML_ERR_PARAM;
    g_hooks = {pfnMalloc, pfnCalloc, pfnFree, pfnRealloc};
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_RegDebugFunc(XML_DebugFunc /*pfnDebug*/) { return XML_ERR_NOT_FOUND; }

extern "C" SMSUTIL_API void NDL_XML_FreeMem(void *ptr) { XML_Free(ptr); }

extern "C" SMSUTIL_API const char *GRV_XML_GetVersion(void) { return "V1.01"; }

// The growable text buffer behind the serializer.  It grows in fixed
// steps (or by a larger single insertion) and shrinks only when an
// assignment leaves more than one step unused.
#include <cstdint>
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

constexpr uint32_t kDefaultGrowBy = 1024;

uint32_t reserve(XML_MemBuf *buf, uint32_t needed)
{
    uint64_t capacity = 0;
    if (needed < buf->length) {
        if (buf->capacity - needed <= buf->growBy) return XML_OK;
        capacity = static_cast<uint64_t>(needed) + buf->growBy;
    } else {
        if (needed <= buf->capacity) return XML_OK;
        const uint32_t extra = needed - buf->length;
        capacity = static_cast<uint64_t>(buf->capacity) + (extra > buf->growBy ? extra : buf->growBy);
    }
    // The terminator needs one byte beyond the capacity, and lengths are
    // 32-bit: a step that would pass that limit falls back to the exact size.
    if (capacity >= UINT32_MAX) capacity = needed;
    if (needed >= UINT32_MAX) return XML_ERR_NO_MEMORY;
    void *data = XML_Realloc(buf->data, static_cast<size_t>(capacity) + 1);
    if (data == nullptr) {
        capacity = needed;
        data = XML_Realloc(buf->data, static_cast<size_t>(capacity) + 1);
        if (data == nullptr) return XML_ERR_NO_MEMORY;
    }
    buf->data = static_cast<char *>(data);
    buf->capacity = static_cast<uint32_t>(capacity);
    return XML_OK;
}

// Offset of source inside the buffer's bytes, or -1 when it lies outside
// (the source may move when the buffer is reallocated).
int64_t offset_inside(const XML_MemBuf *buf, const char *source)
{
    if (buf->data == nullptr) return -1;
    const auto begin = reinterpret_cast<uintptr_t>(buf->data);
    const auto at = reinterpret_cast<uintptr_t>(source);
    if (at < begin || at > begin + buf->length) return -1;
    return static_cast<int64_t>(at - begin);
}

}  // namespace

extern "C" SMSUTIL_API void XML_MembufInit(XML_MemBuf *buffer)
{
    if (buffer == nullptr) return;
    buffer->data = nullptr;
    buffer->length = 0;
    buffer->capacity = 0;
    buffer->growBy = kDefaultGrowBy;
}

extern "C" SMSUTIL_API void XML_MembufDestroy(XML_MemBuf *buffer)
{
    if (buffer == nullptr) return;
    XML_Free(buffer->data);
    XML_MembufInit(buffer);
}

extern "C" SMSUTIL_API uint32_t XML_MemBufInsert(XML_MemBuf *buffer, const char *source, uint32_t count,
                                                 uint32_t position)
{
    if (buffer == nullptr || position > buffer->length) return XML_ERR_PARAM;
    if (count == 0 || source == nullptr) return XML_OK;
    if (count > UINT32_MAX - 1 - buffer->length) return XML_ERR_NO_MEMORY;
    const int64_t self_offset = offset_inside(buffer, source);
    if (self_offset >= 0 && static_cast<uint64_t>(self_offset) + count > buffer->length) return XML_ERR_PARAM;
    const uint32_t rc = reserve(buffer, buffer->length + count);
    if (rc != XML_OK) return rc;
    char *data = buffer->data;
    std::memmove(data + position + count, data + position, buffer->length - position);
    if (self_offset < 0) {
        std::memcpy(data + position, source, count);
    } else {
        // Inserting part of the buffer into itself: the bytes before the
        // insertion point stayed, those after it moved up by count.
        const auto off = static_cast<uint64_t>(self_offset);
        const uint64_t before = off < position ? (position - off < count ? position - off : count) : 0;
        std::memmove(data + position, data + off, before);
        std::memmove(data + position + before, data + (off + before) + count, count - before);
    }
    buffer->length += count;
    data[buffer->length] = '\0';
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t XML_MemBufAppend(XML_MemBuf *buffer, const char *byte)
{
    if (buffer == nullptr) return XML_ERR_PARAM;
    return XML_MemBufInsert(buffer, byte, 1, buffer->length);
}

extern "C" SMSUTIL_API uint32_t XML_MemBufAppendStr(XML_MemBuf *buffer, const char *text)
{
    if (buffer == nullptr) return XML_ERR_PARAM;
    if (text == nullptr) return XML_OK;
    const std::size_t len = std::strlen(text);
    if (len >= UINT32_MAX) return XML_ERR_NO_MEMORY;
    return XML_MemBufInsert(buffer, text, static_cast<uint32_t>(len), buffer->length);
}

extern "C" SMSUTIL_API uint32_t XML_MemBufAssign(XML_MemBuf *buffer, const char *source, uint32_t count)
{
    if (buffer == nullptr) return XML_ERR_PARAM;
    if (source == nullptr) {
        XML_MembufDestroy(buffer);
        return XML_OK;
    }
    if (offset_inside(buffer, source) >= 0) {
        // Assigning a part of the buffer to itself: move it first, so that
        // a shrinking reallocation cannot pull the source away.
        if (count > buffer->length) return XML_ERR_PARAM;
        std::memmove(buffer->data, source, count);
        buffer->length = count;
        buffer->data[count] = '\0';
        return XML_OK;
    }
    const uint32_t rc = reserve(buffer, count);
    if (rc != XML_OK) return rc;
    buffer->length = count;
    if (buffer->data == nullptr) return XML_OK;  // nothing assigned to a buffer that never grew
    std::memcpy(buffer->data, source, count);
    buffer->data[count] = '\0';
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t XML_MemBufAssignStr(XML_MemBuf *buffer, const char *text)
{
    if (buffer == nullptr) return XML_ERR_PARAM;
    if (text == nullptr) return XML_MemBufAssign(buffer, nullptr, 0);
    const std::size_t len = std::strlen(text);
    if (len >= UINT32_MAX) return XML_ERR_NO_MEMORY;
    return XML_MemBufAssign(buffer, text, static_cast<uint32_t>(len));
}

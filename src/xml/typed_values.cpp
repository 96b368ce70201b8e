// Booleans and 8/16/32-bit integers read from and written to node text.
// Reading is strict: the whole text must be the number, and no step of
// the evaluation may overflow 32 bits whatever its length.
#include <cstdio>
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

constexpr uint32_t kLastType = XML_VAL_UINT8;
constexpr uint32_t kGroupScale = 100000000u;  // eight decimal digits
constexpr std::size_t kMaxSignificantDigits = 24;

struct DigitGroups {
    uint32_t high = 0;
    uint32_t middle = 0;
    uint32_t low = 0;
};

uint32_t digits_value(const char *text, std::size_t count)
{
    uint32_t value = 0;
    for (std::size_t i = 0; i < count; ++i) value = value * 10u + static_cast<uint32_t>(text[i] - '0');
    return value;
}

// Splits a run of significant digits into the last eight (low), the eight
// before them (middle) and the rest (high).
bool split_digits(const char *digits, std::size_t count, DigitGroups &groups)
{
    if (count > kMaxSignificantDigits) return false;
    const std::size_t low_count = count < 8 ? count : 8;
    const std::size_t middle_count = count - low_count < 8 ? count - low_count : 8;
    const std::size_t high_count = count - low_count - middle_count;
    groups.high = digits_value(digits, high_count);
    groups.middle = digits_value(digits + high_count, middle_count);
    groups.low = digits_value(digits + high_count + middle_count, low_count);
    return true;
}

bool is_signed(uint32_t type) { return type == XML_VAL_INT32 || type == XML_VAL_INT16 || type == XML_VAL_INT8; }

bool in_range(uint32_t type, const DigitGroups &g, bool negative)
{
    if (g.high != 0) return false;
    switch (type) {
    case XML_VAL_UINT32:
        return g.middle < 42 || (g.middle == 42 && g.low <= 94967295u);
    case XML_VAL_INT32:
        return g.middle <= 20 || (g.middle == 21 && g.low <= (negative ? 47483648u : 47483647u));
    case XML_VAL_UINT16:
        return g.middle == 0 && g.low <= 65535u;
    case XML_VAL_UINT8:
        return g.middle == 0 && g.low <= 255u;
    case XML_VAL_INT16:
        return g.middle == 0 && g.low <= (negative ? 32768u : 32767u);
    default:  // XML_VAL_INT8
        return g.middle == 0 && g.low <= (negative ? 128u : 127u);
    }
}

uint32_t parse_bool(const char *text, void *out)
{
    uint32_t value = 0;
    if (std::strcmp(text, "0") == 0 || std::strcmp(text, "false") == 0)
        value = 0;
    else if (std::strcmp(text, "1") == 0 || std::strcmp(text, "true") == 0)
        value = 1;
    else
        return XML_ERR_PARAM;
    std::memcpy(out, &value, sizeof value);
    return XML_OK;
}

template <typename T>
void store_as(void *out, uint32_t magnitude, bool negative)
{
    // Two's complement wrap-around gives the negative values, including the
    // most negative one, whose magnitude the type cannot hold.
    const uint32_t bits = negative ? 0u - magnitude : magnitude;
    const T value = static_cast<T>(bits);
    std::memcpy(out, &value, sizeof value);
}

template <typename T>
T load(const void *in)
{
    T value;
    std::memcpy(&value, in, sizeof value);
    return value;
}

}  // namespace

namespace smsutil::xml {

uint32_t parse_value(const XML_Node *node, uint32_t type, void *out)
{
    if (type > kLastType || node == nullptr || out == nullptr || node->value == nullptr) return XML_ERR_PARAM;
    const char *text = node->value;
    if (type == XML_VAL_BOOL) return parse_bool(text, out);

    bool negative = false;
    if (is_signed(type) && (*text == '-' || *text == '+')) negative = *text++ == '-';
    const std::size_t digit_count = std::strspn(text, "0123456789");
    if (digit_count == 0 || text[digit_count] != '\0') return XML_ERR_PARAM;
    while (*text == '0') ++text;  // leading zeros count only as digits present

    DigitGroups groups;
    if (!split_digits(text, std::strlen(text), groups) || !in_range(type, groups, negative)) return XML_ERR_PARAM;
    const uint32_t magnitude = groups.middle * kGroupScale + groups.low;
    switch (type) {
    case XML_VAL_INT32:
    case XML_VAL_UINT32:
        store_as<uint32_t>(out, magnitude, negative);
        break;
    case XML_VAL_INT16:
    case XML_VAL_UINT16:
        store_as<uint16_t>(out, magnitude, negative);
        break;
    default:
        store_as<uint8_t>(out, magnitude, negative);
        break;
    }
    return XML_OK;
}

uint32_t format_value(XML_Node *node, uint32_t type, const void *in)
{
    if (type > kLastType || node == nullptr || in == nullptr) return XML_ERR_PARAM;
    // Narrow types are read at their own width (sign-extended when signed);
    // every integer then prints as the plain decimal "%d"/"%u" would.
    long long number = 0;
    switch (type) {
    case XML_VAL_BOOL:
        number = load<uint32_t>(in) != 0 ? 1 : 0;
        break;
    case XML_VAL_INT32:
        number = load<int32_t>(in);
        break;
    case XML_VAL_UINT32:
        number = load<uint32_t>(in);
        break;
    case XML_VAL_INT16:
        number = load<int16_t>(in);
        break;
    case XML_VAL_UINT16:
        number = load<uint16_t>(in);
        break;
    case XML_VAL_INT8:
        number = load<int8_t>(in);
        break;
    default:
        number = load<uint8_t>(in);
        break;
    }
    char text[32];
    if (type == XML_VAL_BOOL)
        std::snprintf(text, sizeof text, "%s", number != 0 ? "true" : "false");
    else
        std::snprintf(text, sizeof text, "%lld", number);
    drop_string(node, &node->value);
    node->value = XML_Strdup(text);
    return node->value != nullptr ? XML_OK : XML_ERR_NO_MEMORY;
}

}  // namespace smsutil::xml

extern "C" SMSUTIL_API uint32_t NDL_XML_GetNodeValueEx(const XML_Node *node, uint32_t type, void *outValue)
{
    return smsutil::xml::parse_value(node, type, outValue);
}

extern "C" SMSUTIL_API uint32_t NDL_XML_GetAttrValueEx(const XML_Node *element, const char *prefix, const char *name,
                                                       uint32_t type, void *outValue)
{
    if (element == nullptr || name == nullptr || outValue == nullptr) return XML_ERR_PARAM;
    const XML_Node *attr = smsutil::xml::find_attr(element, prefix, name);
    if (attr == nullptr) return XML_ERR_NOT_FOUND;
    return smsutil::xml::parse_value(attr, type, outValue);
}

extern "C" SMSUTIL_API uint32_t NDL_XML_SetNodeValueEx(XML_Node *node, uint32_t type, const void *inValue)
{
    return smsutil::xml::format_value(node, type, inValue);
}

extern "C" SMSUTIL_API uint32_t NDL_XML_SetAttrValueEx(XML_Node *element, const char *prefix, const char *name,
                                                       uint32_t type, const void *inValue)
{
    if (element == nullptr || inValue == nullptr || name == nullptr || name[0] == '\0') return XML_ERR_PARAM;
    XML_Node *attr = smsutil::xml::find_attr(element, prefix, name);
    if (attr != nullptr) return smsutil::xml::format_value(attr, type, inValue);
    attr = XML_NewNode(XML_NODE_ATTR);
    if (attr == nullptr) return XML_ERR_NO_MEMORY;
    uint32_t rc = XML_SetNode(attr, prefix, name, nullptr);
    if (rc == XML_OK) rc = smsutil::xml::format_value(attr, type, inValue);
    if (rc == XML_OK) rc = XML_AddAttrNode(attr, element);
    if (rc != XML_OK) XML_FreeSingleNode(attr);
    return rc;
}

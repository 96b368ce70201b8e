// ComposeSms on any pack, then ParseSms of the PDU as a stored outgoing
// message: the text, the destination and the concatenation fields come
// back.  Input: settings octets, then "address NUL service centre NUL text".
#include <string>

#include "fuzz_input.hpp"
#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"

namespace {

void copy_text(char *dst, std::size_t cap, const std::vector<char> &src)
{
    const std::size_t n = std::min(cap - 1, std::strlen(src.data()));
    std::memcpy(dst, src.data(), n);
    dst[n] = '\0';
}

bool plain_number(const char *s)
{
    if (*s == '+') ++s;
    if (*s == '\0') return false;
    for (; *s != '\0'; ++s) {
        if (*s < '0' || *s > '9') return false;
    }
    return true;
}

// UCS-2 units of a UTF-8 text, without U+0000: an overlong sequence can
// make one, and the transport decoder drops such units as documented.
std::u16string units_of(const char *utf8)
{
    uint8_t buf[2 * SMS_PDU_TEXT_SIZE + 2] = {};
    const int32_t count = UTF8_TO_UCS2(utf8, buf, static_cast<int32_t>(sizeof buf - 2));
    if (count < 0) return u"<error>";
    std::u16string out;
    for (std::size_t i = 0; i < static_cast<std::size_t>(count) && 2 * i + 1 < sizeof buf; ++i) {
        const char16_t u = static_cast<char16_t>(buf[2 * i] | (buf[2 * i + 1] << 8));
        if (u != 0) out += u;
    }
    return out;
}

// The UTF-8 text of 7-bit codes when they read back to exactly themselves
// under the language; empty otherwise.  Codes without a character and a
// trailing escape are sent as they are but refused by the reader, as
// documented: a caller gets them only by skipping UTF8_TO_7BIT.
std::string canonical_text(const uint8_t *codes, uint32_t n, uint32_t coding)
{
    char text[4 * 256 + 1];
    if (BIT7_TO_UTF8(codes, static_cast<int32_t>(n), text, sizeof text, coding) != 0) return {};
    uint8_t again[256];
    uint32_t m = 0;
    if (UTF8_TO_7BIT(text, again, sizeof again, &m, coding) != 0) return {};
    if (m != n || std::memcmp(again, codes, n) != 0) return {};
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const uint8_t flags = in.byte();
    SmsMessage msg{};
    msg.sms_content_code = (flags & 1) != 0 ? SMS_CONTENT_7BIT : SMS_CONTENT_UCS2;
    msg.sms_flag_type = (flags >> 1) & 1;
    msg.byteCoding = (flags >> 2) & 3;
    msg.dwStatusReportRequest = (flags >> 4) & 1;
    msg.mr = in.byte();
    msg.btTotalPack = in.byte();
    msg.btPack = in.byte();
    const fuzzin::TwoTexts first = fuzzin::split_at_nul(in.rest(), in.rest_size());
    copy_text(msg.szAddress, sizeof msg.szAddress, first.first);
    const std::size_t used = first.first.size();
    const fuzzin::TwoTexts second = fuzzin::split_at_nul(in.rest() + std::min(used, in.rest_size()),
                                                         in.rest_size() - std::min(used, in.rest_size()));
    copy_text(msg.sca, sizeof msg.sca, second.first);
    const std::vector<char> &text = second.second;
    if (msg.sms_content_code == SMS_CONTENT_7BIT) {
        // 7-bit packs arrive as codes, one per octet, counted by byContentLen.
        const std::size_t n = std::min<std::size_t>(text.size() - 1, 255);
        for (std::size_t i = 0; i < n; ++i) msg.content[i] = static_cast<char>(text[i] & 0x7F);
        msg.byContentLen = static_cast<uint8_t>(n);
    } else {
        copy_text(msg.content, sizeof msg.content, text);
    }

    // The reader takes service-centre addresses of 1 to 16 digits (a length
    // octet of at most 9); the composer writes longer ones.
    const std::size_t sca_digits = std::strlen(msg.sca) - (msg.sca[0] == '+' ? 1 : 0);
    if (!plain_number(msg.sca) || sca_digits > 16) return 0;
    std::string expected;
    if (msg.sms_content_code == SMS_CONTENT_7BIT) {
        expected = canonical_text(reinterpret_cast<const uint8_t *>(msg.content), msg.byContentLen, msg.byteCoding);
        if (expected.empty() && msg.byContentLen != 0) return 0;
    }
    SmsSendPdu pdu;
    std::memset(&pdu, 0xA5, sizeof pdu);
    if (ComposeSms(&msg, &pdu) != 0) return 0;
    FUZZ_CHECK(std::memchr(pdu.pdu, 0, sizeof pdu.pdu) != nullptr);
    FUZZ_CHECK(pdu.wLength == std::strlen(pdu.pdu));

    SmsReadPdu stored{};
    stored.state = 2;
    std::memcpy(stored.pdu, pdu.pdu, std::min<std::size_t>(pdu.wLength, SMS_PDU_TEXT_SIZE - 1));
    SmsMessage back{};
    FUZZ_CHECK(ParseSms(&stored, &back) == 0);
    if (plain_number(msg.szAddress)) FUZZ_CHECK(std::strcmp(back.szAddress, msg.szAddress) == 0);
    // The concatenation element is written only for 1 <= part <= total.
    if (msg.sms_flag_type == 1 && msg.btPack != 0 && msg.btPack <= msg.btTotalPack) {
        FUZZ_CHECK(back.sms_flag_type == 1 && back.btTotalPack == msg.btTotalPack && back.btPack == msg.btPack);
        FUZZ_CHECK(back.mr == (msg.mr & 0xFF));
    }
    if (msg.sms_content_code == SMS_CONTENT_UCS2) {
        FUZZ_CHECK(units_of(back.content) == units_of(msg.content));
    } else if (msg.byteCoding == GSM7_CODING_DEFAULT) {
        FUZZ_CHECK(expected == back.content);
    }
    return 0;
}

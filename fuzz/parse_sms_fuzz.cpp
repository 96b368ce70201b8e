// ParseSms on any stored-message text and any storage state.
#include <cstring>

#include "fuzz_input.hpp"
#include "smsutil/sms_api.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    SmsReadPdu pdu{};
    pdu.index = in.byte();
    // States beyond 0..3 are as likely as valid ones from a confused caller.
    pdu.state = in.byte();
    const std::size_t n = std::min<std::size_t>(in.rest_size(), SMS_PDU_TEXT_SIZE - 1);
    std::memcpy(pdu.pdu, in.rest(), n);

    SmsMessage msg;
    std::memset(&msg, 0xA5, sizeof msg);
    const int32_t rc = ParseSms(&pdu, &msg);
    FUZZ_CHECK(rc == 0 || rc == -1);
    FUZZ_CHECK(msg.index == pdu.index && msg.state == pdu.state);
    // Every text field stays a terminated string within its array.
    FUZZ_CHECK(std::memchr(msg.szAddress, 0, sizeof msg.szAddress) != nullptr);
    FUZZ_CHECK(std::memchr(msg.sca, 0, sizeof msg.sca) != nullptr);
    FUZZ_CHECK(std::memchr(msg.content, 0, sizeof msg.content) != nullptr);
    if (rc == 0 && msg.sms_content_code == SMS_CONTENT_UCS2) {
        FUZZ_CHECK(msg.byContentLen == static_cast<uint8_t>(std::strlen(msg.content)));
    }
    return 0;
}

// sms_pdu_decode on any octets: it never reads past len (the same input
// with two different tails beyond len gives the same record), the hex
// entry agrees with the octet entry, and every count in the record keeps a
// caller inside the record's arrays.
#include <cstring>
#include <string>

#include "fuzz_input.hpp"
#include "smsutil/sms_pdu.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const unsigned flags = in.byte() & (SMS_PDU_DECODE_NO_SCA | SMS_PDU_DECODE_COMMAND);
    const std::size_t len = in.rest_size();

    constexpr std::size_t kTail = 64;
    fuzzin::Block zeros(len + kTail);
    fuzzin::Block ones(len + kTail);
    if (len != 0) {
        std::memcpy(zeros.data(), in.rest(), len);
        std::memcpy(ones.data(), in.rest(), len);
    }
    std::memset(ones.data() + len, 0xFF, kTail);

    static sms_pdu_record a;
    static sms_pdu_record b;
    static sms_pdu_record h;
    const int rc = sms_pdu_decode(zeros.data(), len, flags, &a);
    FUZZ_CHECK(sms_pdu_decode(ones.data(), len, flags, &b) == rc);
    FUZZ_CHECK(std::memcmp(&a, &b, sizeof a) == 0);

    static const char kDigits[] = "0123456789abcdef";
    std::string hex;
    for (std::size_t i = 0; i < len; ++i) {
        hex += kDigits[zeros.data()[i] >> 4];
        hex += kDigits[zeros.data()[i] & 0x0F];
    }
    FUZZ_CHECK(sms_pdu_decode_hex(hex.data(), hex.size(), flags, &h) == rc);
    FUZZ_CHECK(std::memcmp(&a, &h, sizeof a) == 0);

    FUZZ_CHECK(sms_pdu_result_text(rc)[0] != '\0');
    FUZZ_CHECK(a.user_data_length <= SMS_PDU_USER_DATA_SIZE);
    FUZZ_CHECK(a.header_length <= a.user_data_length);
    FUZZ_CHECK(a.element_count <= SMS_PDU_MAX_ELEMENTS);
    for (unsigned i = 0; i < a.element_count; ++i)
        FUZZ_CHECK(a.elements[i].offset + a.elements[i].length <= a.header_length);
    FUZZ_CHECK(a.text_length < SMS_PDU_UTF8_SIZE && a.text[a.text_length] == '\0');
    FUZZ_CHECK(a.problem_count <= SMS_PDU_MAX_PROBLEMS);
    for (unsigned i = 0; i < a.problem_count; ++i) {
        FUZZ_CHECK(a.problems[i].offset <= len);
        FUZZ_CHECK(sms_pdu_problem_text(a.problems[i].code)[0] != '\0');
    }
    FUZZ_CHECK(std::memchr(a.address.text, '\0', sizeof a.address.text) != nullptr);
    FUZZ_CHECK(std::memchr(a.sca.text, '\0', sizeof a.sca.text) != nullptr);
    return 0;
}

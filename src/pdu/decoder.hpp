// Internal pieces of the PDU decoder: one reader over the whole input, so
// that every offset it reports is an offset of the caller's octets, and
// the record it fills.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "common/octets.hpp"
#include "smsutil/sms_pdu.h"

namespace smsutil::pdu {

struct Decoder {
    common::OctetReader in;
    sms_pdu_record &record;

    void problem(sms_pdu_problem_code code, std::size_t offset)
    {
        if (record.problem_count < SMS_PDU_MAX_PROBLEMS) {
            record.problems[record.problem_count++] = {static_cast<std::uint16_t>(code),
                                                       static_cast<std::uint16_t>(offset)};
        } else if (record.problems_dropped < UINT8_MAX) {
            ++record.problems_dropped;
        }
    }
    // One octet, or the truncation code of the field it belongs to.
    bool octet(std::uint8_t &out) { return in.read(out); }
};

// Appends UTF-8 to a fixed buffer, always leaving room for the terminating
// zero, which goes in when the writer is done; a character that does not
// fit is dropped whole.
class Utf8Out {
public:
    explicit Utf8Out(std::span<char> buf) : buf_(buf) {}
    ~Utf8Out() { buf_[len_] = '\0'; }
    Utf8Out(const Utf8Out &) = delete;
    Utf8Out &operator=(const Utf8Out &) = delete;

    void put(char32_t c)
    {
        if (c < 0x80 && len_ + 1 < buf_.size()) {
            buf_[len_++] = static_cast<char>(c);
            return;
        }
        put_multibyte(c);
    }
    std::size_t size() const { return len_; }

private:
    void put_multibyte(char32_t c);
    std::span<char> buf_;
    std::size_t len_ = 0;
};

// ---- Fields ----
// Address field at the reader (length octet first); length in semi-octets.
sms_pdu_result decode_address(Decoder &d, sms_pdu_address &out);
// Service-centre address: length in octets, type octet included.
sms_pdu_result decode_service_centre(Decoder &d, sms_pdu_address &out);
// Seven-octet time stamp; false when cut.
bool decode_time(Decoder &d, sms_pdu_time &out);
void decode_dcs(Decoder &d, std::uint8_t octet, std::size_t offset, sms_pdu_dcs &out);
// Validity period of the given TP-VPF; false when cut.
bool decode_validity(Decoder &d, unsigned format, sms_pdu_validity &out);

// ---- User data ----
// TP-UDL and TP-UD at the reader, read as the record's DCS and TP-UDHI say.
sms_pdu_result decode_user_data(Decoder &d);
// The 7-bit characters of `septets` through the given tables; septets[0]
// is septet `first` of the packed field at input octet `offset`.
void decode_gsm7(Decoder &d, std::span<const std::uint8_t> septets, unsigned locking, unsigned single,
                 std::size_t offset, std::size_t first, Utf8Out &out);

}  // namespace smsutil::pdu

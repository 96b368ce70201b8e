// A record filled by the standards-true decoder, described as a part.
#include <algorithm>
#include <cstring>

#include "smsutil/sms_reassembly.h"

namespace {

uint8_t content_coding(const sms_pdu_record &record)
{
    if (record.dcs.compressed != 0) return SMS_CONTENT_OTHER;
    switch (record.dcs.alphabet) {
    case SMS_PDU_ALPHABET_GSM7:
        return SMS_CONTENT_7BIT;
    case SMS_PDU_ALPHABET_8BIT:
        return SMS_CONTENT_8BIT;
    default:
        return SMS_CONTENT_UCS2;
    }
}

template <size_t N>
void copy_text(char (&to)[N], const char *from)
{
    std::memcpy(to, from, std::min(std::strlen(from), N - 1));
}

}  // namespace

extern "C" int sms_reasm_part_from_record(const sms_pdu_record *record, sms_reasm_part *part)
{
    if (record == nullptr || part == nullptr) return SMS_REASM_ERR_ARGUMENT;
    std::memset(part, 0, sizeof *part);
    part->kind = record->kind == SMS_PDU_SUBMIT ? SMS_REASM_STORED_OUTGOING : SMS_REASM_RECEIVED;
    if (record->has_concatenation != 0) {
        part->concatenated = 1;
        part->reference_bits = record->concatenation_16bit != 0 ? 16 : 8;
        part->reference = record->concatenation_reference;
        part->total = record->concatenation_total;
        part->number = record->concatenation_part;
    }
    part->coding = content_coding(*record);
    copy_text(part->address, record->address.text);
    copy_text(part->service_centre, record->sca.text);
    // A SUBMIT carries no time stamp; its part keeps year 0 for "none".
    if (record->kind == SMS_PDU_DELIVER || record->kind == SMS_PDU_STATUS_REPORT) {
        const sms_pdu_time &t = record->timestamp;
        part->time = {static_cast<uint16_t>(t.year + (t.year < 96 ? 2000 : 1900)),
                      t.month,
                      t.day,
                      t.hour,
                      t.minute,
                      t.second,
                      t.timezone,
                      1};
    }
    if (part->coding == SMS_CONTENT_8BIT || part->coding == SMS_CONTENT_OTHER) {
        const uint16_t start = std::min(record->header_length, record->user_data_length);
        part->text = reinterpret_cast<const char *>(record->user_data + start);
        part->text_length = static_cast<uint32_t>(record->user_data_length - start);
    } else {
        part->text = record->text;
        part->text_length = record->text_length;
    }
    return 0;
}

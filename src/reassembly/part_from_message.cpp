// A record filled by the message interface, described as a part.
#include <cstring>

#include "smsutil/sms_reassembly.h"

extern "C" int sms_reasm_part_from_message(const SmsMessage *message, sms_reasm_part *part)
{
    if (message == nullptr || part == nullptr) return SMS_REASM_ERR_ARGUMENT;
    std::memset(part, 0, sizeof *part);
    // States 2 and 3 are stored outgoing messages; the address is then the
    // destination, which is what keys their parts.
    part->kind = message->state >= 2 ? SMS_REASM_STORED_OUTGOING : SMS_REASM_RECEIVED;
    part->concatenated = message->sms_flag_type == 1 ? 1 : 0;
    if (part->concatenated != 0) {
        // The record keeps no trace of the element's size; a reference that
        // needs more than 8 bits can only have come in the 16-bit element.
        part->reference_bits = message->mr > 0xFF ? 16 : 8;
        part->reference = message->mr;
        part->total = message->btTotalPack;
        part->number = message->btPack;
    }
    part->coding = static_cast<uint8_t>(message->sms_content_code);
    std::memcpy(part->address, message->szAddress, strnlen(message->szAddress, sizeof message->szAddress - 1));
    std::memcpy(part->service_centre, message->sca, strnlen(message->sca, sizeof message->sca - 1));
    part->time = {
        message->wYear, message->byMonth, message->byDay, message->byHour, message->byMinute, message->bySecond, 0, 0};
    part->text = message->content;
    part->text_length = static_cast<uint32_t>(strnlen(message->content, sizeof message->content - 1));
    return 0;
}

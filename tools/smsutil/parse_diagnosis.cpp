#include "parse_diagnosis.hpp"

#include "smsutil/smsutil.h"

namespace smsutil::cli {
namespace {

constexpr unsigned kMaxServiceCentreOctets = 9;

std::string transport_status_text(wms_status_e_type status)
{
    switch (status) {
    case WMS_TS_STATUS_BAD_ADDRESS:
        return "address longer than 20 digits";
    case WMS_TS_STATUS_BAD_USER_DATA_LENGTH:
        return "user data longer than 140 octets";
    case WMS_TS_STATUS_BAD_TIME:
        return "bad time stamp or validity period";
    case WMS_TS_STATUS_BAD_VALIDITY_FORMAT:
        return "bad validity format";
    default:
        return "status " + std::to_string(status);
    }
}

// The time stamp check of the extraction step: BCD fields, years up to 95.
std::optional<std::string> time_stamp_problem(const wms_timestamp &time)
{
    const uint8_t fields[] = {time.day, time.hour, time.minute, time.month, time.second, time.year};
    static constexpr const char *kNames[] = {"day", "hour", "minute", "month", "second", "year"};
    for (size_t i = 0; i < std::size(fields); ++i) {
        uint8_t value = 0;
        if (wms_ts_bcd_to_int(fields[i], &value) == 0) return std::string("time stamp ") + kNames[i] + " is not BCD";
    }
    uint8_t year = 0;
    wms_ts_bcd_to_int(time.year, &year);
    if (year > 95) return "time stamp year " + std::to_string(year) + " is out of range (00-95)";
    return std::nullopt;
}

std::optional<std::string> decoded_problem(const DecodedTpdu &tpdu)
{
    if (tpdu.status != WMS_TS_STATUS_OK) {
        return "TPDU does not decode: " + transport_status_text(tpdu.status) + " (transport status " +
               std::to_string(tpdu.status) + ")";
    }
    if (const auto *deliver = std::get_if<wms_gw_deliver>(&tpdu.record)) return time_stamp_problem(deliver->timestamp);
    if (const auto *report = std::get_if<wms_gw_status_report>(&tpdu.record)) {
        return time_stamp_problem(report->discharge_time);
    }
    return std::nullopt;
}

}  // namespace

ParseFailure diagnose_parse_failure(const PduText &pdu, uint32_t state, const DecodedTpdu &tpdu)
{
    if (!pdu.error.empty()) return {pdu.error, std::nullopt};
    const unsigned sca_octets = pdu.service_centre[0];
    if (sca_octets > kMaxServiceCentreOctets) {
        return {"service-centre length " + std::to_string(sca_octets) + " is out of range (2-9)", std::nullopt};
    }
    if (sca_octets < 2) return {"service-centre address has no digits", std::nullopt};
    const unsigned mti = pdu.tpdu[0] & 3U;
    if (mti == 3) return {"reserved message type (TP-MTI 3)", std::nullopt};
    if (state < 2 && mti == 1) {
        return {"a SUBMIT TPDU in a received message; stored outgoing messages take --state 2 or 3", std::nullopt};
    }
    if (auto problem = decoded_problem(tpdu)) return {*problem, SMS_ERR_DECODE};
    return {"text does not convert to UTF-8", std::nullopt};
}

}  // namespace smsutil::cli

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "transport_test_support.hpp"

namespace {

using smsutil::test::raw_from_hex;

// MR 0x45 for +31640100986, sent 02-08-26 19:37:41, discharged 19:37:42.
const char kReportHead[] = "06450B911346610089F6208062917314082080629173240800";

struct ReportCase {
    const char *name;
    std::string tail;  // after TP-ST
    uint32_t result;
    uint32_t pi;
    uint8_t pid;
    uint8_t alphabet;
    uint16_t sm_len;
};

class StatusReportDecode : public ::testing::TestWithParam<ReportCase> {};

TEST_P(StatusReportDecode, ReadsWhatTpPiAnnounces)
{
    const auto &c = GetParam();
    const wms_raw_tpdu raw = raw_from_hex(kReportHead + c.tail);
    wms_gw_status_report msg{};
    smsutil::test::AllocationScope scope;
    ASSERT_EQ(wms_ts_decode_status_report(&raw, &msg), c.result);
    EXPECT_EQ(scope.allocations(), 0u);
    EXPECT_EQ(msg.more_msgs_to_send, 0);
    EXPECT_EQ(+msg.message_reference, 0x45u);
    EXPECT_EQ(msg.address.number_of_digits, 11);
    EXPECT_EQ(msg.timestamp.second, 0x41);
    EXPECT_EQ(msg.discharge_time.second, 0x42);
    EXPECT_EQ(msg.tp_status, 0);
    EXPECT_EQ(+msg.parameter_indicator, c.pi);
    EXPECT_EQ(msg.pid, c.pid);
    EXPECT_EQ(msg.dcs.alphabet, c.alphabet);
    EXPECT_EQ(+msg.user_data.sm_len, +c.sm_len);
}

INSTANTIATE_TEST_SUITE_P(
    Tails, StatusReportDecode,
    ::testing::Values(ReportCase{"ends_after_status", "", 0, 0, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"pi_ff_means_none", "FF7F", 0, 0, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"pi_zero", "00", 0, 0, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"pid_only", "0141", 0, 1, 0x41, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"all_three_ucs2", "07000804004100420", 0, 7, 0, WMS_ALPHABET_UCS2, 4},
                      ReportCase{"text_without_dcs_is_7bit", "0402E834", 0, 4, 0, WMS_ALPHABET_GSM7, 2},
                      ReportCase{"announced_pid_missing", "01", 101, 1, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"announced_dcs_missing", "03AA", 101, 3, 0xAA, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"announced_udl_missing", "04", 101, 4, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"text_short", "0403E834", 101, 4, 0, WMS_ALPHABET_GSM7, 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(StatusReportDecodeEdge, ResultCodesForCutFixedFields)
{
    wms_raw_tpdu raw = raw_from_hex(kReportHead);
    wms_gw_status_report msg{};
    raw.len = 9;  // inside the address
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_ADDRESS);
    raw.len = 16;  // inside TP-SCTS
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_TIME);
    raw.len = 23;  // inside TP-DT
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_TIME);
    raw.len = 24;  // TP-ST missing
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
}

TEST(StatusReportDecodeEdge, BoundedOnEveryPrefixAndRandomOctets)
{
    const std::string full = std::string(kReportHead) + "07000805050003010201004100";
    smsutil::test::expect_bounded_on_hostile_input<wms_gw_status_report>(raw_from_hex(full),
                                                                         wms_ts_decode_status_report, 31);
}

}  // namespace

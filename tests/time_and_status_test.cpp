#include <gtest/gtest.h>

#include <string>

#include "smsutil/sms_api.h"
#include "support/log_fixture.hpp"

namespace {

struct StatusCase {
    uint32_t tp_status;
    uint8_t state;
};
class SwitchStatus : public ::testing::TestWithParam<StatusCase> {};
TEST_P(SwitchStatus, MapsTpStatusGroups)
{
    uint8_t tag = 0xEE;
    ASSERT_EQ(SwitchReportStatus(GetParam().tp_status, &tag), 0);
    EXPECT_EQ(tag, GetParam().state);
}
INSTANTIATE_TEST_SUITE_P(
    Values, SwitchStatus,
    ::testing::Values(StatusCase{0x00, SMS_STATUS_DELIVERED}, StatusCase{0x01, SMS_STATUS_COMPLETED},
                      StatusCase{0x02, SMS_STATUS_REPLACED}, StatusCase{0x03, SMS_STATUS_COMPLETED},
                      StatusCase{0x1F, SMS_STATUS_COMPLETED}, StatusCase{0x20, SMS_STATUS_PENDING},
                      StatusCase{0x3F, SMS_STATUS_PENDING}, StatusCase{0x40, SMS_STATUS_FAILED},
                      StatusCase{0x5F, SMS_STATUS_FAILED}, StatusCase{0x60, SMS_STATUS_STOPPED},
                      StatusCase{0x7F, SMS_STATUS_STOPPED}, StatusCase{0xFF, SMS_STATUS_STOPPED},
                      StatusCase{0x100, SMS_STATUS_STOPPED}),
    [](const auto &info) { return "status_" + std::to_string(info.param.tp_status); });

struct TimeCase {
    const char *name;
    wms_timestamp ts;
    int32_t ret;
    uint16_t year;
    const char *message;
};

class DecomposeTime : public smsutil::test::LogTest, public ::testing::WithParamInterface<TimeCase> {};
TEST_P(DecomposeTime, ChecksEachFieldInOrder)
{
    SmsMessageData msg{};
    EXPECT_EQ(DecomposeReadMsgTime(&GetParam().ts, &msg), GetParam().ret);
    if (GetParam().ret == 0) {
        EXPECT_EQ(msg.wYear, GetParam().year);
    }
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("DecomposeReadMsgTime", GetParam().message)) << log_text();
#endif
}
INSTANTIATE_TEST_SUITE_P(
    Stamps, DecomposeTime,
    ::testing::Values(
        TimeCase{"year_95", {0x95, 0x12, 0x31, 0x23, 0x59, 0x59, 0}, 0, 2095,
                 "DecomposeReadMsgTime function run successfully!"},
        TimeCase{"year_00", {0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0}, 0, 2000,
                 "DecomposeReadMsgTime function run successfully!"},
        TimeCase{"year_99", {0x99, 0x01, 0x01, 0x00, 0x00, 0x00, 0}, -1, 0,
                 "The year parsed in DecomposeReadMsgTime function is illegal!"},
        TimeCase{"bad_hour_first", {0xAA, 0xAA, 0x01, 0x1A, 0xAA, 0xAA, 0}, -1, 0,
                 "DecomposeReadMsgTime function parses hour unsuccessfully!"},
        TimeCase{"bad_month_after_minute", {0x24, 0x1F, 0x01, 0x01, 0x01, 0x01, 0}, -1, 0,
                 "DecomposeReadMsgTime function parses month unsuccessfully!"},
        TimeCase{"bad_day", {0x24, 0x01, 0xF1, 0x01, 0x01, 0x01, 0}, -1, 0,
                 "DecomposeReadMsgTime function parses day unsuccessfully!"},
        TimeCase{"bad_second", {0x24, 0x01, 0x01, 0x01, 0x01, 0x0B, 0}, -1, 0,
                 "DecomposeReadMsgTime function parses second unsuccessfully!"},
        TimeCase{"bad_year", {0xB0, 0x01, 0x01, 0x01, 0x01, 0x01, 0}, -1, 0,
                 "DecomposeReadMsgTime function parses year unsuccessfully!"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(SwitchStatusNull, Refused) { EXPECT_EQ(SwitchReportStatus(0, nullptr), -1); }

}  // namespace

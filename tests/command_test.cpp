#include <gtest/gtest.h>

#include <cstring>

#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "transport_test_support.hpp"

namespace {

wms_gw_command known_command()
{
    wms_gw_command cmd{};
    cmd.status_report_request = 1;
    cmd.message_reference = 0x105;  // only the low octet travels
    cmd.pid = 0;
    cmd.command_type = 1;
    cmd.message_number = 3;
    cmd.address.number_type = WMS_NUMBER_INTERNATIONAL;
    cmd.address.number_plan = 1;
    cmd.address.number_of_digits = 4;
    const uint8_t digits[] = {1, 2, 3, 4};
    std::memcpy(cmd.address.digits, digits, 4);
    cmd.command_data_length = 2;
    cmd.command_data[0] = 0xAB;
    cmd.command_data[1] = 0xCD;
    return cmd;
}

TEST(CommandEncode, KnownTpdu)
{
    const wms_gw_command cmd = known_command();
    wms_raw_tpdu raw{};
    smsutil::test::AllocationScope scope;
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
    EXPECT_EQ(smsutil::test::hex_of(raw), "22050001030491214302ABCD");
    EXPECT_EQ(raw.tpdu_type, WMS_TPDU_TYPE_COMMAND);
}

TEST(CommandEncode, BadAddressStopsAfterTheFixedOctets)
{
    wms_gw_command cmd = known_command();
    cmd.address.number_of_digits = 21;
    wms_raw_tpdu raw;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[4], 0x03);
    EXPECT_EQ(raw.data[5], 0x00);
    EXPECT_EQ(+raw.len, 0x77777777u);
}

TEST(CommandEncode, CommandDataThatDoesNotFitIsRefused)
{
    wms_gw_command cmd = known_command();
    std::memset(cmd.command_data, 0x5A, sizeof cmd.command_data);
    wms_raw_tpdu raw{};
    cmd.command_data_length = 255 - 10;  // exactly fills the TPDU
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(+raw.len, 255u);
    cmd.command_data_length = 255 - 9;
    EXPECT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(raw.data[10], 0x00);  // nothing of it was copied
}

}  // namespace

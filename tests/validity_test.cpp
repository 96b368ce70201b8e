#include <gtest/gtest.h>

#include <array>
#include <cstring>

#include "smsutil/wms_ts.h"

namespace {

TEST(Validity, RelativeIsOneOctet)
{
    wms_gw_validity v{};
    v.format = WMS_VP_RELATIVE;
    v.time.day = 0x01;
    std::array<uint8_t, 7> out{};
    EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 1);
    EXPECT_EQ(out[0], 167);
    wms_gw_validity back{};
    back.format = WMS_VP_RELATIVE;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &back), 1);
    EXPECT_EQ(back.time.day, 0x01);
}

TEST(Validity, AbsoluteIsASevenOctetStamp)
{
    wms_gw_validity v{};
    v.format = WMS_VP_ABSOLUTE;
    v.time = wms_timestamp{0x26, 0x01, 0x15, 0x10, 0x30, 0x00, 4};
    std::array<uint8_t, 7> out{};
    EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 7);
    EXPECT_EQ(out[0], 0x62);
    wms_gw_validity back{};
    back.format = WMS_VP_ABSOLUTE;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &back), 7);
    EXPECT_EQ(std::memcmp(&back, &v, sizeof v), 0);
    v.time.month = 0x13;
    EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 0);
}

TEST(Validity, NoneAndEnhancedWriteNothing)
{
    std::array<uint8_t, 7> out;
    out.fill(0xEE);
    wms_gw_validity v{};
    v.time.day = 1;
    for (uint8_t format : {uint8_t{WMS_VP_NONE}, uint8_t{WMS_VP_ENHANCED}, uint8_t{7}}) {
        v.format = format;
        EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 0);
        EXPECT_EQ(out[0], 0xEE);
    }
    wms_gw_validity decoded;
    std::memset(&decoded, 0x33, sizeof decoded);
    decoded.format = WMS_VP_ENHANCED;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &decoded), 0);
    EXPECT_EQ(decoded.time.day, 0x33);  // untouched
    decoded.format = WMS_VP_NONE;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &decoded), 0);
    EXPECT_EQ(decoded.time.day, 0);  // cleared
}

}  // namespace

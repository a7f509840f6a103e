#include "api/driver_exception.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <exception>
#include <memory>
#include <string>
#include <type_traits>

#include "include/qtr_orvex.h"

namespace {

TEST(DriverException, WithoutACodeIsUnspecified) {
    const DriverException exception;
    EXPECT_EQ(exception.error_code(), 0x5000u);
    EXPECT_STREQ(exception.what(), "nuv::DriverException has been thrown without err_code.");
    EXPECT_EQ(std::strlen(exception.what()), 54u);
}

TEST(DriverException, WithACodeAloneEndsInABlank) {
    const DriverException exception(static_cast<int>(0x80517006u));
    EXPECT_EQ(exception.error_code(), 0x80517006u);
    EXPECT_STREQ(exception.what(), "DriverException (0x80517006) ");
}

TEST(DriverException, PrintsTheLettersOfACodeInLowerCase) {
    const DriverException exception(static_cast<int>(0xA051501Au));
    EXPECT_STREQ(exception.what(), "DriverException (0xa051501a) ");
}

TEST(DriverException, PrintsACodeWithoutLeadingZeros) {
    EXPECT_STREQ(DriverException(0x5000).what(), "DriverException (0x5000) ");
    EXPECT_STREQ(DriverException(0).what(), "DriverException (0x0) ");
}

TEST(DriverException, PrintsACodeAsThirtyTwoBits) {
    const DriverException exception(-1);
    EXPECT_EQ(exception.error_code(), 0xFFFFFFFFu);
    EXPECT_STREQ(exception.what(), "DriverException (0xffffffff) ");
}

TEST(DriverException, AppendsATextToTheCode) {
    const DriverException exception("Command <TurnLampOn/Off> is not supported for type 3",
                                    static_cast<int>(0xA0515013u));
    EXPECT_EQ(exception.error_code(), 0xA0515013u);
    EXPECT_STREQ(exception.what(),
                 "DriverException (0xa0515013): "
                 "Command <TurnLampOn/Off> is not supported for type 3");
}

TEST(DriverException, AppendsAnEmptyTextToo) {
    const DriverException exception(std::string(), static_cast<int>(0xA0515019u));
    EXPECT_STREQ(exception.what(), "DriverException (0xa0515019): ");
}

TEST(DriverException, LeavesATextAsItIs) {
    const DriverException exception(" %d 0xAB\r\n ", 1);
    EXPECT_STREQ(exception.what(), "DriverException (0x1):  %d 0xAB\r\n ");
}

TEST(DriverException, IsCaughtAsAStandardException) {
    try {
        throw DriverException("text", static_cast<int>(0x80515003u));
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "DriverException (0x80515003): text");
    }
}

TEST(DriverException, KeepsCodeAndTextInACopy) {
    const auto original = std::make_unique<DriverException>("text", 0x5000);
    const DriverException copy = *original;
    EXPECT_EQ(copy.error_code(), 0x5000u);
    EXPECT_STREQ(copy.what(), "DriverException (0x5000): text");
    EXPECT_NE(copy.what(), original->what());
}

TEST(DriverException, ReportsItsCodeUnsigned) {
    static_assert(std::is_same_v<decltype(DriverException().error_code()), std::uint32_t>);
    EXPECT_GT(DriverException(static_cast<int>(0xA0515001u)).error_code(), 0x7FFFFFFFu);
}

TEST(StatusCodes, HaveTheirValues) {
    EXPECT_EQ(ORVEX_OK, 0x00000000u);
    EXPECT_EQ(ORVEX_ERR_UNSPECIFIED, 0x00005000u);
    EXPECT_EQ(ORVEX_ERR_INVALID_ARG, 0xA0515001u);
    EXPECT_EQ(ORVEX_ERR_INVALID_HANDLE, 0xA0515002u);
    EXPECT_EQ(ORVEX_ERR_BUFFER_TOO_SMALL, 0xA0515006u);
    EXPECT_EQ(ORVEX_ERR_NO_HANDLE, 0xA0515007u);
    EXPECT_EQ(ORVEX_ERR_NOT_SUPPORTED, 0xA0515013u);
    EXPECT_EQ(ORVEX_ERR_RECV, 0xA0515019u);
    EXPECT_EQ(ORVEX_ERR_SEND, 0xA051501Au);
    EXPECT_EQ(ORVEX_ERR_STRUCT_SIZE, 0x80513002u);
    EXPECT_EQ(ORVEX_ERR_NO_DEVICE, 0x80515001u);
    EXPECT_EQ(ORVEX_ERR_NO_RESPONSE, 0x80515002u);
    EXPECT_EQ(ORVEX_ERR_IO, 0x80515003u);
    EXPECT_EQ(ORVEX_ERR_MAX_CHANNEL, 0x80515020u);
    EXPECT_EQ(ORVEX_ERR_NOT_CONNECTED, 0x80517006u);
}

}  // namespace

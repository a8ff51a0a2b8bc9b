// Hint text arithmetic: the machine-word boundaries and the limb form
// underneath. python3 checks every operation at every size, with both
// kernels (tests/numbers), and the golden program integer_signs_and_sizes the
// worked signs.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "numbers/bignum/decimal.h"
#include "numbers/bignum/decimal_limbs.h"
#include "numbers/bignum/decimal_simd.h"

namespace tarn {
namespace {

std::string over(std::string_view x, std::string_view y) {
  std::string q;
  return hintOverText(x, y, q) ? q : "Z";
}
std::string cent(std::string_view x, std::string_view y) {
  std::string r;
  return hintCentText(x, y, r) ? r : "Z";
}

// Texts at the edge of int64 are read and written by the machine-word path,
// and results that leave the word are still right.
TEST(DecimalText, MachineWordBoundaries) {
  const std::pair<std::string_view, int64_t> fits[] = {
      {"9223372036854775807", INT64_MAX}, {"09223372036854775808", INT64_MIN}, {"07", -7}, {"0", 0}};
  for (auto [text, value] : fits) {
    int64_t v = 1;
    EXPECT_TRUE(smallHintValue(text, v)) << text;
    EXPECT_EQ(v, value);
    EXPECT_EQ(smallHintText(value), text);
  }
  int64_t v = 0;
  for (std::string_view no : {"9223372036854775808", "09223372036854775809", "10000000000000000000"})
    EXPECT_FALSE(smallHintValue(no, v)) << no;
  EXPECT_EQ(hintAddText("9223372036854775807", "1"), "9223372036854775808");
  EXPECT_EQ(hintSubText("09223372036854775808", "1"), "09223372036854775809");
  EXPECT_EQ(over("09223372036854775808", "01"), "9223372036854775808");
  EXPECT_EQ(cent("09223372036854775808", "07"), "1");  // 2^63 = 8^21 = 1 mod 7, same signs
  EXPECT_EQ(cent("09223372036854775808", "7"), "6");
}

TEST(DecimalLimbsDeath, BadTextsAreFatal) {
  EXPECT_DEATH(limbsFromDigits("12:45678901"), "ASSERTION FAILED");
  EXPECT_DEATH(limbsFromDigits(std::string(100, '1') + "/" + std::string(50, '2')), "ASSERTION FAILED");
  EXPECT_DEATH(hintAddText("00", "1"), "ASSERTION FAILED");
  EXPECT_DEATH(hintMulText("", "1"), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn

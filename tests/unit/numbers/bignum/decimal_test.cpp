// Hint text arithmetic: the edge results, the machine-word boundaries and
// the limb form underneath. The Term level has its own sign table
// on both paths (hint_test.cpp), and python3 checks every operation at every
// size (tests/numbers).
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

// One operation by name, its result as text.
std::string apply(std::string_view op, std::string_view x, std::string_view y) {
  if (op == "+") return hintAddText(x, y);
  if (op == "-") return hintSubText(x, y);
  if (op == "*") return hintMulText(x, y);
  if (op == "/") return over(x, y);
  if (op == "%") return cent(x, y);
  if (op == "^") return hintPowaText(x, y);
  if (op == "half") return hintHalfText(x);
  if (op == "opp") return hintOppositeText(x);
  if (op == "cmp") return std::to_string(hintCompareText(x, y));
  return "unknown " + std::string(op);
}

TEST(DecimalText, NumberTextShape) {
  for (std::string_view yes : {"0", "05", "120", "0120"}) EXPECT_TRUE(isNumberText(yes)) << yes;
  for (std::string_view no : {"", "00", "007", "a1"}) EXPECT_FALSE(isNumberText(no)) << no;
}

// The edge results worked by hand; python3 checks random operands of every
// shape and size.
TEST(DecimalText, EdgeResults) {
  const std::string big = "100000000000000000000000000000000000001";  // 10^38 + 1
  const std::string huge = "123456789012345678901234567891";
  const std::string rows[][4] = {
      // Sums: no negative zero; carries and borrows across limbs.
      {"+", "5", "05", "0"}, {"+", "03", "1", "02"}, {"-", "07", "07", "0"}, {"-", "3", "010", "13"},
      {"+", "99999999999999999999999999", "1", "100000000000000000000000000"},
      {"+", "0100000000000000000000000000", "1", "099999999999999999999999999"},
      // Halves truncate and keep the sign; order is by value, never by text.
      {"half", "03", "", "01"}, {"half", "01", "", "0"}, {"opp", "0", "", "0"},
      {"cmp", "03", "02", "-1"}, {"cmp", "01", "0", "-1"}, {"cmp", "100", "20", "1"},
      // A short dividend over a long divisor. (The floor and remainder signs
      // on the machine-word path are the golden program
      // integer_signs_and_sizes and hint_test's table.)
      {"/", "1", "0" + big, "01"}, {"/", "01", "0" + big, "0"}, {"%", "1", "0" + big, big.substr(0, 38) + "0"},
      {"/", "0", "0", "Z"},
      // Powers: exponents beyond any memory for bases 0, 1 and -1.
      {"^", "01", "8", "1"}, {"^", "01", huge, "01"}, {"^", "1", huge, "1"}, {"^", "0", huge, "0"},
  };
  for (const auto& r : rows) EXPECT_EQ(apply(r[0], r[1], r[2]), r[3]) << r[1] << " " << r[0] << " " << r[2];
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

TEST(DecimalLimbs, TextRoundTripAllLengths) {
  // Every length up to 300 digits, through the vector and the scalar code.
  for (bool vector : {true, false}) {
    useVectorKernels(vector);
    std::string text;
    for (size_t len = 1; len <= 300; len++) {
      text.push_back(char('0' + (len * 7 + 3) % 10));
      if (text[0] == '0') text[0] = '9';
      Limbs a = limbsFromDigits(text);
      std::string back(digitCount(a.data(), a.size()), '?');
      writeDigits(back.data(), a.data(), a.size());
      ASSERT_EQ(back, text) << len << (vector ? " vector" : " scalar");
    }
  }
  useVectorKernels(true);
}

TEST(DecimalLimbs, LayoutAndDump) {
  Limbs a = limbsFromDigits("123456789012345678");
  ASSERT_EQ(a.size(), 3u);
  EXPECT_EQ(a[0], 12345678u);  // base 10^8, lowest limb first
  EXPECT_EQ(a[2], 12u);
  EXPECT_EQ(limbsDump(a.data(), a.size()), "[3 limbs] 00000012|34567890|12345678");
  EXPECT_TRUE(limbsFromDigits("0000").empty());
  EXPECT_EQ(limbsFromDigits("000000000000000000012").size(), 1u);
}

TEST(DecimalLimbsDeath, BadTextsAreFatal) {
  EXPECT_DEATH(limbsFromDigits("1234567a"), "ASSERTION FAILED");
  EXPECT_DEATH(limbsFromDigits("12:45678901"), "ASSERTION FAILED");
  EXPECT_DEATH(limbsFromDigits(std::string(100, '1') + "/" + std::string(50, '2')), "ASSERTION FAILED");
  EXPECT_DEATH(hintAddText("00", "1"), "ASSERTION FAILED");
  EXPECT_DEATH(hintMulText("", "1"), "ASSERTION FAILED");
}

}  // namespace
}  // namespace tarn

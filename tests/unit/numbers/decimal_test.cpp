// Hint text arithmetic: the sign tables, the edge results, the machine-word
// boundaries and the text conversion, several facts per test.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "numbers/decimal.h"
#include "numbers/decimal_limbs.h"
#include "numbers/decimal_simd.h"

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

TEST(DecimalText, NumberTextShape) {
  EXPECT_TRUE(isNumberText("0"));
  EXPECT_TRUE(isNumberText("05"));
  EXPECT_TRUE(isNumberText("120"));
  EXPECT_TRUE(isNumberText("0120"));
  EXPECT_FALSE(isNumberText(""));
  EXPECT_FALSE(isNumberText("00"));
  EXPECT_FALSE(isNumberText("007"));
  EXPECT_FALSE(isNumberText("a1"));
}

TEST(DecimalText, AddAndSubtract) {
  EXPECT_EQ(hintAddText("5", "05"), "0");
  EXPECT_EQ(hintAddText("03", "1"), "02");
  EXPECT_EQ(hintAddText("0", "0"), "0");
  EXPECT_EQ(hintAddText("999", "1"), "1000");
  EXPECT_EQ(hintAddText("01", "01"), "02");
  EXPECT_EQ(hintSubText("0", "0"), "0");  // no negative zero
  EXPECT_EQ(hintSubText("0", "7"), "07");
  EXPECT_EQ(hintSubText("07", "07"), "0");
  EXPECT_EQ(hintSubText("3", "010"), "13");
  // Carries and borrows across limbs, beyond the machine word.
  EXPECT_EQ(hintAddText("99999999999999999999999999", "1"), "100000000000000000000000000");
  EXPECT_EQ(hintSubText("100000000000000000000000000", "1"), "99999999999999999999999999");
  EXPECT_EQ(hintAddText("0100000000000000000000000000", "1"), "099999999999999999999999999");
  EXPECT_EQ(hintAddText("0123456789012345678901234567890", "123456789012345678901234567890"), "0");
  EXPECT_EQ(hintAddText("999999999999999999", "999999999999999999"), "1999999999999999998");
  EXPECT_EQ(hintSubText("0999999999999999999", "999999999999999999"), "01999999999999999998");
}

TEST(DecimalText, OppositeHalfCompare) {
  EXPECT_EQ(hintOppositeText("0"), "0");
  EXPECT_EQ(hintOppositeText("5"), "05");
  EXPECT_EQ(hintOppositeText("0120"), "120");
  EXPECT_EQ(hintHalfText("03"), "01");
  EXPECT_EQ(hintHalfText("1"), "0");
  EXPECT_EQ(hintHalfText("01"), "0");
  EXPECT_EQ(hintHalfText("0"), "0");
  EXPECT_EQ(hintHalfText("123456789012345678901234567891"), "61728394506172839450617283945");
  EXPECT_EQ(hintHalfText("0100000000000000000000000001"), "050000000000000000000000000");

  EXPECT_TRUE(hintLessText("1", "2"));
  EXPECT_TRUE(hintLessText("03", "02"));
  EXPECT_TRUE(hintLessText("01", "0"));
  EXPECT_FALSE(hintLessText("0", "0"));
  EXPECT_TRUE(hintGreaterEqText("0", "0"));
  EXPECT_FALSE(hintLessText("100", "20"));  // by value, never by text
  EXPECT_TRUE(hintLessText("020", "0100") == false);
  EXPECT_TRUE(hintLessText("0100", "020"));
  EXPECT_EQ(hintCompareText("123456789012345678901", "123456789012345678902"), -1);
  EXPECT_EQ(hintCompareText("0123456789012345678901", "0123456789012345678902"), 1);
  EXPECT_EQ(hintCompareText("05", "05"), 0);
}

TEST(DecimalText, FloorDivisionSigns) {
  EXPECT_EQ(over("7", "2"), "3");
  EXPECT_EQ(over("07", "2"), "04");
  EXPECT_EQ(over("7", "02"), "04");
  EXPECT_EQ(over("07", "02"), "3");
  EXPECT_EQ(over("0", "05"), "0");
  EXPECT_EQ(over("6", "03"), "02");  // exact: no rounding
  EXPECT_EQ(over("1", "05"), "01");
  EXPECT_EQ(over("5", "0"), "Z");
  EXPECT_EQ(over("0", "0"), "Z");
  // The same signs beyond the machine word.
  const std::string big = "100000000000000000000000000000000000001";  // 10^38 + 1
  EXPECT_EQ(over(big, "10"), "10000000000000000000000000000000000000");
  EXPECT_EQ(over("0" + big, "10"), "010000000000000000000000000000000000001");
  EXPECT_EQ(over(big, "0" + big), "01");
  EXPECT_EQ(over("1", "0" + big), "01");
  EXPECT_EQ(over("01", "0" + big), "0");
}

TEST(DecimalText, RemainderIsNeverNegative) {
  EXPECT_EQ(cent("7", "3"), "1");
  EXPECT_EQ(cent("07", "3"), "2");
  EXPECT_EQ(cent("7", "03"), "2");
  EXPECT_EQ(cent("07", "03"), "1");
  EXPECT_EQ(cent("6", "03"), "0");
  EXPECT_EQ(cent("0", "03"), "0");
  EXPECT_EQ(cent("5", "0"), "Z");
  const std::string big = "100000000000000000000000000000000000001";  // 10^38 + 1
  EXPECT_EQ(cent(big, "10"), "1");
  EXPECT_EQ(cent("0" + big, "10"), "9");
  EXPECT_EQ(cent("0" + big, "010"), "1");
  EXPECT_EQ(cent("1", "0" + big), big.substr(0, big.size() - 1) + "0");
  EXPECT_EQ(cent("0" + big, big), "0");
  std::string q, r;
  ASSERT_TRUE(hintOverCentText("07", "03", q, r));
  EXPECT_EQ(q, "2");
  EXPECT_EQ(r, "1");
  EXPECT_FALSE(hintOverCentText("7", "0", q, r));
}

TEST(DecimalText, Products) {
  EXPECT_EQ(hintMulText("99", "99"), "9801");
  EXPECT_EQ(hintMulText("099", "99"), "09801");
  EXPECT_EQ(hintMulText("099", "099"), "9801");
  EXPECT_EQ(hintMulText("0", "05"), "0");
  EXPECT_EQ(hintMulText("05", "0"), "0");
  EXPECT_EQ(hintMulText("10", "10"), "100");
  EXPECT_EQ(hintMulText("01", "1"), "01");
  // The 128-bit path and its neighbours.
  EXPECT_EQ(hintMulText("999999999999999999", "999999999999999999"),
            "999999999999999998000000000000000001");
  EXPECT_EQ(hintMulText("0999999999999999999", "999999999999999999"),
            "0999999999999999998000000000000000001");
  EXPECT_EQ(hintMulText("9999999999999999999", "9999999999999999999"),
            "99999999999999999980000000000000000001");
  EXPECT_EQ(hintMulText("18446744073709551616", "18446744073709551616"),
            "340282366920938463463374607431768211456");
  // Big times one limb, and both long.
  EXPECT_EQ(hintMulText("12345678901234567890123", "99999999"), "1234567877777777887777732109877");
  EXPECT_EQ(hintMulText("012345678901234567890123", "12345678901234567890123"),
            "0152415787532388367504942236884722755800955129");
}

TEST(DecimalText, Powers) {
  EXPECT_EQ(hintPowaText("2", "10"), "1024");
  EXPECT_EQ(hintPowaText("02", "3"), "08");
  EXPECT_EQ(hintPowaText("02", "2"), "4");
  EXPECT_EQ(hintPowaText("0", "0"), "1");
  EXPECT_EQ(hintPowaText("5", "01"), "0");
  EXPECT_EQ(hintPowaText("1", "01"), "0");
  EXPECT_EQ(hintPowaText("01", "01"), "0");
  EXPECT_EQ(hintPowaText("0", "5"), "0");
  EXPECT_EQ(hintPowaText("01", "7"), "01");
  EXPECT_EQ(hintPowaText("01", "8"), "1");
  EXPECT_EQ(hintPowaText("7", "1"), "7");
  EXPECT_EQ(hintPowaText("07", "1"), "07");
  // Exponents far beyond any memory are fine for bases 0, 1 and -1.
  EXPECT_EQ(hintPowaText("01", "123456789012345678901234567891"), "01");
  EXPECT_EQ(hintPowaText("1", "123456789012345678901234567891"), "1");
  EXPECT_EQ(hintPowaText("0", "123456789012345678901234567891"), "0");
  EXPECT_EQ(hintPowaText("12345", "0123456789012345678901234567891"), "0");
  // Trailing zeros of the base.
  EXPECT_EQ(hintPowaText("10", "20"), "1" + std::string(20, '0'));
  EXPECT_EQ(hintPowaText("0200", "3"), "08000000");
  EXPECT_EQ(hintPowaText("2", "64"), "18446744073709551616");
  EXPECT_EQ(hintPowaText("3", "40"), "12157665459056928801");
  EXPECT_EQ(hintPowaText("099", "5"), "09509900499");
}

TEST(DecimalText, PowerDigitCount) {
  // 3^200000 has floor(200000 log10 3) + 1 = 95425 digits and ends ...001
  // (3^200000 = 9^100000, and 9^(10^5) = 1 mod 1000).
  std::string p = hintPowaText("3", "200000");
  EXPECT_EQ(p.size(), 95425u);
  EXPECT_EQ(p.substr(p.size() - 3), "001");
  EXPECT_EQ(hintCentText(p, "7", p) ? p : "Z", "2");  // 3^6 = 1 mod 7; 200000 = 2 mod 6
}

// A sink over a fixed buffer that records the lengths asked for.
struct BufferSink {
  char buf[200];
  std::vector<size_t> asked;
  TextSink sink() {
    std::memset(buf, '#', sizeof buf);
    asked.clear();
    auto room = [](void* c, size_t n) {
      auto* self = static_cast<BufferSink*>(c);
      self->asked.push_back(n);
      return self->buf;
    };
    return {room, this};
  }
  // The text written, which must fill exactly the one length asked for.
  std::string text() const {
    if (asked.size() != 1 || buf[asked[0]] != '#') return "bad sink use";
    return std::string(buf, asked[0]);
  }
};

TEST(DecimalText, SinksGetTheExactLengthOnce) {
  BufferSink out;
  const std::string big = "123456789012345678901234567890";  // beyond the machine word
  hintMulInto("099", "99", out.sink());
  EXPECT_EQ(out.text(), "09801");
  hintMulInto("0" + big, "0", out.sink());
  EXPECT_EQ(out.text(), "0");
  hintAddInto(big, "0" + big, out.sink());
  EXPECT_EQ(out.text(), "0");
  hintSubInto("0" + big, "1", out.sink());
  EXPECT_EQ(out.text(), "0123456789012345678901234567891");
  hintPowaInto("0100", "3", out.sink());
  EXPECT_EQ(out.text(), "01000000");
  hintHalfInto("01", out.sink());
  EXPECT_EQ(out.text(), "0");
  hintOppositeInto("0" + big, out.sink());
  EXPECT_EQ(out.text(), big);
  // big = 12345678901234567890 * 10^10 + 1234567890
  EXPECT_TRUE(hintOverInto("0" + big, big.substr(0, 20), out.sink()));
  EXPECT_EQ(out.text(), "010000000001");
  EXPECT_TRUE(hintCentInto("0" + big, big.substr(0, 20), out.sink()));
  EXPECT_EQ(out.text(), "12345678900000000000");
  BufferSink q, r;
  EXPECT_TRUE(hintOverCentInto(big, "07", q.sink(), r.sink()));
  EXPECT_EQ(q.text() + " " + r.text(), over(big, "07") + " " + cent(big, "07"));
  // No result, no call.
  EXPECT_FALSE(hintOverInto(big, "0", out.sink()));
  EXPECT_FALSE(hintCentInto(big, "0", out.sink()));
  EXPECT_TRUE(out.asked.empty());
}

TEST(DecimalText, MachineWordBoundaries) {
  int64_t v = 0;
  EXPECT_TRUE(smallHintValue("9223372036854775807", v));
  EXPECT_EQ(v, INT64_MAX);
  EXPECT_FALSE(smallHintValue("9223372036854775808", v));
  EXPECT_TRUE(smallHintValue("09223372036854775808", v));
  EXPECT_EQ(v, INT64_MIN);
  EXPECT_FALSE(smallHintValue("09223372036854775809", v));
  EXPECT_FALSE(smallHintValue("10000000000000000000", v));
  EXPECT_TRUE(smallHintValue("07", v));
  EXPECT_EQ(v, -7);
  EXPECT_TRUE(smallHintValue("0", v));
  EXPECT_EQ(v, 0);
  EXPECT_EQ(smallHintText(INT64_MIN), "09223372036854775808");
  EXPECT_EQ(smallHintText(INT64_MAX), "9223372036854775807");
  EXPECT_EQ(smallHintText(-7), "07");
  EXPECT_EQ(smallHintText(0), "0");
  EXPECT_EQ(smallHintText(100), "100");
  // Sums and quotients that leave the machine word.
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
  Limbs b = limbsFromDigits(std::string(79, '7') + "1");  // ten limbs
  EXPECT_EQ(limbsDump(b.data(), b.size()),
            "[10 limbs] 77777777|77777777|77777777|77777777 ...|77777777|77777777|77777777|77777771");
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

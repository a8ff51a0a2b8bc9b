// Binary fraction arithmetic: exact results and signs, the power schedule, the
// order test with its window, the trace lines and the double conversions.
// Random cases are checked against a bit-by-bit encoding of scaled integers.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <cstdio>
#include <random>

#include "numbers/dyadic.h"
#include "numbers/model.h"
#include "numbers/numb.h"

namespace tarn {
namespace {

std::string text(const Term& t) { return std::string(textOf(t)); }
BitString fx(std::string_view numb) { return numbBits(leaf(numb)); }
std::string tx(const BitString& fixed) { return text(numbFromBits(fixed)); }
Term cell(bool k, Term rest) { return App(App(leafByte('J'), leafByte(k ? 'K' : 'H')), std::move(rest)); }
Term K() { return leafByte('K'); }

// The numb text of a positive integer n < 2^32: its fixed form has n's bit i
// at position 2i+1 and the sign at 0, so the list (twice that) has bit 1 as
// its lowest set bit and the text is "00" and the digits of n's bits spread
// to the even positions.
std::string numbInt(uint64_t n) {
  uint64_t spread = 0;
  for (int i = 0; i < 32; i++) spread |= ((n >> i) & 1) << (2 * i);
  return "00" + std::to_string(spread);
}

// Fixed form of s / 2^scale, written position by position.
BitString refFixed(__int128 s, int scale) {
  unsigned __int128 m = s < 0 ? (unsigned __int128)(-s) : (unsigned __int128)s;
  BitString out;
  if (s >= 0) setBit(out, 0);
  for (int k = 0; k < 127; k++)
    if ((m >> k) & 1) setBit(out, bitPosition(k - scale));
  return out;
}

std::string traceSince(uintmax_t offset) {
  std::string out;
  if (FILE* f = std::fopen("/tmp/both.bug", "rb")) {
    std::fseek(f, long(offset), SEEK_SET);
    char buf[4096];
    for (size_t n; (n = std::fread(buf, 1, sizeof buf, f)) > 0;) out.append(buf, n);
    std::fclose(f);
  }
  return out;
}
uintmax_t traceSize() {
  std::error_code ec;
  uintmax_t n = std::filesystem::file_size("/tmp/both.bug", ec);
  return ec ? 0 : n;
}

TEST(Numb, SumsProductsAndRemainders) {
  EXPECT_EQ(text(numbPlus(leaf("003"), leaf("002"))), "004");  // 1.5 + 0.5
  EXPECT_EQ(text(numbPlus(leaf("000"), leaf("001"))), "00");   // -1 + 1
  EXPECT_EQ(text(numbDash(leaf("001"), leaf("001"))), "00");   // 1 - 1
  EXPECT_EQ(text(numbDash(leaf("002"), leaf("004"))), "0001");  // 0.5 - 2 = -1.5
  EXPECT_EQ(text(numbMult(leaf("003"), leaf("003"))), "0012");  // 2.25 = 10.01b
  EXPECT_EQ(text(numbMult(leaf("00"), leaf("000"))), "00");
  EXPECT_EQ(text(numbMult(leaf("000"), leaf("003"))), "0001");
  // 5.5 = "0019", -5.5 = "0009", 2 = "004", -2 = "00000".
  EXPECT_EQ(text(numbCent(leaf("0019"), leaf("004"))), "003");    // 1.5
  EXPECT_EQ(text(numbCent(leaf("0009"), leaf("004"))), "002");    // 0.5
  EXPECT_EQ(text(numbCent(leaf("0019"), leaf("00000"))), "002");  // 0.5
  EXPECT_EQ(text(numbCent(leaf("0009"), leaf("00000"))), "003");  // like signs: 1.5
  EXPECT_EQ(text(numbCent(leaf("0016"), leaf("004"))), "00");     // 4 % 2
  EXPECT_EQ(text(numbCent(leaf("001"), leaf("0010"))), "008");    // 1 % 0.75 = 0.25
  EXPECT_EQ(text(numbCent(leaf("000"), leaf("0010"))), "002");    // -1 % 0.75 = 0.5
  EXPECT_EQ(text(numbCent(leaf("0019"), leaf("00"))), "Z");
  // Cell spellings are read through their lists: [H, K] is 1.
  EXPECT_EQ(text(numbPlus(cell(false, cell(true, K())), leaf("001"))), "004");
}

TEST(Numb, SignsAndMagnitudesOnFixedForms) {
  EXPECT_TRUE(numbIsZero(fx("00")));
  EXPECT_FALSE(numbIsZero(fx("000")));
  EXPECT_TRUE(numbSign(fx("001")));
  EXPECT_FALSE(numbSign(fx("000")));
  EXPECT_EQ(tx(numbOpposite(fx("003"))), "0001");
  EXPECT_EQ(numbOpposite(fx("00")), BitString(1, '\1'));
  EXPECT_EQ(tx(numbWithSign(false, fx("001"))), "000");
  EXPECT_EQ(numbWithSign(false, fx("00")), BitString(1, '\1'));
  EXPECT_TRUE(getIndex(fx("003"), 0) && getIndex(fx("003"), -1) && !getIndex(fx("003"), 1));
  // The sum of two non-zero magnitudes has no sign bit; a zero operand gives
  // the other one back.
  EXPECT_EQ(magnitudeAdd(fx("001"), fx("001")), BitString(1, '\x08'));
  EXPECT_EQ(magnitudeAdd(fx("00"), fx("003")), fx("003"));
  EXPECT_EQ(tx(magnitudeSub(fx("004"), fx("002"))), "003");
  EXPECT_EQ(tx(magnitudeShift(fx("003"), 2)), numbInt(6));
  EXPECT_EQ(tx(magnitudeShift(fx("003"), -1)), "0010");  // 0.75
  EXPECT_EQ(tx(magnitudeMul(fx("005"), fx("005"))), numbInt(9));
  EXPECT_EQ(magnitudeTop(fx("002")), -1);
  EXPECT_EQ(magnitudeTop(fx("003")), 0);
  EXPECT_EQ(magnitudeTop(fx("0064")), 3);
  EXPECT_TRUE(magnitudeLess(fx("002"), fx("001")));
  EXPECT_FALSE(magnitudeLess(fx("001"), fx("001")));
  EXPECT_DEATH(magnitudeTop(fx("00")), "ASSERTION FAILED");
}

TEST(Numb, AdditionsLeaveTraceLines) {
  uintmax_t before = traceSize();
  numbPlus(leaf("000"), leaf("001"));
  EXPECT_NE(traceSince(before).find("jjaa01\n"), std::string::npos);
  before = traceSize();
  numbDash(leaf("001"), leaf("001"));  // the right operand is negated first
  EXPECT_NE(traceSince(before).find("jjaa10\n"), std::string::npos);
}

// Sums, products, remainders, comparisons and conversions of random values
// with up to 30 fraction bits, against scaled integer arithmetic.
TEST(Numb, RandomValuesAgreeWithScaledIntegers) {
  std::mt19937_64 rng(5);
  auto pick = [&] {
    __int128 m = __int128(rng() >> (14 + rng() % 50));
    return rng() % 2 ? m : -m;
  };
  for (int round = 0; round < 2000; round++) {
    __int128 a = pick(), b = pick();
    BitString x = refFixed(a, 30), y = refFixed(b, 30);
    ASSERT_EQ(fixedFromDyadic(dyadicFromFixed(x)), x);
    EXPECT_EQ(both(x, y), refFixed(a + b, 30));
    EXPECT_EQ(numbTimes(x, y), refFixed(a * b, 60));
    __int128 ma = a < 0 ? -a : a, mb = b < 0 ? -b : b;
    EXPECT_EQ(numbToReal(x), std::ldexp(double(a), -30));
    if (mb == 0) continue;
    __int128 r = ma % mb;
    if ((a < 0) != (b < 0) && r != 0) r = mb - r;
    EXPECT_EQ(numbRemainder(x, y), refFixed(r, 30)) << int64_t(a) << " % " << int64_t(b);
    EXPECT_EQ(magnitudeLess(refFixed(ma, 30), refFixed(mb, 30)), ma < mb);
  }
}

// Reading a fixed form (one word or many) agrees with summing its positions
// one at a time, and writing it back gives the same string.
TEST(Numb, FixedFormsReadPositionByPosition) {
  std::mt19937_64 rng(17);
  for (size_t bytes = 1; bytes <= 24; bytes++) {
    for (int round = 0; round < 20; round++) {
      BitString f;
      for (size_t i = 0; i + 1 < bytes; i++) f.push_back(char(rng() % 4 ? rng() : 0));
      f.push_back(char(1 + rng() % 255));
      Dyadic d = dyadicFromFixed(f);
      int64_t lowest = 0;
      for (size_t p = 1; p < 8 * bytes; p++)
        if (getBit(f, p)) lowest = std::min(lowest, p % 2 ? int64_t(p - 1) / 2 : -int64_t(p / 2));
      Natural sum;
      for (size_t p = 1; p < 8 * bytes; p++) {
        int64_t i = p % 2 ? int64_t(p - 1) / 2 : -int64_t(p / 2);
        if (getBit(f, p)) sum = natAdd(sum, natShiftLeft(natOf(1), size_t(i - lowest)));
      }
      Dyadic ref = dyadicOf(getBit(f, 0), sum, lowest);
      ASSERT_EQ(natCompare(d.mant, ref.mant), 0) << bytes;
      EXPECT_EQ(d.exp, ref.exp);
      EXPECT_EQ(d.plus, ref.plus);
      EXPECT_EQ(fixedFromDyadic(d), f);
    }
  }
}

TEST(Numb, LongValuesKeepIdentities) {
  std::mt19937_64 rng(9);
  // Random bytes; `integer` keeps only the odd positions (and the sign).
  auto big = [&](size_t bytes, bool integer) {
    BitString f;
    for (size_t i = 0; i < bytes; i++) f.push_back(char(rng() & (integer ? 0xAA : 0xFF)));
    f.push_back('\2');
    if (integer) setBit(f, 0, rng() % 2);
    return f;
  };
  for (size_t bytes : {40, 700, 3000}) {
    BitString x = big(bytes, false), y = big(bytes / 2 + 1, false), k = big(bytes / 3, true);
    EXPECT_EQ(both(both(x, y), numbOpposite(y)), x);
    EXPECT_EQ(both(x, x), numbTimes(x, fx("004")));
    EXPECT_TRUE(numbIsZero(numbRemainder(numbTimes(k, y), y)));
    BitString r = numbRemainder(x, y);
    EXPECT_TRUE(magnitudeLess(numbWithSign(true, r), numbWithSign(true, y)));
  }
}

TEST(Numb, PowerSchedule) {
  Term three = leaf(numbInt(3));
  const std::pair<const char*, uint64_t> table[] = {
      {"2", 9}, {"3", 27}, {"4", 81}, {"5", 729}, {"6", 243}, {"7", 2187},
      {"10", 4782969},  // leading digit 1 is odd: 3^14, not 3^10
      {"12", 1594323},  // 3^13
  };
  for (auto [e, v] : table) EXPECT_EQ(text(numbPowa(three, leaf(e))), numbInt(v)) << e;
  EXPECT_TRUE(numbPowa(three, leaf("1")).same(three));  // no round: the base itself
  EXPECT_EQ(text(numbPowa(three, leaf("0"))), "00");
  EXPECT_EQ(text(numbPowa(three, K())), "00");
  EXPECT_EQ(text(numbPowa(three, leaf("01"))), "Z");
  EXPECT_EQ(text(numbPowa(three, App(leaf("f"), leaf("x")))), "Z");
  EXPECT_EQ(text(numbPowa(leaf("003"), leaf("0"))), "00");
  EXPECT_EQ(text(numbPowa(leaf("003"), leaf("01"))), "Z");
  EXPECT_EQ(text(numbPowa(leaf("003"), leaf("3"))), "0045");  // 3.375 = 11.011b
  Term cube = numbMult(leaf("003"), numbMult(leaf("003"), leaf("003")));
  EXPECT_EQ(text(numbPowa(leaf("003"), leaf("5"))), text(numbMult(cube, cube)));
  // -1: the last round (exponent 2 or 3) decides the sign.
  EXPECT_EQ(text(numbPowa(leaf("000"), leaf("6"))), "000");
  EXPECT_EQ(text(numbPowa(leaf("000"), leaf("5"))), "001");
  // Exponents beyond 64 bits with bases that stay small.
  EXPECT_EQ(text(numbPowa(leaf("000"), leaf("100000000000000000000"))), "001");   // top bits 10
  EXPECT_EQ(text(numbPowa(leaf("000"), leaf("3541774862152233910272"))), "000");  // 3 * 2^70
  EXPECT_EQ(text(numbPowa(leaf("001"), leaf("3541774862152233910272"))), "001");
  EXPECT_EQ(text(numbPowa(leaf("00"), leaf("3541774862152233910272"))), "00");
  // Exponent cells: [K, K, H] is 2, [K, K] is 1.
  EXPECT_EQ(text(numbPowa(three, cell(true, cell(true, cell(false, K()))))), numbInt(9));
  EXPECT_EQ(text(numbPowa(three, cell(true, cell(true, K())))), numbInt(3));
}

TEST(Numb, PowersOfTwoAreExact) {
  EXPECT_EQ(text(numbPowa(leaf("004"), leaf("3"))), "0064");
  EXPECT_EQ(text(numbPowa(leaf("004"), leaf("01"))), "002");
  EXPECT_EQ(text(numbPowa(leaf("004"), leaf("03"))), "0032");  // 0.125
  EXPECT_EQ(text(numbPowa(leaf("004"), leaf("0"))), "001");
  BitString big = numbBits(numbPowa(leaf("004"), leaf("1000")));
  EXPECT_EQ(bitLength(big), bitPosition(1000) + 1);
  EXPECT_TRUE(numbSign(big));
  // A list of 61 elements or more: the magnitude reaches 2^59.
  EXPECT_EQ(text(numbPowa(leaf("004"), leaf("576460752303423488"))), "Z");
  EXPECT_EQ(text(numbPowa(leaf("004"), leaf("0576460752303423488"))), "Z");
  // Only the leaf "004" is exact: 2 spelled as cells [H, K, H, H] is not.
  Term two = cell(false, cell(true, cell(false, cell(false, K()))));
  EXPECT_EQ(text(numbPowa(two, leaf("03"))), "Z");
  EXPECT_EQ(text(numbPowa(two, leaf("0"))), "00");
  EXPECT_EQ(text(numbPowa(two, leaf("2"))), numbInt(4));
}

TEST(Numb, OddTestReadsTheLeadingDigit) {
  EXPECT_TRUE(numbOdd(leaf("12")));
  EXPECT_FALSE(numbOdd(leaf("21")));
  EXPECT_FALSE(numbOdd(leaf("0")));
  EXPECT_TRUE(numbOdd(leaf("05")));
  EXPECT_FALSE(numbOdd(leaf("083")));
  // Cells: the third element, or the end of the list (after two: 1, after
  // one: 0); a leaf second is decoded, a leaf third read by its first digit.
  EXPECT_FALSE(numbOdd(cell(true, K())));
  EXPECT_TRUE(numbOdd(cell(true, cell(true, K()))));
  EXPECT_FALSE(numbOdd(cell(true, cell(true, cell(false, K())))));
  EXPECT_TRUE(numbOdd(cell(true, cell(true, cell(true, K())))));
  EXPECT_TRUE(numbOdd(cell(true, leaf("4"))));    // 19: bit 1 set
  EXPECT_FALSE(numbOdd(cell(true, leaf("05"))));  // 21: bit 1 clear
  EXPECT_FALSE(numbOdd(cell(true, cell(true, leaf("4")))));
  EXPECT_TRUE(numbOdd(cell(true, cell(true, leaf("5")))));
}

TEST(Numb, FlagAndLess) {
  EXPECT_FALSE(numbFlag(leaf("00")));
  EXPECT_TRUE(numbFlag(leaf("001")));
  EXPECT_TRUE(numbFlag(leaf("000")));
  EXPECT_FALSE(numbFlag(leaf("002")));
  EXPECT_TRUE(numbFlag(leaf("003")));
  EXPECT_FALSE(numbFlag(leaf("004")));
  EXPECT_TRUE(numbFlag(leaf("0001")));
  EXPECT_FALSE(numbFlag(leaf("00000")));
  EXPECT_TRUE(numbFlag(leaf("0017")));   // 5
  EXPECT_FALSE(numbFlag(leaf("0016")));  // 4
  EXPECT_TRUE(numbFlag(cell(false, cell(true, K()))));   // [H, K]: 1
  // [H] then the list of "002" [H, K, H]: -3, whose leaf is "0002".
  EXPECT_TRUE(numbFlag(cell(false, leaf("002"))));
  EXPECT_EQ(text(numbDash(cell(false, leaf("002")), leaf("00"))), "0002");
  EXPECT_TRUE(numbLess(leaf("002"), leaf("001")));
  EXPECT_FALSE(numbLess(leaf("001"), leaf("002")));
  EXPECT_FALSE(numbLess(leaf("003"), leaf("004")));
  EXPECT_TRUE(numbLess(leaf("004"), leaf("003")));
  EXPECT_FALSE(numbLess(leaf("001"), leaf("000")));
  EXPECT_FALSE(numbLess(leaf("000"), leaf("001")));
  EXPECT_TRUE(numbLess(leaf("001"), leaf("005")));
  EXPECT_FALSE(numbLess(leaf("005"), leaf("001")));
  // 1 and 5 differ only at bit index 2, outside the window of one-byte lists.
  EXPECT_FALSE(numbLess(leaf("001"), leaf("0017")));
  EXPECT_FALSE(numbLess(leaf("0017"), leaf("001")));
  EXPECT_TRUE(numbLess(leaf("00000"), leaf("000")));  // flags differ: y's flag
  EXPECT_FALSE(numbLess(leaf("000"), leaf("00000")));
  EXPECT_FALSE(numbLess(cell(false, cell(true, K())), leaf("001")));
}

TEST(Numb, ToDouble) {
  EXPECT_EQ(numbToReal(leaf("004")), 2.0);
  EXPECT_EQ(numbToReal(leaf("003")), 1.5);
  EXPECT_EQ(numbToReal(leaf("000")), -1.0);
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(leaf("00"))), 0u);
  auto power = [](int64_t i, bool plus = true) {
    BitString f;
    setBit(f, 0, plus);
    setBit(f, bitPosition(i));
    return f;
  };
  auto both2 = [](BitString a, BitString b) {  // a + b for disjoint bits, untraced
    for (size_t i = 1; i < b.size() * 8; i++)
      if (getBit(b, i)) setBit(a, i);
    return a;
  };
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(power(1024))), 0x7FF9000000000000u);
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(power(-1075))), 0x7FF9000000000000u);
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(power(1024, false))), 0x7FF9000000000000u);
  EXPECT_EQ(numbToReal(power(1023)), std::ldexp(1.0, 1023));
  EXPECT_EQ(numbToReal(power(-1022)), std::ldexp(1.0, -1022));
  // Truncation: 1 + 2^-52 + 2^-53 gives 1 + 2^-52.
  EXPECT_EQ(numbToReal(both2(both2(power(0), power(-52)), power(-53))), 1.0 + std::ldexp(1.0, -52));
  // Subnormals: the bits below the top one, in ascending positions.
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(both2(power(-1073), power(-1074)))), 0x0004000000000000u);
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(both2(power(-1073, false), power(-1074)))),
            0x8004000000000000u);
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(both2(power(-1023), power(-1025)))), 2u);
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(power(-1074))), 0u);
}

TEST(Numb, FromDouble) {
  EXPECT_EQ(text(realToNumb(0.5)), "002");
  EXPECT_EQ(text(realToNumb(0.0)), "00");
  EXPECT_EQ(text(realToNumb(1.0)), "001");
  EXPECT_EQ(text(realToNumb(-1.5)), "0001");
  EXPECT_EQ(text(realToNumb(2.25)), "0012");
  EXPECT_EQ(text(realToNumb(-0.0)), "000");
  EXPECT_EQ(text(realToNumb(INFINITY)), "000");
  EXPECT_EQ(text(realToNumb(-INFINITY)), "000");
  EXPECT_EQ(text(realToNumb(NAN)), "000");
  BitString tiny = realToNumbBits(std::ldexp(1.0, -1074));
  EXPECT_EQ(bitLength(tiny), bitPosition(-1074) + 1);
  EXPECT_EQ(realToNumbBits(-3.0 * std::ldexp(1.0, -1060)),
            numbOpposite(both(realToNumbBits(std::ldexp(1.0, -1059)), realToNumbBits(std::ldexp(1.0, -1060)))));
  std::mt19937_64 rng(13);
  for (int i = 0; i < 5000; i++) {
    uint64_t b = rng();
    uint64_t field = (b >> 52) & 0x7FF;
    if (field == 0 || field == 0x7FF) continue;
    double v = std::bit_cast<double>(b);
    ASSERT_EQ(std::bit_cast<uint64_t>(numbToReal(realToNumbBits(v))), b);
  }
}

}  // namespace
}  // namespace tarn

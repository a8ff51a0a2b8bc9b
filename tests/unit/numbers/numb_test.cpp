// Binary fraction arithmetic: exact results and signs, the power schedule, the
// order test with its window and the double conversions. Random cases are
// checked against a bit-by-bit encoding of scaled integers; the trace lines
// are the golden program trace_file_lines'.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>

#include "numbers/dyadic.h"
#include "numbers/model.h"
#include "numbers/numb.h"
#include "reduction/printer.h"

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

// The golden program numb_arithmetic prints the worked sums, products and
// remainders, and random values below are checked against scaled integers;
// here the spellings a printed line can't show.
TEST(Numb, TermOperationsReadCellSpellingsAndNegateOnce) {
  // [H, K] is 1; (J H "002"), [H] then the list of "002" [H, K, H], is -3.
  EXPECT_EQ(text(numbPlus(cell(false, cell(true, K())), leaf("001"))), "004");
  EXPECT_EQ(text(numbDash(cell(false, leaf("002")), leaf("00"))), "0002");
  EXPECT_EQ(text(numbDash(leaf("002"), leaf("004"))), "0001");  // 0.5 - 2
  EXPECT_EQ(text(numbMult(leaf("000"), leaf("003"))), "0001");  // -1 * 1.5
}

TEST(Numb, SignsAndMagnitudesOnFixedForms) {
  EXPECT_TRUE(numbIsZero(fx("00")) && !numbIsZero(fx("000")) && numbSign(fx("001")) && !numbSign(fx("000")));
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
  for (auto [numb, top] : {std::pair{"002", -1}, {"003", 0}, {"0064", 3}}) EXPECT_EQ(magnitudeTop(fx(numb)), top);
  EXPECT_TRUE(magnitudeLess(fx("002"), fx("001")) && !magnitudeLess(fx("001"), fx("001")));
  EXPECT_DEATH(magnitudeTop(fx("00")), "ASSERTION FAILED");
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

TEST(Numb, Powers) {
  // A general base is squared once per halving of the exponent and multiplied
  // whenever the exponent's leading digit is odd.
  Term three = leaf(numbInt(3));
  const std::pair<const char*, uint64_t> schedule[] = {
      {"2", 9}, {"3", 27}, {"4", 81}, {"5", 729}, {"6", 243}, {"7", 2187},
      {"10", 4782969},  // leading digit 1 is odd: 3^14, not 3^10
      {"12", 1594323},  // 3^13
  };
  for (auto [e, v] : schedule) EXPECT_EQ(text(numbPowa(three, leaf(e))), numbInt(v)) << e;
  EXPECT_TRUE(numbPowa(three, leaf("1")).same(three));  // no round: the base itself
  const std::string far = "3541774862152233910272";    // 3 * 2^70
  // (1.5 to the 0, -1 and 5, and 2 to the 3, -1 and 0: the golden program
  // powa_kind_pairs.)
  const std::string rows[][3] = {
      {"003", "3", "0045"},  // 3.375 = 11.011b
      // -1: the last round (exponent 2 or 3) decides the sign, also for
      // exponents beyond 64 bits.
      {"000", "6", "000"}, {"000", "5", "001"}, {"000", "100000000000000000000", "001"},
      {"000", far, "000"}, {"001", far, "001"}, {"00", far, "00"},
      // The leaf "004" is exact, below a list of 61 elements.
      {"004", "03", "0032"}, {"004", "576460752303423488", "Z"}, {"004", "0576460752303423488", "Z"}};
  for (const auto& r : rows) EXPECT_EQ(text(numbPowa(leaf(r[0]), leaf(r[1]))), r[2]) << r[0] << " ^ " << r[1];
  BitString big = numbBits(numbPowa(leaf("004"), leaf("1000")));
  EXPECT_EQ(bitLength(big), bitPosition(1000) + 1);
  EXPECT_TRUE(numbSign(big));
  // Exponents: K is zero, a function no answer; cells [K, K, H] is 2, [K, K] 1.
  EXPECT_EQ(text(numbPowa(three, K())), "00");
  EXPECT_EQ(text(numbPowa(three, App(leaf("f"), leaf("x")))), "Z");
  EXPECT_EQ(text(numbPowa(three, cell(true, cell(true, cell(false, K()))))), numbInt(9));
  EXPECT_EQ(text(numbPowa(three, cell(true, cell(true, K())))), numbInt(3));
  // Only the leaf "004" is exact: 2 spelled as cells [H, K, H, H] is not.
  Term two = cell(false, cell(true, cell(false, cell(false, K()))));
  EXPECT_EQ(text(numbPowa(two, leaf("03"))), "Z");
  EXPECT_EQ(text(numbPowa(two, leaf("0"))), "00");
  EXPECT_EQ(text(numbPowa(two, leaf("2"))), numbInt(4));
}

TEST(Numb, OddTestReadsTheLeadingDigit) {
  const std::pair<Term, bool> rows[] = {
      {leaf("12"), true}, {leaf("21"), false}, {leaf("0"), false}, {leaf("05"), true}, {leaf("083"), false},
      // Cells: the third element, or the end of the list (after two: 1, after
      // one: 0); a leaf second is decoded, a leaf third read by its first digit.
      {cell(true, K()), false},
      {cell(true, cell(true, K())), true},
      {cell(true, cell(true, cell(false, K()))), false},
      {cell(true, cell(true, cell(true, K()))), true},
      {cell(true, leaf("4")), true},    // 19: bit 1 set
      {cell(true, leaf("05")), false},  // 21: bit 1 clear
      {cell(true, cell(true, leaf("4"))), false},
      {cell(true, cell(true, leaf("5"))), true}};
  for (const auto& [e, odd] : rows) EXPECT_EQ(numbOdd(e), odd) << printTerm(e);
}

TEST(Numb, FlagAndLess) {
  const std::pair<Term, bool> flags[] = {
      {leaf("00"), false},   {leaf("001"), true},    {leaf("000"), true},  {leaf("002"), false},
      {leaf("003"), true},   {leaf("004"), false},   {leaf("0001"), true}, {leaf("00000"), false},
      {leaf("0017"), true},  {leaf("0016"), false},  {cell(false, cell(true, K())), true},  // [H, K]: 1
      {cell(false, leaf("002")), true}};  // [H] then the list of "002" [H, K, H]: -3
  for (const auto& [t, flag] : flags) EXPECT_EQ(numbFlag(t), flag) << printTerm(t);
  // x, y, x < y: unequal flags give y's flag; equal ones the top differing
  // bit within the window (1.5 < 2 false, 2 < 1.5 true, and the other worked
  // pairs: the golden program comparisons).
  const std::tuple<Term, Term, bool> less[] = {
      {leaf("001"), leaf("005"), true},  {leaf("005"), leaf("001"), false},
      // 1 and 5 differ only at bit index 2, outside the window of one-byte lists.
      {leaf("001"), leaf("0017"), false}, {leaf("0017"), leaf("001"), false},
      {leaf("00000"), leaf("000"), true}, {leaf("000"), leaf("00000"), false},
      {cell(false, cell(true, K())), leaf("001"), false}};
  for (const auto& [x, y, want] : less) EXPECT_EQ(numbLess(x, y), want) << printTerm(x) << " < " << printTerm(y);
}

// (Plain values both ways: the random values above, and the random doubles
// below.)
TEST(Numb, ToDouble) {
  EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(leaf("00"))), 0u);
  // The fixed form of the sum of signed powers 2^i, all of one sign.
  auto powers = [](std::initializer_list<int64_t> indices, bool plus = true) {
    BitString f;
    setBit(f, 0, plus);
    for (int64_t i : indices) setBit(f, bitPosition(i));
    return f;
  };
  const uint64_t nan = 0x7FF9000000000000u;
  const std::pair<BitString, uint64_t> rows[] = {
      {powers({1024}), nan}, {powers({-1075}), nan}, {powers({1024}, false), nan},
      {powers({1023}), std::bit_cast<uint64_t>(std::ldexp(1.0, 1023))},
      {powers({-1022}), std::bit_cast<uint64_t>(std::ldexp(1.0, -1022))},
      // Truncation: 1 + 2^-52 + 2^-53 gives 1 + 2^-52.
      {powers({0, -52, -53}), std::bit_cast<uint64_t>(1.0 + std::ldexp(1.0, -52))},
      // Subnormals: the bits below the top one, in ascending positions.
      {powers({-1073, -1074}), 0x0004000000000000u}, {powers({-1073, -1074}, false), 0x8004000000000000u},
      {powers({-1023, -1025}), 2u}, {powers({-1074}), 0u}};
  for (const auto& [fixed, bits] : rows) EXPECT_EQ(std::bit_cast<uint64_t>(numbToReal(fixed)), bits) << tx(fixed);
}

TEST(Numb, FromDouble) {
  EXPECT_EQ(text(realToNumb(0.0)), "00");
  EXPECT_EQ(text(realToNumb(-1.5)), "0001");
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

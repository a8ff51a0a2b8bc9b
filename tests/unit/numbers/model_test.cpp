// The number model: shape tests, list spellings and host integers.
#include <gtest/gtest.h>

#include "numbers/model.h"
#include "tests/unit/reduction/machine_fixture.h"

namespace tarn {
namespace {

using testing::term;

Term cells(const std::string& source) {
  testing::program("0");
  return term(source);
}

TEST(NumberModel, HostTests) {
  for (const char* yes : {"0", "07", "5", "123"}) EXPECT_TRUE(isHostInteger(leaf(yes))) << yes;
  for (const char* no : {"00", "007"}) EXPECT_FALSE(isHostInteger(leaf(no))) << no;
  EXPECT_TRUE(isHostInteger(leafByte('K')));
  EXPECT_TRUE(isHostNatural(leaf("0")));
  EXPECT_TRUE(isHostNatural(leaf("5")));
  EXPECT_FALSE(isHostNatural(leaf("07")));
  EXPECT_FALSE(isHostNatural(leaf("00")));
  // In cell form only a numb passes the natural test, by design.
  Term hintCell = cells("J K 5");
  Term numbCell = cells("J H 5");
  EXPECT_TRUE(isHostInteger(hintCell));
  EXPECT_FALSE(isHostNatural(hintCell));
  EXPECT_TRUE(isHostNatural(numbCell));
  EXPECT_TRUE(isNumbForm(numbCell));
  EXPECT_TRUE(isNumbForm(leaf("003")));
  EXPECT_FALSE(isNumbForm(leaf("03")));
  EXPECT_TRUE(hintIsZero(leaf("0")));
  EXPECT_TRUE(hintIsZero(leafByte('K')));
}

TEST(NumberModel, ListSpellingsShareOneText) {
  // [K,K] is 1, [K,H] is -1, [K] zero, [H] the numb zero.
  EXPECT_EQ(numberText(cells("J K (J K K)")), "1");
  EXPECT_EQ(numberText(cells("J K (J H K)")), "01");
  EXPECT_EQ(numberText(cells("J K K")), "0");
  EXPECT_EQ(numberText(cells("J H K")), "00");
  EXPECT_EQ(numberText(leafByte('K')), "K");
  // A chain ending in a number leaf continues that leaf's list: 5 is
  // K,K,H,K, so (J K 2) - 2 being K,H,K - spells 5 as well.
  EXPECT_EQ(numberText(cells("J K 2")), "5");
  EXPECT_TRUE(bitsOf(cells("J K (J I K)")).empty());  // a malformed cell
  EXPECT_EQ(printTerm(numberFromBits(bitsOf(leafByte('K')))), "K");
}

TEST(NumberModel, HostIntegersWrap) {
  EXPECT_EQ(textOf(int64ToTerm(0)), "0");
  EXPECT_EQ(textOf(int64ToTerm(-7)), "07");
  EXPECT_EQ(textOf(int64ToTerm(INT64_MIN)), "09223372036854775808");
  EXPECT_EQ(textOf(uint64ToTerm(UINT64_MAX)), "18446744073709551615");
  EXPECT_EQ(termToInt64(leaf("018446744073709551617")), -1);  // 2^64 + 1 wraps to 1
  EXPECT_EQ(termToUInt64(leaf("18446744073709551617")), 1u);
  EXPECT_EQ(termToInt64(leaf("0")), 0);
  EXPECT_EQ(termToInt64(leaf("123")), 123);
  EXPECT_EQ(termToInt64(cells("J K (J H K)")), -1);
  // A numb is read through the same bits with no regard to its layout:
  // "003" loses its first "0" as a negative hint would, and "03" is 3.
  EXPECT_EQ(termToInt64(leaf("003")), -3);
  EXPECT_DEATH(termToInt64(leafByte('K')), "ASSERTION FAILED");
}

TEST(NumberModel, Signs) {
  EXPECT_TRUE(hintSign(leaf("0")));
  EXPECT_TRUE(hintSign(leaf("5")));
  EXPECT_FALSE(hintSign(leaf("05")));
  EXPECT_EQ(textOf(hintAbs(leaf("05"))), "5");
  EXPECT_EQ(textOf(hintNegate(leaf("5"))), "05");
  EXPECT_EQ(textOf(hintNegate(leaf("05"))), "5");
  EXPECT_EQ(textOf(hintNegate(leaf("0"))), "0");
  // The cell spelling negates by dropping its first cell, by design.
  EXPECT_EQ(printTerm(hintNegate(cells("J K (J K K)"))), "JKK");
  EXPECT_EQ(textOf(hintAbs(cells("J K (J H K)"))), "1");
}

TEST(NumberModel, IntegersBecomeExactFractions) {
  EXPECT_EQ(textOf(hintToNumb(leaf("1"))), "001");
  EXPECT_EQ(textOf(hintToNumb(leaf("01"))), "000");
  EXPECT_EQ(textOf(hintToNumb(leaf("0"))), "00");
  EXPECT_EQ(textOf(hintToNumb(leaf("2"))), "004");
  EXPECT_EQ(textOf(hintToNumb(leaf("3"))), "005");  // bits 1, 2, 4 of 22: sign, 1, 2
  EXPECT_EQ(textOf(hintToNumb(cells("J K (J K K)"))), "001");
  EXPECT_EQ(textOf(numbFromBits(numbBits(leaf("003")))), "003");
}

}  // namespace
}  // namespace tarn

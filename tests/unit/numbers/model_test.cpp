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
  // text: isHostInteger, isHostNatural, isNumbForm
  const std::pair<std::string_view, std::string_view> leaves[] = {
      {"0", "KKH"}, {"07", "KHH"}, {"5", "KKH"}, {"123", "KKH"}, {"00", "HHK"}, {"007", "HHK"}, {"03", "KHH"}};
  auto answers = [](const Term& t) {
    auto kh = [](bool b) { return b ? "K" : "H"; };
    return std::string(kh(isHostInteger(t))) + kh(isHostNatural(t)) + kh(isNumbForm(t));
  };
  for (auto [text, want] : leaves) EXPECT_EQ(answers(leaf(text)), want) << text;
  // In cell form only a numb passes the natural test, by design.
  EXPECT_EQ(answers(cells("J K 5")), "KHH");
  EXPECT_EQ(answers(cells("J H 5")), "HKK");
  EXPECT_TRUE(isHostInteger(leafByte('K')));
  EXPECT_TRUE(hintIsZero(leaf("0")) && hintIsZero(leafByte('K')));
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
  EXPECT_EQ(textOf(int64ToTerm(INT64_MIN)), "09223372036854775808");
  EXPECT_EQ(textOf(uint64ToTerm(UINT64_MAX)), "18446744073709551615");
  EXPECT_EQ(termToInt64(leaf("018446744073709551617")), -1);  // 2^64 + 1 wraps to 1
  EXPECT_EQ(termToInt64(cells("J K (J H K)")), -1);
  // A numb is read through the same bits with no regard to its layout:
  // "003" loses its first "0" as a negative hint would, and "03" is 3.
  EXPECT_EQ(termToInt64(leaf("003")), -3);
  EXPECT_DEATH(termToInt64(leafByte('K')), "ASSERTION FAILED");
}

TEST(NumberModel, Signs) {
  EXPECT_TRUE(hintSign(leaf("0")) && hintSign(leaf("5")));
  EXPECT_FALSE(hintSign(leaf("05")));
  EXPECT_EQ(textOf(hintAbs(leaf("05"))), "5");
  for (auto [x, minus] : {std::pair{"5", "05"}, {"05", "5"}, {"0", "0"}})
    EXPECT_EQ(textOf(hintNegate(leaf(x))), minus);
  // The cell spelling negates by dropping its first cell, by design.
  EXPECT_EQ(printTerm(hintNegate(cells("J K (J K K)"))), "JKK");
  EXPECT_EQ(textOf(hintAbs(cells("J K (J H K)"))), "1");
}

TEST(NumberModel, IntegersBecomeExactFractions) {
  // 3 is the list of 22: bits 1, 2, 4: sign, 1, 2.
  for (auto [hint, numb] : {std::pair{"1", "001"}, {"01", "000"}, {"0", "00"}, {"2", "004"}, {"3", "005"}})
    EXPECT_EQ(textOf(hintToNumb(leaf(hint))), numb) << hint;
  EXPECT_EQ(textOf(hintToNumb(cells("J K (J K K)"))), "001");
  EXPECT_EQ(textOf(numbFromBits(numbBits(leaf("003")))), "003");
}

}  // namespace
}  // namespace tarn

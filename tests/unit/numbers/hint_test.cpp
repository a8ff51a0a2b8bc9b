// Integer operations on Terms: the product leaf, the word-size boundaries,
// cell spellings and the double of an integer. (Division signs: the golden
// program integer_signs_and_sizes on the machine word, python3 on long texts.)
#include <cmath>
#include <string>

#include "numbers/hint.h"
#include "values.h"

namespace tarn {
namespace {

using testing::cell;
using testing::N;
using testing::sym;
using testing::text;

TEST(Hint, ProductLeafCarriesArityTwo) {
  // x, y, product, top byte: a zero gives an ordinary, unannotated "0"; the
  // mark holds past the machine word, (10^18 - 1)^2, too.
  const std::string nines(18, '9');
  const std::tuple<std::string, std::string, std::string, uint8_t> rows[] = {
      {"099", "99", "09801", header::kProductLeafTop},
      {"0", "05", "0", header::kFreshLeafTop},
      {nines, nines, std::string(17, '9') + "8" + std::string(17, '0') + "1", header::kProductLeafTop},
      {"1" + std::string(20, '0'), "01" + std::string(20, '0'), "01" + std::string(40, '0'),
       header::kProductLeafTop}};
  for (const auto& [x, y, product, top] : rows) {
    Term p = hintMult(N(x), N(y));
    EXPECT_EQ(text(p), product);
    EXPECT_EQ(p.node()->top(), top) << product;
    EXPECT_EQ(p.node()->size(), product.size());
  }
  // Sums and differences never carry the product's mark.
  EXPECT_EQ(hintPlus(N("2"), N("3")).node()->top(), header::kFreshLeafTop);
}

// Sums, differences and order where operands or results leave the machine
// word (small powers are printed by the golden program
// integer_signs_and_sizes, long ones checked at the text level).
TEST(Hint, SumsAndOrderAcrossTheWordBoundary) {
  const std::string big = "1" + std::string(30, '0');
  EXPECT_EQ(text(hintPlus(N("9223372036854775807"), N("1"))), "9223372036854775808");
  EXPECT_EQ(text(hintDash(N("1" + std::string(20, '0')), N("1"))), std::string(20, '9'));
  EXPECT_EQ(hintPlus(N("12"), N("34")).node()->size(), 2u);  // a number leaf keeps its length
  EXPECT_TRUE(hintLess(N("0" + big), N("01" + std::string(29, '0'))));
  EXPECT_FALSE(hintGreaterEq(N("0" + big), N("5")));
  EXPECT_TRUE(hintGreaterEq(N(big), N(big)));
  EXPECT_FALSE(hintLess(N(big), N("9" + std::string(29, '9'))));
  EXPECT_TRUE(hintSame(N(big), N(big)));
  EXPECT_FALSE(hintSame(N("05"), N("5")));
}

// (J K "2") spells 5: the list [K, K, K, H] is the leaf "5", and "2" is the
// list [K, K, H] (bits 1011 = 4*2 + 3). (J K K) is the list [K], zero.
TEST(Hint, CellSpellingsReadByTheirText) {
  Term five = cell(true, N("2"));
  EXPECT_EQ(text(hintPlus(five, N("1"))), "6");
  EXPECT_EQ(text(hintMult(N("02"), five)), "010");
  EXPECT_TRUE(hintLess(N("4"), five));
  EXPECT_TRUE(hintSame(five, N("5")));
  EXPECT_EQ(text(hintOver(N("7"), cell(true, sym('K')))), "Z");
  EXPECT_EQ(hintToReal(five), 5.0);
}

TEST(Hint, ToRealByTheHostConversion) {
  EXPECT_FALSE(std::signbit(hintToReal(N("0"))));
  EXPECT_EQ(hintToReal(N("9007199254740993")), 9007199254740992.0);  // ties to even
  EXPECT_EQ(hintToReal(N("1" + std::string(400, '0'))), HUGE_VAL);
  EXPECT_EQ(hintToReal(N("01" + std::string(400, '0'))), -HUGE_VAL);
}

}  // namespace
}  // namespace tarn

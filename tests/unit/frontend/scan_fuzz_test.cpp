// Random texts through the structure check, normalisation and the splitting
// helpers: each ends in a report or in success, never in a crash, a failing
// text fails the compile stage with the same report, and the helpers agree
// with each other on every sound text.
#include <gtest/gtest.h>

#include <random>

#include "runtime/report.h"
#include "frontend/compile.h"
#include "frontend/scan.h"
#include "terms/texts.h"

namespace tarn {
namespace {

std::string randomText(std::mt19937& rng) {
  // Mostly structure bytes, so that sound texts are common enough.
  using namespace std::string_view_literals;
  static constexpr std::string_view kBytes = "()[]{},,  \n\nab+=!$\\\0\xff"sv;
  std::string text(rng() % 40, ' ');
  for (char& c : text) c = kBytes[rng() % kBytes.size()];
  return text;
}

TEST(ScanFuzz, RandomTextsEndInAReportOrSuccess) {
  std::mt19937 rng(20240611);
  int sound = 0;
  for (int round = 0; round < 20000; round++) {
    std::string text = randomText(rng);
    Report report;
    long position = -1;
    bool ok = checkStructure(text, report, position);
    EXPECT_LE(excerpt(text).size(), 72u);
    EXPECT_LE(excerptPlain(text).size(), 72u);
    if (!ok) {
      // The compile stage passes the structure report through unchanged.
      // (A sound text goes on to the parser, where a stray comma behind a
      // one-byte element is a fatal assertion of the atom level.)
      Report compiled = compile(text);
      EXPECT_EQ(compiled.tag, report.tag);
      EXPECT_EQ(compiled.say, report.say);
      ASSERT_TRUE(report.tag == "match" || report.tag == "comma") << text;
      ASSERT_GE(position, 0);
      ASSERT_LT(position, long(text.size()));
      EXPECT_EQ(report.vip, positionText(position));
      continue;
    }
    sound++;
    std::string norm = normalise(text);
    EXPECT_EQ(normalise(norm), norm) << text;
    // splitPoints and findOutside find the same commas.
    std::vector<long> points = splitPoints(norm, ",");
    long from = 0;
    for (long p : points) {
      ASSERT_EQ(findOutside(from, norm, ","), p) << norm;
      from = p + 1;
    }
    EXPECT_EQ(findOutside(from, norm, ","), -1) << norm;
    // A report built from the text travels whole once its fields are
    // balanced excerpts.
    Report r;
    r.say = excerpt(norm);
    r.vip = excerptPlain(text);
    Report back = reportFromText(reportText(r));
    EXPECT_EQ(back.say, r.say);
    EXPECT_EQ(back.vip, r.vip);
  }
  EXPECT_GT(sound, 1000);
}

}  // namespace
}  // namespace tarn

// Times the decimal arithmetic on hint texts, text in and text out, on the
// workloads that bench/numbers/peers.sh runs with bc and python3's decimal:
//   pow    3^200000 in full
//   fact   10000! computed as n * fact(n - 1), one text product per step
//   mul    the product of two 100,000-digit numbers
//   div    quotient and remainder of a 200,000-digit by a 100,000-digit number
// and a few more that show the machine-word path and the linear parts.
// Each workload runs several times; the best time is printed.
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <random>
#include <string>

#include "numbers/decimal.h"

namespace {

using namespace tarn;

double bestOf(int runs, const std::function<void()>& fn) {
  double best = 1e30;
  for (int i = 0; i < runs; i++) {
    auto t0 = std::chrono::steady_clock::now();
    fn();
    auto t1 = std::chrono::steady_clock::now();
    best = std::min(best, std::chrono::duration<double>(t1 - t0).count());
  }
  return best;
}

std::string randomDigits(std::mt19937_64& rng, size_t n) {
  std::string s(n, '0');
  for (char& c : s) c = char('0' + rng() % 10);
  s[0] = char('1' + rng() % 9);
  return s;
}

void report(const char* name, double seconds, const std::string& detail) {
  std::printf("%-8s %10.4f s   %s\n", name, seconds, detail.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  int runs = argc > 1 ? std::atoi(argv[1]) : 5;
  std::mt19937_64 rng(12345);
  size_t sink = 0;

  std::string p;
  report("pow", bestOf(runs, [&] { p = hintPowaText("3", "200000"); }),
         std::to_string(p.size()) + " digits");

  std::string f;
  report("fact", bestOf(runs, [&] {
           f = "1";
           for (int n = 2; n <= 10000; n++) f = hintMulText(std::to_string(n), f);
         }),
         std::to_string(f.size()) + " digits");

  std::string x = randomDigits(rng, 100000), y = randomDigits(rng, 100000);
  std::string prod;
  report("mul", bestOf(runs, [&] { prod = hintMulText(x, y); }), std::to_string(prod.size()) + " digits");

  std::string a = randomDigits(rng, 200000), b = randomDigits(rng, 100000);
  std::string q, r;
  report("div", bestOf(runs, [&] { hintOverCentText(a, b, q, r); }),
         "quotient and remainder from one division, " + std::to_string(q.size()) + " + " +
             std::to_string(r.size()) + " digits");
  report("div2", bestOf(runs, [&] {
           hintOverText(a, b, q);
           hintCentText(a, b, r);
         }),
         "over and cent as two calls");

  // The linear and machine-word parts.
  std::string fa = randomDigits(rng, 20000), fb = randomDigits(rng, 20000);
  report("add", bestOf(runs, [&] {
           std::string s = fa;
           for (int i = 0; i < 1000; i++) s = hintAddText(s, fb);
           sink += s.size();
         }),
         "1000 sums of 20,000-digit numbers");
  report("small", bestOf(runs, [&] {
           std::string s = "1";
           for (int i = 0; i < 1000000; i++) {
             s = hintAddText(s, "12345");
             if (s.size() > 12) s = hintOverText(s, "1000", s) ? s : s;
           }
           sink += s.size();
         }),
         "1,000,000 small sums");
  report("mulsmall", bestOf(runs, [&] {
           std::string s = "7";
           for (int i = 0; i < 1000000; i++) s = hintMulText(std::to_string(i % 1000 + 1), i % 4 ? s : "7");
           sink += s.size();
         }),
         "1,000,000 small products");
  std::fprintf(stderr, "%zu\n", sink);
  return 0;
}

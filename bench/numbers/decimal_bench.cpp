// Times the decimal arithmetic on hint texts, text in and text out, on the
// workloads that bench/numbers/peers.sh runs with bc and python3's decimal:
//   pow    3^200000 in full
//   fact   10000! computed as n * fact(n - 1), one text product per step
//   mul    the product of two 100,000-digit numbers
//   div    quotient and remainder of a 200,000-digit by a 100,000-digit number
// and a few more that show the machine-word path and the linear parts.
// Each workload runs several times; the best time is printed, as processor
// time of this process (the machine may be shared) and as wall time.
#include <time.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "numbers/bignum/decimal.h"

namespace {

using namespace tarn;

struct Times {
  double cpu = 1e30, wall = 1e30;
};

double now(clockid_t clock) {
  timespec t;
  clock_gettime(clock, &t);
  return double(t.tv_sec) + double(t.tv_nsec) * 1e-9;
}

Times bestOf(int runs, const std::function<void()>& fn) {
  Times best;
  for (int i = 0; i < runs; i++) {
    double c0 = now(CLOCK_PROCESS_CPUTIME_ID), w0 = now(CLOCK_MONOTONIC);
    fn();
    best.cpu = std::min(best.cpu, now(CLOCK_PROCESS_CPUTIME_ID) - c0);
    best.wall = std::min(best.wall, now(CLOCK_MONOTONIC) - w0);
  }
  return best;
}

std::string randomDigits(std::mt19937_64& rng, size_t n) {
  std::string s(n, '0');
  for (char& c : s) c = char('0' + rng() % 10);
  s[0] = char('1' + rng() % 9);
  return s;
}

void report(const char* name, Times t, const std::string& detail) {
  std::printf("%-9s cpu %8.4f s   wall %8.4f s   %s\n", name, t.cpu, t.wall, detail.c_str());
}

}  // namespace

int main(int argc, char** argv) {
  int runs = argc > 1 ? std::atoi(argv[1]) : 5;
  std::mt19937_64 rng(12345);
  size_t sink = 0;

  std::string p;
  Times t = bestOf(runs, [&] { p = hintPowaText("3", "200000"); });
  report("pow", t, std::to_string(p.size()) + " digits");

  std::string f;
  t = bestOf(runs, [&] {
    f = "1";
    for (int n = 2; n <= 10000; n++) f = hintMulText(std::to_string(n), f);
  });
  report("fact", t, std::to_string(f.size()) + " digits");

  // The same through a sink over two buffers used in turn, as a caller that
  // writes results straight into new leaves would (no string, no copy).
  struct Buffer {
    std::vector<char> bytes;
    size_t length = 0;
  } buffers[2];
  auto room = [](void* context, size_t n) {
    auto* b = static_cast<Buffer*>(context);
    b->length = n;
    if (b->bytes.size() < n) b->bytes.resize(n + n / 2);
    return b->bytes.data();
  };
  t = bestOf(runs, [&] {
    buffers[0].bytes.assign(1, '1');
    buffers[0].length = 1;
    for (int n = 2; n <= 10000; n++) {
      const Buffer& from = buffers[n % 2];
      hintMulInto(std::to_string(n), std::string_view(from.bytes.data(), from.length),
                  TextSink{room, &buffers[1 - n % 2]});
    }
  });
  report("factsink", t, std::to_string(buffers[10000 % 2 == 0 ? 1 : 0].length) + " digits, into reused buffers");

  std::string x = randomDigits(rng, 100000), y = randomDigits(rng, 100000);
  std::string prod;
  t = bestOf(runs, [&] { prod = hintMulText(x, y); });
  report("mul", t, std::to_string(prod.size()) + " digits");

  std::string a = randomDigits(rng, 200000), b = randomDigits(rng, 100000);
  std::string q, r;
  t = bestOf(runs, [&] { hintOverCentText(a, b, q, r); });
  report("div", t, "one division, " + std::to_string(q.size()) + " + " + std::to_string(r.size()) + " digits");
  t = bestOf(runs, [&] {
    hintOverText(a, b, q);
    hintCentText(a, b, r);
  });
  report("div2", t, "over and cent as two calls");

  // The linear and machine-word parts.
  std::string fa = randomDigits(rng, 20000), fb = randomDigits(rng, 20000);
  t = bestOf(runs, [&] {
    std::string s = fa;
    for (int i = 0; i < 1000; i++) s = hintAddText(s, fb);
    sink += s.size();
  });
  report("add", t, "1000 sums of 20,000-digit numbers");
  t = bestOf(runs, [&] {
    std::string s = "1";
    for (int i = 0; i < 1000000; i++) {
      s = hintAddText(s, "12345");
      if (s.size() > 12) hintOverText(s, "1000", s);
    }
    sink += s.size();
  });
  report("small", t, "1,000,000 small sums");
  t = bestOf(runs, [&] {
    std::string s = "7";
    for (int i = 0; i < 1000000; i++) s = hintMulText(std::to_string(i % 1000 + 1), i % 4 ? s : "7");
    sink += s.size();
  });
  report("mulsmall", t, "1,000,000 small products");
  std::string big = randomDigits(rng, 1000000);
  t = bestOf(runs, [&] { sink += hintHalfText(big).size(); });
  report("half", t, "half of a 1,000,000-digit number (text in, text out)");
  std::fprintf(stderr, "(%zu)\n", sink);
  return 0;
}

// Test driver for the hint text arithmetic: reads lines "OP X [Y]" from the
// standard input and writes one result text per line ("Z" when there is no
// result). OP is one of add sub mul over cent divmod (writes "Q R") powa half
// opp cmp, or one of them behind "scalar-", run with the vector kernels off.
#include <iostream>
#include <string>

#include "numbers/bignum/decimal.h"
#include "numbers/bignum/decimal_simd.h"

namespace {

std::string apply(const std::string& op, const std::string& x, const std::string& y) {
  using namespace tarn;
  if (op.rfind("scalar-", 0) == 0) {
    useVectorKernels(false);
    std::string result = apply(op.substr(7), x, y);
    useVectorKernels(true);
    return result;
  }
  std::string q, r;
  if (op == "add") return hintAddText(x, y);
  if (op == "sub") return hintSubText(x, y);
  if (op == "mul") return hintMulText(x, y);
  if (op == "over") return hintOverText(x, y, r) ? r : "Z";
  if (op == "cent") return hintCentText(x, y, r) ? r : "Z";
  if (op == "divmod") return hintOverCentText(x, y, q, r) ? q + " " + r : "Z";
  if (op == "powa") return hintPowaText(x, y);
  if (op == "half") return hintHalfText(x);
  if (op == "opp") return hintOppositeText(x);
  if (op == "cmp") return std::to_string(hintCompareText(x, y));
  return "unknown operation " + op;
}

}  // namespace

int main() {
  std::ios::sync_with_stdio(false);
  std::string line;
  while (std::getline(std::cin, line)) {
    size_t a = line.find(' ');
    size_t b = line.find(' ', a + 1);
    std::string op = line.substr(0, a);
    std::string x = line.substr(a + 1, b == std::string::npos ? std::string::npos : b - a - 1);
    std::string y = b == std::string::npos ? "" : line.substr(b + 1);
    std::cout << apply(op, x, y) << '\n';
  }
  return 0;
}

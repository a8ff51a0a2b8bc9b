// Every unit test runs with the builtin table installed, as a run has it.
#include <gtest/gtest.h>

#include "driver/builtins.h"

namespace {

class BuiltinTable : public ::testing::Environment {
 public:
  void SetUp() override { tarn::installAllBuiltins(); }
};

const auto* const kInstalled = ::testing::AddGlobalTestEnvironment(new BuiltinTable);

}  // namespace

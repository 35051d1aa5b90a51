#pragma once

namespace marvento {

// Run-time error numbers that the compute command tells apart. Arithmetic that would fail
// reports one of these instead of producing NaN or infinity, and the command's handler
// decides what the user sees.
enum RunError : int {
  kNoError = 0,
  kInvalidCall = 5,     // invalid argument, also the command's own "out of range"
  kOverflow = 6,        // a result too large for its type, and 0 / 0
  kDivisionByZero = 11  // also the command's own "both positions coincide"
};

}  // namespace marvento

// Repeatable random numbers: the same on every machine, unlike the standard library's
// distributions.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>

namespace scenes {

class Random {
 public:
  explicit Random(uint64_t seed) : state_(seed * 0x9E3779B97F4A7C15u + 0x632BE59BD9B4E019u) {}

  double Uniform() {  // 0 up to and without 1
    state_ += 0x9E3779B97F4A7C15u;
    uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
    return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1p-53;
  }
  double Between(double low, double high) { return low + (high - low) * Uniform(); }

  double Gauss() {  // mean 0, deviation 1
    const double radius = std::sqrt(-2.0 * std::log(1.0 - Uniform()));
    return radius * std::cos(2.0 * std::numbers::pi * Uniform());
  }

 private:
  uint64_t state_;
};

}  // namespace scenes

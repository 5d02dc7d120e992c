/// Numpy arrays that own what C++ computed.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <span>
#include <utility>
#include <vector>

#include "common/large_pages.hpp"
#include "dravo/atoms.hpp"
#include "dravo/pose.hpp"

namespace dravo::python {

namespace py = pybind11;

/// Rows of the C order; others are copied into it.
using Doubles = py::array_t<double, py::array::c_style | py::array::forcecast>;

/// An array that takes the values over.
template <class Value>
py::array_t<Value> array_of(std::vector<Value> values, std::vector<py::ssize_t> shape) {
  auto owned = std::make_unique<std::vector<Value>>(std::move(values));
  const Value* const data = owned->data();
  const py::capsule owner(owned.release(), [](void* memory) {
    std::unique_ptr<std::vector<Value>>(static_cast<std::vector<Value>*>(memory));
  });
  return py::array_t<Value>(std::move(shape), data, owner);
}

template <class Value>
py::array_t<Value> array_of(std::vector<Value> values) {
  const auto size = static_cast<py::ssize_t>(values.size());
  return array_of(std::move(values), {size});
}

struct Freed {
  void operator()(double* memory) const { std::free(memory); }
};

/// Memory that nobody has written yet.
using Memory = std::unique_ptr<double[], Freed>;

/// For so many numbers. Large memory comes in large pages.
inline Memory memory_for(std::size_t numbers) {
  constexpr std::size_t kLargePage = std::size_t{1} << 21U;
  const std::size_t bytes = std::max<std::size_t>(numbers * sizeof(double), 1);
  const bool large = bytes >= kLargePage;
  const std::size_t whole = (bytes + kLargePage - 1) / kLargePage * kLargePage;
  void* const memory = large ? std::aligned_alloc(kLargePage, whole) : std::malloc(bytes);
  if (memory == nullptr) throw std::bad_alloc();
  prefer_large_pages(memory, whole);
  return Memory(static_cast<double*>(memory));
}

/// An array that takes it over.
inline py::array_t<double> array_of(Memory memory, std::vector<py::ssize_t> shape) {
  double* const data = memory.release();
  const py::capsule owner(data, [](void* freed) { std::free(freed); });
  return py::array_t<double>(std::move(shape), data, owner);
}

inline py::array_t<double> points_array(std::span<const Vec3> points) {
  std::vector<double> values;
  values.reserve(3 * points.size());
  for (const Vec3& p : points) values.insert(values.end(), {p.x, p.y, p.z});
  return array_of(std::move(values), {static_cast<py::ssize_t>(points.size()), 3});
}

inline py::array_t<double> vector_array(const Vec3& p) {
  return array_of(std::vector<double>{p.x, p.y, p.z});
}

/// r to gamma.
inline std::array<double, 6> numbers_of(const PoseDegrees& pose) {
  return {pose.r, pose.theta, pose.phi, pose.alpha, pose.beta, pose.gamma};
}

inline PoseDegrees pose_of(const std::array<double, 6>& numbers) {
  const auto [r, theta, phi, alpha, beta, gamma] = numbers;
  return {r, theta, phi, alpha, beta, gamma};
}

/// Rows of n x 6, where they are.
inline std::span<const PoseDegrees> poses_span(const Doubles& rows) {
  static_assert(sizeof(PoseDegrees) == 6 * sizeof(double));
  return {reinterpret_cast<const PoseDegrees*>(rows.data()),
          static_cast<std::size_t>(rows.shape(0))};
}

/// n x 6.
inline py::array_t<double> poses_array(std::span<const PoseDegrees> poses) {
  std::vector<double> values;
  values.reserve(6 * poses.size());
  for (const PoseDegrees& pose : poses)
    for (const double number : numbers_of(pose)) values.push_back(number);
  return array_of(std::move(values), {static_cast<py::ssize_t>(poses.size()), 6});
}

/// x, y, z one behind the other.
inline std::vector<Vec3> points_of(std::span<const double> numbers) {
  std::vector<Vec3> points(numbers.size() / 3);
  const double* next = numbers.data();
  for (Vec3& p : points) {
    p = {next[0], next[1], next[2]};
    next += 3;
  }
  return points;
}

/// n x 3.
inline std::vector<Vec3> points_of(const Doubles& rows) {
  return points_of(std::span(rows.data(), static_cast<std::size_t>(rows.size())));
}

}  // namespace dravo::python

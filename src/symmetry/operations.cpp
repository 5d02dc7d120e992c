#include "symmetry/operations.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <map>
#include <tuple>

#include "common/constants.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {
namespace {

/// Which operation is the product of which two; -1 where the product is not there.
class ProductTable {
 public:
  explicit ProductTable(const std::vector<Operation>& operations)
      : size_(operations.size()), products_(size_ * size_, -1) {
    const auto [a, b] = telling_atoms(operations);
    std::map<Key, std::int32_t> numbers;
    for (std::size_t k = 0; k < size_; ++k)
      numbers[{operations[k].image[a], operations[k].image[b], operations[k].proper}] =
          static_cast<std::int32_t>(k);
    for (std::size_t i = 0; i < size_; ++i)
      for (std::size_t j = 0; j < size_; ++j) {
        const auto& [first, second] = std::tie(operations[j], operations[i]);
        const auto product =
            numbers.find({second.image[at(first.image[a])], second.image[at(first.image[b])],
                          first.proper == second.proper});
        if (product == numbers.end()) continue;
        const Operation& found = operations[at(product->second)];
        if (is_product(found, second, first)) products_[i * size_ + j] = product->second;
      }
  }

  /// Number of the operation that does j first, then i.
  [[nodiscard]] std::int32_t product(std::size_t i, std::size_t j) const {
    return products_[i * size_ + j];
  }

  [[nodiscard]] bool closed() const {
    return std::find(products_.begin(), products_.end(), -1) == products_.end();
  }

 private:
  using Key = std::tuple<std::int32_t, std::int32_t, bool>;

  static std::size_t at(std::int32_t atom) { return static_cast<std::size_t>(atom); }

  /// Two atoms whose images tell all operations of one hand apart.
  static std::pair<std::size_t, std::size_t> telling_atoms(
      const std::vector<Operation>& operations) {
    const std::size_t atoms = operations.front().image.size();
    for (std::size_t a = 0; a < atoms; ++a)
      for (std::size_t b = a + 1; b < atoms; ++b)
        if (tell_apart(operations, a, b)) return {a, b};
    return {0, atoms - 1};
  }

  /// Operations that are not among these may have the images of one that is at the telling atoms.
  static bool is_product(const Operation& found, const Operation& second, const Operation& first) {
    for (std::size_t i = 0; i < found.image.size(); ++i)
      if (found.image[i] != second.image[at(first.image[i])]) return false;
    return true;
  }

  static bool tell_apart(const std::vector<Operation>& operations, std::size_t a, std::size_t b) {
    std::map<Key, int> seen;
    return std::all_of(operations.begin(), operations.end(), [&](const Operation& o) {
      return seen.emplace(Key{o.image[a], o.image[b], o.proper}, 0).second;
    });
  }

  std::size_t size_;
  std::vector<std::int32_t> products_;
};

/// A set of matrices that nearly multiply like a group becomes one that does: each is the average
/// of what its products with all others say of it. What is missed is squared in every round.
void make_exact(std::vector<Operation>& group, const ProductTable& table) {
  constexpr int kMostRounds = 10;
  constexpr double kExact = 1e-12;
  for (int round = 0; round < kMostRounds; ++round) {
    std::vector<Matrix3> better(group.size());
    double change = 0.0;
    for (std::size_t i = 0; i < group.size(); ++i) {
      Matrix3 sum{};
      for (std::size_t j = 0; j < group.size(); ++j)
        sum = sum + group[static_cast<std::size_t>(table.product(i, j))].matrix *
                        transposed(group[j].matrix);
      better[i] = nearest_orthogonal((1.0 / static_cast<double>(group.size())) * sum);
      change = std::max(change, difference(better[i], group[i].matrix));
    }
    for (std::size_t i = 0; i < group.size(); ++i) group[i].matrix = better[i];
    if (change * change < kExact) break;
  }
}

}  // namespace

std::vector<Operation> exact_group(std::vector<Operation> found, double tolerance) {
  std::erase_if(found, [&](const Operation& o) { return o.residual > tolerance; });
  while (found.size() > 1) {
    const ProductTable table(found);
    if (table.closed()) {
      make_exact(found, table);
      break;
    }
    // An operation and its inverse miss by the same, but for rounding.
    constexpr double kRounding = 1e-9;
    const double worst = largest_residual(found);
    std::erase_if(found, [&](const Operation& o) { return o.residual >= worst - kRounding; });
  }
  return found;
}

std::vector<Operation> proper_operations(const std::vector<Operation>& operations) {
  std::vector<Operation> proper;
  std::copy_if(operations.begin(), operations.end(), std::back_inserter(proper),
               [](const Operation& o) { return o.proper; });
  return proper;
}

std::vector<Vec3> symmetrised_positions(const std::vector<Vec3>& positions,
                                        const std::vector<Operation>& group) {
  if (group.size() < 2) return positions;
  std::vector<Vec3> symmetrised(positions.size());
  for (const Operation& operation : group) {
    const Matrix3 back = transposed(operation.matrix);
    for (std::size_t i = 0; i < positions.size(); ++i)
      symmetrised[i] =
          symmetrised[i] + back * positions[static_cast<std::size_t>(operation.image[i])];
  }
  for (Vec3& p : symmetrised) p = (1.0 / static_cast<double>(group.size())) * p;
  return symmetrised;
}

Matrix3 averaged(const Matrix3& tensor, const std::vector<Operation>& group) {
  Matrix3 sum{};
  for (const Operation& operation : group)
    sum = sum + operation.matrix * tensor * transposed(operation.matrix);
  return (1.0 / static_cast<double>(group.size())) * sum;
}

double largest_residual(const std::vector<Operation>& operations) {
  double worst = 0.0;
  for (const Operation& operation : operations) worst = std::max(worst, operation.residual);
  return worst;
}

int order_of(const Operation& operation) {
  constexpr int kHighest = 60;
  const Matrix3 turn = operation.proper ? operation.matrix : -1.0 * operation.matrix;
  // An improper operation as a turn with a reflection across its axis: -R is that turn and a half.
  const double half = operation.proper ? 0.0 : kPi;
  const double angle = std::acos(clamped_to_unit((trace(turn) - 1.0) / 2.0)) - half;
  for (int n = 1; n < kHighest; ++n) {
    const double turns = n * angle / kTwoPi;
    constexpr double kWhole = 0.02;
    if (std::abs(turns - std::round(turns)) < kWhole) return n;
  }
  return kHighest;
}

std::string name_of(const Operation& operation) {
  const int n = order_of(operation);
  if (operation.proper) return n == 1 ? "E" : fmt::format("C{}", n);
  if (n == 1) return "Cs";
  return n == 2 ? "Ci" : fmt::format("S{}", n);
}

Vec3 axis_of(const Operation& operation) {
  const Matrix3 m = operation.proper ? operation.matrix : -1.0 * operation.matrix;
  // Of a rotation by an angle w: m + m^T + (1 - trace) = 2 (1 - cos w) u u^T.
  const Matrix3 square = m + transposed(m) + (1.0 - trace(m)) * kIdentity;
  const auto* const longest =
      std::max_element(square.row.begin(), square.row.end(),
                       [](const Vec3& a, const Vec3& b) { return dot(a, a) < dot(b, b); });
  const double size = length(*longest);
  return size > 0.0 ? (1.0 / size) * *longest : Vec3{0.0, 0.0, 1.0};
}

}  // namespace dravo

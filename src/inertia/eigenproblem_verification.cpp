#include "inertia/eigenproblem_verification.hpp"

#include <cstddef>

namespace dravo {
namespace {

constexpr auto kSeparator = " ################################################### ";
constexpr std::array kTitles{" eigenvalue problem verification - molecule 1 ",
                             " eigenvalue problem verification - molecule 2 "};

using EquationLines = std::array<const char*, 3>;

constexpr std::array<EquationLines, 2> kEquations{{
    {"(tensor) \\times (vector C)=IC \\times (vector C)",
     "(tensor) \\times (vector B)=IB \\times (vector B)",
     "(tensor) \\times (vector A)=IA \\times (vector A)"},
    {" (tensor) \\times (vector C)=IC \\times (vector C)",
     " (tensor) \\times (vector B)=IB \\times (vector B)",
     "(tensor) \\times (vector A)=IA \\times (vector A)"},
}};
constexpr EquationLines kReversedEquations{"(tensor) \\times (-vector C)=IC \\times (-vector C)",
                                           "(tensor) \\times (-vector B)=IB \\times (-vector B)",
                                           "(tensor) \\times (-vector A)=IA \\times (vector A)"};
constexpr EquationLines kReversedOpenings{"  OPOSITE DIRECTION ", " OPOSITE DIRECTION  ",
                                          "OPOSITE DIRECTION   "};

void write_block(RecordStream& log, const char* title, const char* equation,
                 const Vec3& through_eigenproblem, const Vec3& eigenvector) {
  log.blank();
  log.record(title);
  log.blank();
  log.record(equation);
  log.record(" vector coord. through eigenproblem: ");
  log.record(through_eigenproblem);
  log.record(" eigenvector previously evaluated: ");
  log.record(eigenvector);
  log.blank();
}

Vec3 through_eigenproblem(const EigenProblem& problem, std::size_t k, const Vec3& vector) {
  const Vec3 product = problem.tensor * vector;
  const double moment = problem.axes.moments[k];
  return {product.x / moment, product.y / moment, product.z / moment};
}

}  // namespace

void write_eigenproblem_verification(RecordStream& log,
                                     const std::array<EigenProblem, 2>& molecules) {
  for (std::size_t m = 0; m < 2; ++m) {
    const EigenProblem& problem = molecules[m];
    for (std::size_t k = 0; k < 3; ++k)
      write_block(log, kTitles[m], kEquations[m][k],
                  through_eigenproblem(problem, k, problem.frame.axis(k)),
                  problem.axes.eigenvectors[k]);
  }

  log.record(kSeparator);
  log.record(" EIGENVALUE PROBLEM TEST - OPOSITE DIRECTION ");
  for (std::size_t m = 0; m < 2; ++m) {
    const EigenProblem& problem = molecules[m];
    if (m == 1) log.record(kSeparator);
    for (std::size_t k = 0; k < 3; ++k) {
      const Vec3 reversed = -problem.frame.axis(k);
      log.record(kReversedOpenings[k]);
      write_block(log, kTitles[m], kReversedEquations[k],
                  through_eigenproblem(problem, k, reversed), reversed);
    }
  }
  log.repeat(kSeparator, 3);
}

}  // namespace dravo

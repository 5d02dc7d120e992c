/// Computes energies with libxtb for the process that started it, over standard input. Alone in its
/// process, as libxtb keeps global state, may end the process, and brings a LAPACK of its own.
///
/// It runs in a folder of its own: loading GFN-FF writes files there, and reads what it finds.
#include <poll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xtb.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

#include "energy/xtb_protocol.hpp"

namespace dravo {
namespace {

/// Ends the process when nobody is left to talk to.
void transfer(ssize_t (*call)(char* bytes, std::size_t count), void* bytes, std::size_t count) {
  auto* next = static_cast<char*>(bytes);
  while (count > 0) {
    const ssize_t done = call(next, count);
    if (done < 0 && errno == EINTR) continue;
    if (done <= 0) ::_exit(0);
    next += done;
    count -= static_cast<std::size_t>(done);
  }
}

void receive(void* bytes, std::size_t count) {
  transfer([](char* to, std::size_t n) { return ::recv(STDIN_FILENO, to, n, 0); }, bytes, count);
}

void send(void* bytes, std::size_t count) {
  transfer([](char* from, std::size_t n) { return ::send(STDIN_FILENO, from, n, MSG_NOSIGNAL); },
           bytes, count);
}

template <class Number>
void receive(std::vector<Number>& numbers) {
  receive(numbers.data(), numbers.size() * sizeof(Number));
}

/// A computation may take minutes; whoever wanted it may be gone long before.
void end_with_the_other_side() {
  pollfd other_side{STDIN_FILENO, POLLRDHUP, 0};
  while (::poll(&other_side, 1, -1) < 0 && errno == EINTR) {
  }
  ::_exit(0);
}

/// GFN2 has some four arrays of N x N numbers on the stack: 500 atoms fill 8 MB.
void allow_a_large_stack() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_STACK, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  (void)::setrlimit(RLIMIT_STACK, &limit);
}

/// libxtb looks for parameter files in these folders, and one of the user's would change energies.
void look_for_files_here_alone() {
  for (const char* folder : {"HOME", "XTBHOME", "XTBPATH"}) ::setenv(folder, ".", 1);
}

/// libxtb reads how much charge each atom has, and gives each fragment the sum of its atoms.
/// Without that the first fragment gets all of the charge.
void write_charges(const XtbRequest& request) {
  std::FILE* const file = std::fopen("charges", "w");
  bool whole = file != nullptr;
  for (int atom = 0; whole && atom < request.atoms; ++atom)
    whole = std::fprintf(file, "%d\n", atom == request.charged_atom ? request.charge : 0) > 0;
  if (whole && std::fclose(file) == 0) return;
  std::perror("Error: the file of charges cannot be written");
  ::_exit(1);
}

bool is_talked_to() {
  struct stat input {};
  return ::fstat(STDIN_FILENO, &input) == 0 && S_ISSOCK(input.st_mode);
}

/// A turn about an axis that no molecule has: the rotation of the quaternion (8, 1, 3, 5)/sqrt(99).
constexpr std::array<std::array<double, 3>, 3> kTurn{{{31.0 / 99.0, -74.0 / 99.0, 58.0 / 99.0},
                                                      {86.0 / 99.0, 47.0 / 99.0, 14.0 / 99.0},
                                                      {-38.0 / 99.0, 46.0 / 99.0, 79.0 / 99.0}}};

/// x, y, z of points one behind the other.
void turn(std::vector<double>& points, bool back) {
  for (std::size_t k = 0; k < points.size(); k += 3) {
    const std::array<double, 3> p{points[k], points[k + 1], points[k + 2]};
    for (std::size_t i = 0; i < 3; ++i) {
      points[k + i] = 0.0;
      for (std::size_t j = 0; j < 3; ++j)
        points[k + i] += (back ? kTurn[j][i] : kTurn[i][j]) * p[j];
    }
  }
}

class Worker {
 public:
  Worker() : environment_(xtb_newEnvironment()) {
    xtb_setVerbosity(environment_, XTB_VERBOSITY_MUTED);
  }

  [[noreturn]] void run() {
    XtbRequest request{};
    while (true) {
      receive(&request, sizeof request);
      if (request.task == XtbTask::load)
        load(request);
      else
        compute(request.task == XtbTask::gradient);
    }
  }

 private:
  /// Once in the life of a process.
  void load(const XtbRequest& request) {
    const int atoms = request.atoms;
    std::vector<int> numbers(static_cast<std::size_t>(atoms));
    positions_.resize(3 * numbers.size());
    receive(numbers);
    receive(positions_);
    if (request.parametrisation == XtbParametrisation::gfnff && request.charge != 0)
      write_charges(request);
    const double charge = request.charge;
    molecule_ = xtb_newMolecule(environment_, &atoms, numbers.data(), positions_.data(), &charge,
                                &request.unpaired, nullptr, nullptr);
    calculator_ = xtb_newCalculator();
    self_consistent_ = request.parametrisation != XtbParametrisation::gfnff;
    if (xtb_checkEnvironment(environment_) == 0) load_parameters(request.parametrisation);
    reply(0.0);
  }

  void load_parameters(XtbParametrisation parametrisation) {
    switch (parametrisation) {
      case XtbParametrisation::gfnff:
        return xtb_loadGFNFF(environment_, molecule_, calculator_, nullptr);
      case XtbParametrisation::gfn2:
        return xtb_loadGFN2xTB(environment_, molecule_, calculator_, nullptr);
      case XtbParametrisation::gfn1:
        return xtb_loadGFN1xTB(environment_, molecule_, calculator_, nullptr);
    }
  }

  /// Results are made anew, so that an energy does not depend on those before.
  void compute(bool with_gradient) {
    receive(positions_);
    xtb_TResults results = xtb_newResults();
    double energy = 0.0;
    std::vector<double> gradient(with_gradient ? positions_.size() : 0);
    set_accuracy(with_gradient);
    // Two atoms of which a coordinate agrees within 1e-10 Bohr get a wrong gradient, those of a
    // bond along an axis for example.
    const bool turned = with_gradient && self_consistent_;
    if (turned) turn(positions_, false);
    xtb_updateMolecule(environment_, molecule_, positions_.data(), nullptr);
    xtb_singlepoint(environment_, molecule_, calculator_, results);
    if (xtb_checkEnvironment(environment_) == 0) xtb_getEnergy(environment_, results, &energy);
    if (with_gradient && xtb_checkEnvironment(environment_) == 0)
      xtb_getGradient(environment_, results, gradient.data());
    if (turned) turn(gradient, true);
    xtb_delResults(&results);
    if (reply(energy) && with_gradient) send(gradient.data(), gradient.size() * sizeof(double));
  }

  /// Energies are those of the program xtb as it is. Their errors go with the square of how far the
  /// charges are from convergence, those of gradients with the first power: there torques on
  /// molecule 1 were off by 1e-3 of their norm, and here are by 1e-5, for a sixth more time.
  void set_accuracy(bool with_gradient) {
    constexpr double kUsual = 1.0, kOfGradients = 0.02;
    if (self_consistent_)
      xtb_setAccuracy(environment_, calculator_, with_gradient ? kOfGradients : kUsual);
  }

  /// True unless something failed.
  bool reply(double energy) {
    XtbReply reply{xtb_checkEnvironment(environment_) != 0 ? 1 : 0, energy, {}};
    const int room = static_cast<int>(reply.message.size()) - 1;
    if (reply.failed != 0) xtb_getError(environment_, reply.message.data(), &room);
    send(&reply, sizeof reply);
    return reply.failed == 0;
  }

  xtb_TEnvironment environment_;
  xtb_TMolecule molecule_ = nullptr;
  xtb_TCalculator calculator_ = nullptr;
  bool self_consistent_ = false;
  std::vector<double> positions_;
};

}  // namespace
}  // namespace dravo

int main() {
  if (!dravo::is_talked_to()) {
    std::fputs("dravo-xtb-worker computes energies for dravo, which starts it\n", stderr);
    return 2;
  }
  dravo::allow_a_large_stack();
  dravo::look_for_files_here_alone();
  auto greeting = dravo::kXtbGreeting;
  dravo::send(greeting.data(), greeting.size());
  std::thread(dravo::end_with_the_other_side).detach();
  dravo::Worker().run();
}

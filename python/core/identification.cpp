#include <fmt/format.h>
#include <pybind11/stl.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "arrays.hpp"
#include "common/ordered_chunks.hpp"
#include "dravo/contacts.hpp"
#include "dravo/error.hpp"
#include "dravo/identify.hpp"
#include "identify/many_frames.hpp"
#include "interruptible.hpp"
#include "parts.hpp"

namespace dravo::python {
namespace {

// --- one pair -----------------------------------------------------------------------------------

py::dict axis_dict(const PrincipalFrame& frame, std::size_t k) {
  const PrincipalAxis& axis = frame.axes[k];
  py::dict found;
  found["letter"] = std::string(1, axis.letter);
  found["moment"] = axis.moment;
  found["moment_amu"] = axis.moment_amu;
  found["constant"] = axis.constant;
  found["direction"] = vector_array(axis.direction);
  found["fixed_by"] = words_of_axis(frame, k);
  return found;
}

py::array_t<double> matrices_of(const std::vector<MoleculeRotation>& rotations) {
  std::vector<double> values;
  for (const MoleculeRotation& rotation : rotations)
    for (const Vec3& row : rotation.rows) values.insert(values.end(), {row.x, row.y, row.z});
  return array_of(std::move(values), {static_cast<py::ssize_t>(rotations.size()), 3, 3});
}

py::dict identified(const Pair& pair, const std::string& rule, const std::optional<Pair>& like) {
  const Identification found =
      interruptible(pair.size(), [pair, like, frames = frame_rule(rule)](const Stop&) {
        return identify(pair, {frames, like ? &*like : nullptr});
      });
  py::list frames;
  for (const PrincipalFrame& frame : found.molecules) frames.append(frame_dict(frame));
  py::dict answer;
  answer["pose"] = numbers_of(found.parameters);
  answer["equivalent"] = poses_array(found.equivalent);
  answer["frames"] = frames;
  answer["remarks"] = remarks_on(found);
  answer["for_qn_dravo"] = is_for_qn_dravo(found.molecules);
  return answer;
}

py::dict frame_of(const Molecule& molecule, int role, const std::string& rule) {
  if (role != 1 && role != 2)
    throw InvalidInput(
        fmt::format("role: expected 1 or 2, the molecule of a pair, found {}", role));
  return frame_dict(
      interruptible(molecule.size(), [molecule, role, frames = frame_rule(rule)](const Stop&) {
        return principal_frame(molecule, role == 1 ? Role::molecule1 : Role::molecule2, frames);
      }));
}

// --- many pairs ---------------------------------------------------------------------------------

/// What was found, as columns. A frame without parameters ends the work, unless such ones are left
/// out.
class Table {
 public:
  explicit Table(bool skip_bad) : skip_bad_(skip_bad) {}

  void add(const IdentifiedFrame& frame) {
    if (frame.bad) {
      if (!skip_bad_) refuse(*frame.bad);
      return;
    }
    numbers_.push_back(frame.number);
    poses_.push_back(frame.parameters);
    shortest_.push_back(frame.survey.shortest);
    contacts_.push_back(frame.survey.contacts);
    remarks_.push_back(frame.remark);
  }

  [[nodiscard]] py::dict dict() && {
    py::dict columns;
    columns["frame"] = array_of(std::move(numbers_));
    columns["poses"] = poses_array(poses_);
    columns["shortest"] = array_of(std::move(shortest_));
    columns["contacts"] = array_of(std::move(contacts_));
    columns["remark"] = std::move(remarks_);
    return columns;
  }

 private:
  [[noreturn]] static void refuse(const BadFrame& bad) {
    const std::string message = bad.message + "\nskip_bad=True leaves such frames out";
    if (bad.refused) throw NoUniqueFrame({}, {message}, "");
    throw InvalidInput(message);
  }

  bool skip_bad_;
  std::vector<std::int64_t> numbers_;
  std::vector<PoseDegrees> poses_;
  std::vector<double> shortest_;
  std::vector<std::int64_t> contacts_;
  std::vector<std::string> remarks_;
};

/// Frames of the same atoms.
struct Trajectory {
  std::vector<Label> labels;
  std::int32_t n1;
  std::span<const double> positions;  ///< frames x atoms x 3

  [[nodiscard]] std::size_t frames() const { return positions.size() / (3 * labels.size()); }

  [[nodiscard]] Pair pair(std::size_t frame) const {
    const std::size_t numbers = 3 * labels.size();
    return {n1, Molecule(labels, points_of(positions.subspan(frame * numbers, numbers)))};
  }
};

struct ManyPairs {
  Trajectory frames;
  ManyFrames wanted;  ///< its reference is the one below
  std::optional<Pair> like;
  bool skip_bad;
};

IdentifiedFrame identified_frame(const ManyPairs& pairs, std::int64_t k) {
  IdentifiedFrame frame{.number = k + 1};
  try {
    identify_pair(pairs.frames.pair(static_cast<std::size_t>(k)), pairs.wanted, frame);
  } catch (const NoUniqueFrame& refusal) {
    frame.bad = bad_frame(frame.number, refusal);
  } catch (const Error& failure) {
    frame.bad = bad_frame(frame.number, failure);
  }
  return frame;
}

/// One per thread.
struct FrameMaker {
  const ManyPairs* pairs;
  const Stop* stop;

  void make(std::int64_t first, std::int64_t end, std::vector<IdentifiedFrame>& found) const {
    if (*stop) throw Stopped();
    found.clear();
    for (std::int64_t k = first; k < end; ++k) found.push_back(identified_frame(*pairs, k));
  }
};

Table identified_frames(const ManyPairs& pairs, const Stop& stop) {
  constexpr std::int64_t kTogether = 64;
  const auto frames = static_cast<std::int64_t>(pairs.frames.frames());
  Table table(pairs.skip_bad);
  make_chunks<std::vector<IdentifiedFrame>>(
      {0, frames, kTogether, pairs.wanted.threads},
      [&] {
        return FrameMaker{&pairs, &stop};
      },
      [&](const std::vector<IdentifiedFrame>& found) {
        for (const IdentifiedFrame& frame : found) table.add(frame);
      });
  return table;
}

/// Without the reference, which must live as long.
ManyFrames wanted_frames(PairRequest request, const std::string& selection, const std::string& rule,
                         const std::string& criterion, int threads) {
  return {.pair = std::move(request),
          .selection = IndexSelection::parse("frame", selection),
          .options = {frame_rule(rule), nullptr},
          .criterion = ContactCriterion::of_text(criterion),
          .threads = threads};
}

py::dict identify_arrays(const Pair& atoms, const Doubles& positions, const std::string& rule,
                         const std::optional<Pair>& like, const std::string& criterion, int threads,
                         bool skip_bad) {
  const std::span numbers(positions.data(), static_cast<std::size_t>(positions.size()));
  ManyPairs pairs{{atoms.labels(), atoms.n1(), numbers},
                  wanted_frames({}, "all", rule, criterion, threads),
                  like,
                  skip_bad};
  return interruptible(
             [pairs = std::move(pairs), kept = Kept(positions)](const Stop& stop) mutable {
               if (pairs.like) pairs.wanted.options.like = &*pairs.like;
               return identified_frames(pairs, stop);
             })
      .dict();
}

py::dict identify_file(PairRequest request, const std::string& selection, const std::string& rule,
                       const std::optional<Pair>& like, const std::string& criterion, int threads,
                       bool skip_bad) {
  ManyFrames wanted = wanted_frames(std::move(request), selection, rule, criterion, threads);
  return interruptible([wanted = std::move(wanted), like, skip_bad](const Stop& stop) mutable {
           if (like) wanted.options.like = &*like;
           FrameStream stream(wanted.pair.file);
           Table table(skip_bad);
           identify_frames(stream, wanted,
                           [&](std::span<const IdentifiedFrame> found, std::int64_t /*bytes*/) {
                             if (stop) throw Stopped();
                             for (const IdentifiedFrame& frame : found) table.add(frame);
                           });
           return table;
         })
      .dict();
}

}  // namespace

FrameRule frame_rule(const std::string& name) {
  if (name == "extended") return FrameRule::extended;
  if (name == "strict") return FrameRule::strict;
  throw InvalidInput(fmt::format("frames: expected extended or strict, found \"{}\"", name));
}

py::dict frame_dict(const PrincipalFrame& frame) {
  py::list axes;
  for (std::size_t k = 0; k < frame.axes.size(); ++k) axes.append(axis_dict(frame, k));
  py::dict found;
  found["kind"] = name_of(frame.kind);
  found["shape"] = name_of(frame.shape);
  found["rotor"] = name_of(frame.rotor);
  found["centre_of_mass"] = vector_array(frame.cm);
  found["axes"] = axes;
  found["rotations"] = matrices_of(frame.rotations);
  found["symmetry"] = words_of_rotations(frame);
  found["warnings"] = frame.warnings;
  found["rmsd"] = frame.rmsd;
  return found;
}

void add_identification(py::module_& core) {
  using namespace py::literals;
  core.def("identify", identified, "pair"_a, "frames"_a, "like"_a);
  core.def("frame", frame_of, "molecule"_a, "role"_a, "frames"_a);
  core.def("identify_arrays", identify_arrays, "atoms"_a, "positions"_a, "frames"_a, "like"_a,
           "criterion"_a, "threads"_a, "skip_bad"_a);
  core.def(
      "identify_file",
      [](const std::string& file, const SplitWord& split, const std::string& unit, bool check,
         const std::string& selection, const std::string& frames, const std::optional<Pair>& like,
         const std::string& criterion, int threads, bool skip_bad) {
        return identify_file(request_of(file, "", split, 1, unit, check), selection, frames, like,
                             criterion, threads, skip_bad);
      },
      "file"_a, "split"_a, "unit"_a, "check"_a, "selection"_a, "frames"_a, "like"_a, "criterion"_a,
      "threads"_a, "skip_bad"_a);
}

}  // namespace dravo::python

#include "quantum/job_scripts.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

#include "common/shown_text.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

/// How a program is called. Words in braces are those of the user's lines.
struct Call {
  std::string_view ending;
  std::string_view line;
};

/// By `QuantumProgram`.
constexpr std::array<Call, 10> kCalls{{
    {".dat", "psi4 -n {cores} {input} {output}"},
    {".inp", R"sh("$(command -v orca)" {input} > {output})sh"},  // it starts its parts by this path
    {".gjf", "g16 < {input} > {output}"},
    {".nw", "mpirun -np {cores} nwchem {input} > {output}"},
    {".in", "qchem -nt {cores} {input} {output}"},
    {".inp", "cp2k -i {input} -o {output}"},
    {".inp", "rungms {input} 00 {cores} > {output}"},
    {".xyz", "xtb {input} {method} --sp --chrg {charge} --uhf {unpaired} --norestart > {output}"},
    {".json", R"(qcengine run "${QC_PROGRAM:-psi4}" {input} > {output})"},
    {".inp", "echo 'say in run-pose.sh how {input} is run' >&2; false"},
}};

const Call& call_of(QuantumProgram program) { return kCalls.at(static_cast<std::size_t>(program)); }

void replace_all(std::string& text, std::string_view name, std::string_view value) {
  for (std::size_t at = text.find(name); at != std::string::npos;
       at = text.find(name, at + value.size()))
    text.replace(at, name.size(), value);
}

/// Of xtb: "--gfn 2", "--gfnff".
std::string option_of_xtb(const std::string& method) {
  if (method == "gfnff") return "--gfnff";
  if (method == "gfn0" || method == "gfn1" || method == "gfn2") return "--gfn " + method.substr(3);
  throw InvalidInput("--method: expected gfn0, gfn1, gfn2 or gfnff for xtb, found " +
                     dravo::quoted(method));
}

std::string line_of(const ScriptRequest& request) {
  std::string line = request.line;
  if (line.empty()) line = call_of(request.job.program).line;
  if (request.job.program == QuantumProgram::nwchem && request.job.cores == 1 &&
      request.line.empty())
    replace_all(line, "mpirun -np {cores} ", "");
  if (request.job.program == QuantumProgram::xtb && request.line.empty())
    replace_all(line, "{method}", option_of_xtb(request.job.method));
  replace_all(line, "{input}", R"("$1")");
  replace_all(line, "{output}", R"("$2")");
  replace_all(line, "{charge}", R"("$3")");
  replace_all(line, "{unpaired}", R"("$4")");
  replace_all(line, "{cores}", std::to_string(request.job.cores));
  return line;
}

/// "'pair.xyz 0 0' 'molecule-1.xyz 0 0'": a file, its charge and its unpaired electrons.
std::string inputs_of(const ScriptRequest& request) {
  std::string text;
  for (const QuantumSystem& system : systems_of(request.job))
    text += fmt::format("{}'{}{} {} {}'", text.empty() ? "" : " ", system.name, request.ending,
                        charge_of(request.job, system), multiplicity_of(request.job, system) - 1);
  return text;
}

constexpr std::string_view kPoseScript = R"script(#!/usr/bin/env bash
# run-pose.sh FOLDER...: computes the poses in these folders, such as 000/000017.
#
# Every computation runs in a folder NAME.running, which goes when it is done; NAME.out is what the
# program printed. What has a NAME.out is left alone. A computation that failed leaves NAME.failed,
# and starts again the next time, as one that was stopped does.
set -u
here=$(cd -- "$(dirname -- "$0")" && pwd)
inputs=(@inputs@)
export OMP_NUM_THREADS=@cores@ OPENBLAS_NUM_THREADS=1 MKL_NUM_THREADS=@cores@

# compute INPUT OUTPUT CHARGE UNPAIRED: in a shell of its own, which the line may end
compute() (
  @line@
)

status=0
for folder in "$@"; do
  for each in "${inputs[@]}"; do
    read -r input charge unpaired <<< "$each"
    name=${input%.*}
    cd "$here/$folder" || exit 1
    [ -e "$name.out" ] && continue
    rm -rf "$name.running" "$name.failed"
    mkdir "$name.running" && cp "$input" "$name.running" && cd "$name.running" || exit 1
    if compute "$input" "$name.out" "$charge" "$unpaired" > screen 2>&1 && [ -e "$name.out" ]; then
      mv "$name.out" .. && cd .. && rm -rf "$name.running"
    else
      cd .. && mv "$name.running" "$name.failed"
      echo "run-pose.sh: $folder/$input failed: see $folder/$name.failed" >&2
      status=1
    fi
  done
done
exit $status
)script";

constexpr std::string_view kMachineScript = R"script(#!/usr/bin/env bash
# run.sh [JOBS]: computes all poses that have not finished, JOBS at once (as many as the cores of
# this machine allow). It may be stopped and started again.
set -u
cd -- "$(dirname -- "$0")" || exit 1
exec 9< run.sh
flock -n 9 || { echo "run.sh: another one is running here" >&2; exit 1; }
jobs=${1:-$(( $(nproc) / @cores@ ))}
[ "$jobs" -ge 1 ] || jobs=1
if command -v parallel > /dev/null && parallel --version 2> /dev/null | grep -q GNU; then
  parallel --will-cite --jobs "$jobs" ./run-pose.sh {} < folders.txt
else
  xargs -n 1 -P "$jobs" ./run-pose.sh < folders.txt
fi
)script";

constexpr std::string_view kSlurmScript = R"script(#!/usr/bin/env bash
#SBATCH --job-name=@program@
#SBATCH --array=1-@tasks@
#SBATCH --cpus-per-task=@cores@
@memory@#SBATCH --requeue
#SBATCH --output=slurm-%A_%a.log
# sbatch run.sbatch, in this folder: each task computes a block of poses. What has finished is left
# alone, so the same command goes on after tasks were killed.
set -u
cd "${SLURM_SUBMIT_DIR:-.}" || exit 1
block=@block@
task=${SLURM_ARRAY_TASK_ID:?is set by sbatch}
sed -n "$(( (task - 1) * block + 1 )),$(( task * block ))p" folders.txt | xargs ./run-pose.sh
)script";

}  // namespace

std::string input_ending(QuantumProgram program) { return std::string(call_of(program).ending); }

void require_usable_line(const std::string& line) {
  if (line.find("{input}") == std::string::npos)
    throw InvalidInput("--run: expected {input}, the name of the input file, found none in " +
                       dravo::quoted(line));
  if (line.find('\n') != std::string::npos)
    throw InvalidInput("--run: expected one line, found several; a script may have more");
}

std::string pose_script(const ScriptRequest& request) {
  std::string text(kPoseScript);
  replace_all(text, "@inputs@", inputs_of(request));
  replace_all(text, "@cores@", std::to_string(request.job.cores));
  replace_all(text, "@line@", line_of(request));
  return text;
}

std::string machine_script(const ScriptRequest& request) {
  std::string text(kMachineScript);
  replace_all(text, "@cores@", std::to_string(request.job.cores));
  return text;
}

std::string slurm_script(const ScriptRequest& request) {
  constexpr std::int64_t kMostTasks = 1000;  // the default limit of an array is 1001, from 0
  constexpr std::int64_t kLeast = 10;        // a task takes a moment to start
  const std::int64_t smallest = (request.poses + kMostTasks - 1) / kMostTasks;
  const std::int64_t block = std::max(request.block > 0 ? request.block : kLeast, smallest);
  std::string text(kSlurmScript);
  replace_all(text, "@program@", name_of(request.job.program));
  replace_all(text, "@tasks@", std::to_string((request.poses + block - 1) / block));
  replace_all(text, "@block@", std::to_string(block));
  replace_all(text, "@cores@", std::to_string(request.job.cores));
  replace_all(text, "@memory@",
              request.job.memory > 0 ? fmt::format("#SBATCH --mem={}G\n", request.job.memory) : "");
  return text;
}

}  // namespace dravo

/// Scripts that run: with a made program in the place of a real one.
#include "quantum/job_scripts.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include "dravo/error.hpp"
#include "quantum/manifest.hpp"
#include "quantum/small_pairs.hpp"
#include "support/environment.hpp"
#include "support/message_of.hpp"
#include "support/processes.hpp"
#include "support/temporary_folder.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;

/// Says what it was called with, fails for an input that says so, or is killed with its script.
constexpr auto kProgram = R"script(#!/bin/sh
echo "$(basename "$(dirname "$PWD")") $* $OMP_NUM_THREADS" >> "@log@"
grep -q killed "$1" && kill -9 $PPID
grep -q silent "$1" && exit 0
echo "energy of $1" > "$2"
grep -q fails "$1" && exit 3
exit 0
)script";

class JobScripts : public ::testing::Test {
 protected:
  TemporaryFolder folder_;

  [[nodiscard]] fs::path path(const std::string& name) const { return folder_.path() / name; }

  void write_program(const std::string& name, const std::string& text) const {
    folder_.write(name, text);
    fs::permissions(path(name), fs::perms::owner_all);
  }

  /// Three computations of each pose.
  [[nodiscard]] static QuantumJob job() {
    QuantumJob job = job_of(QuantumProgram::orca, "hf", "sto-3g");
    job.charges = {-1, 0};
    job.multiplicities = {1, 3};
    job.cores = 2;
    return job;
  }

  /// Poses 1 to `poses` for the made program; scripts as an export has them.
  void export_poses(int poses, const QuantumJob& job) const {
    std::string program = kProgram;
    program.replace(program.find("@log@"), 5, path("log").string());
    write_program("program", program);
    const ScriptRequest request{
        job, ".inp", path("program").string() + " {input} {output} {cores} {charge} {unpaired}",
        poses, 0};
    std::string folders;
    for (int pose = 1; pose <= poses; ++pose) {
      const std::string folder = folder_of_pose(pose);
      fs::create_directories(path(folder));
      for (const QuantumSystem& system : systems_of(job))
        folder_.write(folder + "/" + std::string(system.name) + ".inp", "input\n");
      folders += folder + "\n";
    }
    folder_.write("folders.txt", folders);
    write_program("run-pose.sh", pose_script(request));
    write_program("run.sh", machine_script(request));
  }

  [[nodiscard]] int run(const std::vector<std::string>& words) const {
    std::vector<std::string> all{"/usr/bin/env", "bash"};
    all.insert(all.end(), words.begin(), words.end());
    int status = 0;
    ::waitpid(start_in(folder_, all), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  /// What the program was called with, since the last time.
  [[nodiscard]] std::multiset<std::string> calls() const {
    std::multiset<std::string> calls;
    if (!fs::exists(path("log"))) return calls;
    for (const std::string& line : lines_of(folder_.read("log"))) calls.insert(line);
    fs::remove(path("log"));
    return calls;
  }

  /// Names in the folder of a pose, without those of the inputs.
  [[nodiscard]] std::set<std::string> results(const std::string& folder) const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(path(folder)))
      if (entry.path().extension() != ".inp") names.insert(entry.path().filename().string());
    return names;
  }
};

const std::set<std::string> kAllOutputs{"pair.out", "molecule-1.out", "molecule-2.out"};

TEST_F(JobScripts, ComputeWhatHasNoOutput) {
  export_poses(2, job());
  EXPECT_EQ(run({"run-pose.sh", "000/000001", "000/000002"}), 0);
  // Input, output, cores, charge, unpaired electrons; and threads.
  EXPECT_EQ(calls(), (std::multiset<std::string>{"000001 pair.inp pair.out 2 -1 2 2",
                                                 "000001 molecule-1.inp molecule-1.out 2 -1 0 2",
                                                 "000001 molecule-2.inp molecule-2.out 2 0 2 2",
                                                 "000002 pair.inp pair.out 2 -1 2 2",
                                                 "000002 molecule-1.inp molecule-1.out 2 -1 0 2",
                                                 "000002 molecule-2.inp molecule-2.out 2 0 2 2"}));
  EXPECT_EQ(results("000/000001"), kAllOutputs);
  EXPECT_EQ(folder_.read("000/000002/molecule-2.out"), "energy of molecule-2.inp\n");
  EXPECT_EQ(run({"run-pose.sh", "000/000001", "000/000002"}), 0);
  EXPECT_TRUE(calls().empty()) << "all have finished";
  fs::remove(path("000/000002/molecule-1.out"));
  EXPECT_EQ(run({"run-pose.sh", "000/000001", "000/000002"}), 0);
  EXPECT_EQ(calls(), (std::multiset<std::string>{"000002 molecule-1.inp molecule-1.out 2 -1 0 2"}));
}

TEST_F(JobScripts, LeaveAFolderOfWhatFailed) {
  export_poses(2, job());
  folder_.write("000/000001/molecule-1.inp", "fails\n");
  folder_.write("000/000001/molecule-2.inp", "silent\n");
  EXPECT_EQ(run({"run-pose.sh", "000/000001", "000/000002"}), 1);
  EXPECT_EQ(calls().size(), 6U) << "the others are computed";
  EXPECT_EQ(results("000/000001"),
            (std::set<std::string>{"pair.out", "molecule-1.failed", "molecule-2.failed"}));
  EXPECT_TRUE(fs::exists(path("000/000001/molecule-1.failed/molecule-1.out")));
  EXPECT_EQ(results("000/000002"), kAllOutputs);
  folder_.write("000/000001/molecule-1.inp", "input\n");
  folder_.write("000/000001/molecule-2.inp", "input\n");
  EXPECT_EQ(run({"run-pose.sh", "000/000001", "000/000002"}), 0);
  EXPECT_EQ(calls().size(), 2U) << "what failed starts again";
  EXPECT_EQ(results("000/000001"), kAllOutputs);
}

TEST_F(JobScripts, StartAgainWhatWasKilled) {
  export_poses(1, job());
  folder_.write("000/000001/molecule-1.inp", "killed\n");
  EXPECT_EQ(run({"run-pose.sh", "000/000001"}), -1) << "the script, too";
  // The program goes on for a moment.
  ASSERT_TRUE(
      comes_true([&] { return fs::exists(path("000/000001/molecule-1.running/molecule-1.out")); }));
  EXPECT_EQ(results("000/000001"), (std::set<std::string>{"pair.out", "molecule-1.running"}));
  (void)calls();
  folder_.write("000/000001/molecule-1.inp", "input\n");
  folder_.write("000/000001/molecule-1.running/old", "of the first start\n");
  EXPECT_EQ(run({"run-pose.sh", "000/000001"}), 0);
  EXPECT_EQ(calls().size(), 2U);
  EXPECT_EQ(results("000/000001"), kAllOutputs);
}

TEST_F(JobScripts, MayBeCalledFromElsewhere) {
  export_poses(1, job());
  fs::create_directory(path("else where"));
  EXPECT_EQ(run({"-c", "cd 'else where' && ../run-pose.sh 000/000001"}), 0);
  EXPECT_EQ(results("000/000001"), kAllOutputs);
  EXPECT_EQ(run({"-c", "cd 'else where' && ../run.sh"}), 0);
  EXPECT_EQ(run({"run-pose.sh", "000/000007"}), 1) << "there is no such pose";
}

// All poses on one machine.

class MachineScripts : public JobScripts {
 protected:
  /// A path with what the scripts call, and perhaps with `parallel`.
  void make_tools(bool parallel) const {
    fs::create_directory(path("bin"));
    for (const char* const tool : {"bash", "sh", "env", "basename", "cat", "cp", "dirname", "flock",
                                   "grep", "mkdir", "mv", "nproc", "rm", "xargs"})
      for (const char* const place : {"/usr/bin/", "/bin/"})
        if (fs::exists(std::string(place) + tool) && !fs::exists(path("bin") / tool))
          fs::create_symlink(std::string(place) + tool, path("bin") / tool);
    if (parallel)
      write_program("bin/parallel", R"(#!/bin/sh
if [ "$1" = --version ]; then echo 'GNU parallel 20221122'; exit 0; fi
echo "$*" > )" + path("parallel").string() +
                                        R"(
cat | while read -r folder; do ./run-pose.sh "$folder" || exit 1; done
)");
  }

  void expect_all_computed(int poses) const {
    EXPECT_EQ(calls().size(), 3U * static_cast<std::size_t>(poses));
    for (int pose = 1; pose <= poses; ++pose)
      EXPECT_EQ(results(folder_of_pose(pose)), kAllOutputs) << pose;
  }
};

TEST_F(MachineScripts, NeedNoOtherProgram) {
  export_poses(3, job());
  make_tools(false);
  const Variable path_of_tools("PATH", path("bin").string());
  ASSERT_EQ(run({"-c", "command -v parallel"}), 1);
  EXPECT_EQ(run({"run.sh"}), 0);
  expect_all_computed(3);
  EXPECT_EQ(run({"run.sh", "2"}), 0);
  EXPECT_TRUE(calls().empty());
  folder_.write("000/000002/pair.inp", "fails\n");
  fs::remove(path("000/000002/pair.out"));
  EXPECT_NE(run({"run.sh"}), 0) << "a computation failed";
}

TEST_F(MachineScripts, TakeGnuParallelWhereItIs) {
  export_poses(3, job());
  make_tools(true);
  const Variable path_of_tools("PATH", path("bin").string());
  EXPECT_EQ(run({"run.sh", "2"}), 0);
  expect_all_computed(3);
  EXPECT_EQ(folder_.read("parallel"), "--will-cite --jobs 2 ./run-pose.sh {}\n");
}

TEST_F(MachineScripts, RunWithTheInstalledParallel) {
  if (!fs::exists("/usr/bin/parallel")) GTEST_SKIP() << "GNU parallel is not installed";
  export_poses(2, job());
  const Variable home("HOME", folder_.path().string());
  EXPECT_EQ(run({"run.sh", "2"}), 0);
  expect_all_computed(2);
}

/// More cores than the machine has.
TEST_F(MachineScripts, ComputeAtLeastOneAtOnce) {
  QuantumJob large = job();
  large.cores = 100000;
  export_poses(1, large);
  make_tools(true);
  const Variable path_of_tools("PATH", path("bin").string());
  EXPECT_EQ(run({"run.sh"}), 0);
  EXPECT_EQ(folder_.read("parallel"), "--will-cite --jobs 1 ./run-pose.sh {}\n");
}

TEST_F(MachineScripts, RunOnceAtATime) {
  export_poses(1, job());
  const int lock = ::open(path("run.sh").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(::flock(lock, LOCK_EX | LOCK_NB), 0);
  EXPECT_EQ(run({"run.sh"}), 1);
  EXPECT_TRUE(calls().empty());
  ::close(lock);
  EXPECT_EQ(run({"run.sh"}), 0);
}

// Slurm.

class SlurmScripts : public JobScripts {
 protected:
  /// The number behind a mark.
  [[nodiscard]] static std::int64_t number_after(const std::string& text, const std::string& mark) {
    const std::size_t at = text.find(mark);
    EXPECT_NE(at, std::string::npos) << mark;
    return std::stoll(text.substr(at + mark.size()));
  }

  /// The poses that a task computes, in its order.
  [[nodiscard]] std::vector<std::string> poses_of_task(std::int64_t task) const {
    const Variable number("SLURM_ARRAY_TASK_ID", std::to_string(task));
    EXPECT_EQ(run({"run.sbatch"}), 0);
    std::vector<std::string> poses;
    for (const std::string& line : lines_of(folder_.read("poses"))) poses.push_back(line);
    fs::remove(path("poses"));
    return poses;
  }

  void expect_each_pose_once(std::int64_t poses, std::int64_t block_asked) {
    const QuantumJob what = job();
    const std::string script = slurm_script({what, ".inp", "", poses, block_asked});
    folder_.write("run.sbatch", script);
    std::string folders;
    for (std::int64_t pose = 1; pose <= poses; ++pose)
      folders += "pose-" + std::to_string(pose) + "\n";
    folder_.write("folders.txt", folders);
    write_program("run-pose.sh",
                  "#!/bin/sh\nprintf '%s\\n' \"$@\" >> " + path("poses").string() + "\n");
    const std::int64_t tasks = number_after(script, "#SBATCH --array=1-"),
                       block = number_after(script, "\nblock=");
    EXPECT_LE(tasks, 1000) << poses;
    EXPECT_LT((tasks - 1) * block, poses) << "the last task has poses";
    EXPECT_GE(tasks * block, poses) << "there is a task for the last pose";
    EXPECT_GE(block, block_asked);
    for (std::int64_t task = 1; task <= tasks; ++task) {
      if (task > 4 && task + 4 < tasks) continue;  // the others are like these
      std::vector<std::string> expected;
      for (std::int64_t pose = (task - 1) * block + 1; pose <= std::min(task * block, poses);
           ++pose)
        expected.push_back("pose-" + std::to_string(pose));
      EXPECT_EQ(poses_of_task(task), expected) << "task " << task << " of " << poses << " poses";
    }
  }
};

TEST_F(SlurmScripts, ComputeEachPoseInOneTask) {
  for (const std::int64_t poses : {1, 10, 11, 999, 10001})
    for (const std::int64_t block : {0, 1, 7}) expect_each_pose_once(poses, block);
}

TEST_F(SlurmScripts, AskForWhatAComputationNeeds) {
  QuantumJob what = job();
  const std::string script = slurm_script({what, ".inp", "", 25, 0});
  EXPECT_TRUE(
      script.starts_with("#!/usr/bin/env bash\n#SBATCH --job-name=orca\n"
                         "#SBATCH --array=1-3\n#SBATCH --cpus-per-task=2\n"
                         "#SBATCH --requeue\n"))
      << script;
  what.memory = 8;
  EXPECT_NE(slurm_script({what, ".inp", "", 25, 0}).find("\n#SBATCH --mem=8G\n#SBATCH --requeue\n"),
            std::string::npos);
  folder_.write("run.sbatch", script);
  EXPECT_NE(run({"run.sbatch"}), 0) << "there is no task";
}

// Lines.

TEST_F(JobScripts, AreShellForEveryProgram) {
  for (const char* const name : {"psi4", "orca", "gaussian", "nwchem", "qchem", "cp2k", "gamess",
                                 "xtb", "qcschema", "template"})
    for (const int cores : {1, 4}) {
      QuantumJob each = job_of(quantum_program(name), "gfn2", "b");
      each.cores = cores;
      const ScriptRequest request{each, input_ending(each.program), "", 17, 0};
      folder_.write("pose", pose_script(request));
      folder_.write("machine", machine_script(request));
      folder_.write("slurm", slurm_script(request));
      for (const char* const script : {"pose", "machine", "slurm"}) {
        EXPECT_EQ(run({"-n", script}), 0) << name << ", " << script;
        for (const char* const mark :
             {"@inputs@", "@cores@", "@line@", "@block@", "@tasks@", "@memory@", "@program@",
              "{input}", "{output}", "{cores}", "{method}", "{charge}", "{unpaired}"})
          EXPECT_TRUE(std::string(name) == "template" ||
                      folder_.read(script).find(mark) == std::string::npos)
              << name << ": " << mark;
      }
    }
}

/// As the manuals have it: $1 is the input and $2 the output.
TEST_F(JobScripts, CallEachProgram) {
  struct Called {
    QuantumProgram program;
    const char* method;
    int cores;
    const char* ending;
    const char* line;
  };
  for (const Called& called : {
           Called{QuantumProgram::psi4, "hf", 4, ".dat", R"(psi4 -n 4 "$1" "$2")"},
           Called{QuantumProgram::orca, "hf", 4, ".inp", R"sh("$(command -v orca)" "$1" > "$2")sh"},
           Called{QuantumProgram::gaussian, "hf", 4, ".gjf", R"(g16 < "$1" > "$2")"},
           Called{QuantumProgram::nwchem, "hf", 4, ".nw", R"(mpirun -np 4 nwchem "$1" > "$2")"},
           Called{QuantumProgram::nwchem, "hf", 1, ".nw", R"(nwchem "$1" > "$2")"},
           Called{QuantumProgram::qchem, "hf", 4, ".in", R"(qchem -nt 4 "$1" "$2")"},
           Called{QuantumProgram::cp2k, "PBE", 4, ".inp", R"(cp2k -i "$1" -o "$2")"},
           Called{QuantumProgram::gamess, "hf", 4, ".inp", R"(rungms "$1" 00 4 > "$2")"},
           Called{QuantumProgram::xtb, "gfn1", 1, ".xyz",
                  R"(xtb "$1" --gfn 1 --sp --chrg "$3" --uhf "$4" --norestart > "$2")"},
           Called{QuantumProgram::xtb, "gfnff", 1, ".xyz",
                  R"(xtb "$1" --gfnff --sp --chrg "$3" --uhf "$4" --norestart > "$2")"},
           Called{QuantumProgram::qcschema, "hf", 4, ".json",
                  R"(qcengine run "${QC_PROGRAM:-psi4}" "$1" > "$2")"},
       }) {
    QuantumJob each = job_of(called.program, called.method, "b");
    each.cores = called.cores;
    EXPECT_EQ(input_ending(called.program), called.ending);
    const std::string script = pose_script({each, input_ending(called.program), "", 1, 0});
    EXPECT_NE(script.find(std::string("\n  ") + called.line + "\n"), std::string::npos) << script;
    EXPECT_NE(script.find("export OMP_NUM_THREADS=" + std::to_string(called.cores) + " "),
              std::string::npos);
  }
  const QuantumJob other = job_of(QuantumProgram::xtb, "pm6", "");
  EXPECT_EQ(message_of<InvalidInput>([&] {
              (void)pose_script({other, ".xyz", "", 1, 0});
            }),
            "--method: expected gfn0, gfn1, gfn2 or gfnff for xtb, found \"pm6\"");
}

TEST(UserLines, NeedAnInputOnOneLine) {
  EXPECT_EQ(message_of<InvalidInput>([] { require_usable_line("orca {input} > {output}"); }), "");
  EXPECT_EQ(
      message_of<InvalidInput>([] { require_usable_line("orca > {output}"); }),
      "--run: expected {input}, the name of the input file, found none in \"orca > {output}\"");
  EXPECT_EQ(message_of<InvalidInput>([] { require_usable_line("orca {input}\nls"); }),
            "--run: expected one line, found several; a script may have more");
}

/// A program that no line is known of does nothing without one.
TEST_F(JobScripts, OfATemplateAskForALine) {
  const QuantumJob unknown = job_of(QuantumProgram::user, "", "");
  fs::create_directories(path("000/000001"));
  folder_.write("000/000001/pair.inp", "input\n");
  write_program("run-pose.sh", pose_script({unknown, ".inp", "", 1, 0}));
  EXPECT_EQ(run({"run-pose.sh", "000/000001"}), 1);
  EXPECT_EQ(results("000/000001"), std::set<std::string>{"pair.failed"});
  EXPECT_NE(folder_.read("000/000001/pair.failed/screen").find("say in run-pose.sh how"),
            std::string::npos);
}

}  // namespace
}  // namespace dravo::test

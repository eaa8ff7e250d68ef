// Many runs at once: every thread makes all pieces, each beginning with another one, and everything
// must come out as it does when one run follows the other. Built with ThreadSanitizer, which ends
// the program when two threads share what one of them changes.
//
//   threads EXAMPLES     the folder of the examples; their pieces are made, too
#include <atomic>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "faces/same.h"
#include "korvo/korvo.h"

namespace {

constexpr std::size_t kThreads = 4;
constexpr int kRounds = 5;

struct Job {
  std::string text;
  korvo::RenderOptions options;
};

std::optional<std::string> read(const std::filesystem::path &path) {
  std::ifstream file(path, std::ios::binary);
  return file ? std::optional(std::string(std::istreambuf_iterator<char>(file), {})) : std::nullopt;
}

// Every data function, draws, loops, chords, tempo, macros, constants, conditional sections.
constexpr const char *kPieces[] = {
    "rs(7) te(90) te(4 8 90 120 e)\n"
    "#const half .5\n"
    "#define walk(a, b) #RW(T*.1 1 [$a $b] ~half .5)#\n"
    "i1 = 12 0 -3000 {\n"
    "p2 <RA(T*.01 1 [.1 .2]) .25 x90> p3 MS(T*.1 1 [1 2 3] [4 5 6]) HO(40 1)\n"
    "p4 SE(T*.1 .5 * [1 2 3] .5 x [4 5 6]) <1 : 2 x70> p5 $walk(0'1) S2(50 1 * [1:2 3:4])\n"
    "p6 EX(T 1 [p4 * 2 + 1]) p7 MO(T 1 e 0 1) p8(in) <1 2 3> p9(op) no c4 d e f\n"
    "p10(hz) no c4 g p11(db) db 70 80 p12 ~[half * ?]\n"
    "}\n"
    "i2 = 3 0 -50 { p2 ~@1 p3 1 }\n",
    "#if(1)\n#define a #1 2\n3#\n#endif\ni1 = 4 0 -20 { p2 1 p3 1 p4 $a $a }",
    "i1 = 3 0 -2 { p2 1 p3 $unknown }",
    "i1 = 4 0 -2 { p2 1 p3 1 p5 1 }",
    "#include |nowhere|\n",
    "",
};

void addJobs(std::vector<Job> &jobs, const std::string &text, const std::filesystem::path &folder) {
  for (bool midi : {false, true}) {
    Job job{text, {}};
    job.options.midi = midi;
    job.options.tempoVerbose = midi;
    job.options.expanded = true;
    job.options.include = [folder](const std::string &name) { return read(folder / name); };
    jobs.push_back(job);
  }
}

std::vector<Job> allJobs(const char *examples) {
  std::vector<Job> jobs;
  for (const char *piece : kPieces) {
    addJobs(jobs, piece, examples);
  }
  for (const auto &entry : std::filesystem::recursive_directory_iterator(examples)) {
    if (entry.path().filename() == "piece.txt") {
      addJobs(jobs, read(entry.path()).value(), entry.path().parent_path());
    }
  }
  return jobs;
}

// What is wrong with the results of one thread.
int countFaults(const std::vector<Job> &jobs, const std::vector<korvo::Result> &expected,
                std::size_t first) {
  int faults = 0;
  for (std::size_t i = 0; i < jobs.size(); ++i) {
    std::size_t which = (first + i) % jobs.size();
    const Job &job = jobs[which];
    faults += same(korvo::render(job.text, job.options), expected[which]) ? 0 : 1;
  }
  return faults;
}

int runAll(const std::vector<Job> &jobs) {
  std::vector<korvo::Result> expected;
  int complete = 0;
  for (const Job &job : jobs) {
    expected.push_back(korvo::render(job.text, job.options));
    complete += expected.back().ok ? 1 : 0;
  }
  std::atomic<int> faults = 0;
  for (int round = 0; round < kRounds; ++round) {
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < kThreads; ++i) {
      threads.emplace_back(
          [&, i] { faults += countFaults(jobs, expected, i * jobs.size() / kThreads); });
    }
    for (std::thread &thread : threads) {
      thread.join();
    }
  }
  std::printf("%zu pieces, %d of them complete, %d results that differ\n", jobs.size(), complete,
              faults.load());
  return faults == 0 && complete > 30 ? 0 : 1;
}

}  // namespace

int main(int argc, char **argv) { return argc == 2 ? runAll(allJobs(argv[1])) : 2; }

// The statement loop on a macro of a million lines, the load of a gzip macro, and loop shapes
// next to the same loops in tclsh, with the ratio printed at the end (tclsh must be on PATH).
// Reports lines per second and megabytes per second; the console goes to /dev/null.
// VOXMILL_LOOP_PASSES sets the passes of the shapes (default 1000000).
#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

#include "commands/commandtable.h"
#include "base/gzip.h"
#include "script/run.h"
#include "script/tscript.h"
#include "shell/console.h"

namespace {

constexpr int64_t macrolines = 1'000'000;

// Comments, begin/end blocks and one print in every block.
std::string millionlinemacro() {
  std::string text = "debug.no\n";
  int64_t lines = 1;
  while (lines + 5 <= macrolines) {
    text += "// a comment line\nbegin\nprocess\n  print \"x\" 1 //trailing comment\nend\n";
    lines += 5;
  }
  return text;
}

const std::string& macrotext() {
  static const std::string text = millionlinemacro();
  return text;
}

std::string writetemp(const std::string& name, const std::string& bytes) {
  const std::string path = "/tmp/voxmill-bench-" + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

// The console goes to /dev/null while a benchmark runs its macros.
struct tmutedstdout {
  std::FILE* saved = stdout;
  std::FILE* sink = std::fopen("/dev/null", "w");
  tmutedstdout() { stdout = sink; }
  ~tmutedstdout() {
    std::fflush(sink);
    stdout = saved;
    std::fclose(sink);
  }
  tmutedstdout(const tmutedstdout&) = delete;
  tmutedstdout& operator=(const tmutedstdout&) = delete;
};

void BM_LoadAndRunMillionLines(benchmark::State& state) {
  const std::string path = writetemp("million.macro", macrotext());
  const tmutedstdout muted;
  for (auto _ : state) {
    tscript s;
    registerallcommands(s);
    load(s.store, utf16(path));
    runscript(s);
    benchmark::DoNotOptimize(s.line);
  }
  state.counters["lines/s"] = benchmark::Counter(static_cast<double>(macrolines), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_LoadAndRunMillionLines)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_LoadGzipMacro(benchmark::State& state) {
  std::string packed;
  gzipcompress(macrotext(), packed);
  const std::string path = writetemp("million.macro.gz", packed);
  consoleon = false;  // the load's progress line would break the table
  for (auto _ : state) {
    tlinestore store;
    load(store, utf16(path));
    benchmark::DoNotOptimize(store.count);
  }
  consoleon = true;
  state.counters["MB/s"] = benchmark::Counter(static_cast<double>(macrotext().size()) / 1e6,
                                              benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(BM_LoadGzipMacro)->Unit(benchmark::kMillisecond);

// One loop shape in both languages; {n} stands for the number of passes.
struct tshape {
  const char* name;
  const char* macro;
  const char* tcl;
  int64_t files = 0;  // > 0: the shape walks a folder of that many files, one pass each
};

constexpr tshape shapes[] = {
    {"assign", "a := 0\nfor {n}\n  a += a 1\nend\n",
     "set a 0\nfor {set i 1} {$i <= {n}} {incr i} {set a [expr {$a + 1}]}\n"},
    {"if", "a := 0\nfor {n}\n  if for.count\n  then a += a 1\nend\n",
     "set a 0\nfor {set i 1} {$i <= {n}} {incr i} {if {$i} {set a [expr {$a + 1}]}}\n"},
    {"procedure", "a := 0\nprocedure step\n  a += a 1\nend\nfor {n}\n  step\nend\n",
     "set a 0\nproc step {} {global a; set a [expr {$a + 1}]}\nfor {set i 1} {$i <= {n}} {incr i} {step}\n"},
    {"list.push", "for {n}\n  list.push for.count\nend\n",
     "set l {}\nfor {set i 1} {$i <= {n}} {incr i} {lappend l $i}\n"},
    {"io.files", "io.files.new \"{dir}/*\"\nfor io.files.length\n  name := io.files.get\n  io.files.next\nend\n",
     "foreach f [lsort [glob {dir}/*]] {set name $f}\n", 10'000},
};

const char* const filesdir = "/tmp/voxmill-bench-files";

// The folder of empty files that the io.files shape walks, made once.
void makefiles(int64_t count) {
  std::filesystem::create_directories(filesdir);
  for (int64_t i = 0; i < count; ++i) {
    const std::string path = std::string(filesdir) + "/f" + std::to_string(100000 + i) + ".txt";
    if (!std::filesystem::exists(path)) std::ofstream{path};
  }
}

int64_t passes() {
  const char* text = std::getenv("VOXMILL_LOOP_PASSES");
  const int64_t n = text ? std::atoll(text) : 0;
  return n > 0 ? n : 1'000'000;
}

int64_t passes(const tshape& shape) { return shape.files > 0 ? shape.files : passes(); }

std::string filledin(std::string text, const tshape& shape) {
  const std::string n = std::to_string(passes(shape));
  for (size_t at; (at = text.find("{n}")) != std::string::npos;) text.replace(at, 3, n);
  for (size_t at; (at = text.find("{dir}")) != std::string::npos;) text.replace(at, 5, filesdir);
  if (shape.files > 0) makefiles(shape.files);
  return text;
}

struct tmeasure {
  double voxmill = 0, tclsh = 0;
  int64_t passes = 0;
};

std::map<std::string, tmeasure>& seconds() {
  static std::map<std::string, tmeasure> table;
  return table;
}

// Processor seconds of this process or of its finished children: other jobs on the machine
// stretch the wall clock, not these.
double cpuseconds(int who) {
  rusage usage{};
  getrusage(who, &usage);
  auto secs = [](const timeval& v) { return static_cast<double>(v.tv_sec) + static_cast<double>(v.tv_usec) * 1e-6; };
  return secs(usage.ru_utime) + secs(usage.ru_stime);
}

void BM_Shape(benchmark::State& state, const tshape& shape) {
  const std::string path = writetemp(std::string(shape.name) + ".macro", "debug.no\n" + filledin(shape.macro, shape));
  const tmutedstdout muted;
  for (auto _ : state) {
    tscript s;
    registerallcommands(s);
    load(s.store, utf16(path));
    const double from = cpuseconds(RUSAGE_SELF);
    runscript(s);
    seconds()[shape.name].voxmill = cpuseconds(RUSAGE_SELF) - from;
    seconds()[shape.name].passes = passes(shape);
  }
  state.counters["passes/s"] = benchmark::Counter(static_cast<double>(passes()), benchmark::Counter::kIsIterationInvariantRate);
}

void BM_ShapeTclsh(benchmark::State& state, const tshape& shape) {
  const std::string path = writetemp(std::string(shape.name) + ".tcl", filledin(shape.tcl, shape));
  for (auto _ : state) {
    const double from = cpuseconds(RUSAGE_CHILDREN);
    if (std::system(("tclsh " + path + " > /dev/null 2>&1").c_str()) != 0) state.SkipWithError("tclsh failed");
    seconds()[shape.name].tclsh = cpuseconds(RUSAGE_CHILDREN) - from;
  }
}

void registershapes() {
  for (const tshape& shape : shapes) {
    benchmark::RegisterBenchmark(("BM_Loop/" + std::string(shape.name)).c_str(), BM_Shape, shape)
        ->Unit(benchmark::kMillisecond)->Iterations(1);
    benchmark::RegisterBenchmark(("BM_LoopTclsh/" + std::string(shape.name)).c_str(), BM_ShapeTclsh, shape)
        ->Unit(benchmark::kMillisecond)->Iterations(1);
  }
}

void printratios() {
  if (seconds().empty()) return;
  std::printf("\n%-10s %9s %12s %12s %8s   (processor time per pass; ratio > 1: voxmill slower)\n", "shape", "passes",
              "voxmill us", "tclsh us", "ratio");
  for (const auto& [name, m] : seconds()) {
    const double n = static_cast<double>(std::max<int64_t>(m.passes, 1));
    std::printf("%-10s %9lld %12.3f %12.3f %8.2f\n", name.c_str(), static_cast<long long>(m.passes), m.voxmill / n * 1e6,
                m.tclsh / n * 1e6, m.tclsh > 0 ? m.voxmill / m.tclsh : 0.0);
  }
}

}  // namespace

int main(int argc, char** argv) {
  registershapes();
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  printratios();
  return 0;
}

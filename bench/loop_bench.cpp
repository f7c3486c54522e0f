// The statement loop on a macro of a million lines, and the load of a gzip macro.
// Reports lines per second and megabytes per second; the console goes to /dev/null.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
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

void BM_LoadAndRunMillionLines(benchmark::State& state) {
  const std::string path = writetemp("million.macro", macrotext());
  std::FILE* saved = stdout;
  std::FILE* sink = std::fopen("/dev/null", "w");
  stdout = sink;
  for (auto _ : state) {
    tscript s;
    registerallcommands(s);
    load(s.store, utf16(path));
    runscript(s);
    benchmark::DoNotOptimize(s.line);
  }
  std::fflush(sink);
  stdout = saved;
  std::fclose(sink);
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

}  // namespace

BENCHMARK_MAIN();

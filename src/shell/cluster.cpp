#include "shell/cluster.h"

#include <charconv>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

// The whole text as an integer, or nothing.
std::optional<int64_t> integer(const std::string& text) {
  int64_t value = 0;
  const char* end = text.data() + text.size();
  const auto [at, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || at != end) return std::nullopt;
  return value;
}

std::optional<int64_t> environment(const char* name, std::optional<int64_t> fallback) {
  const char* value = std::getenv(name);
  return value ? integer(value) : fallback;
}

constexpr tclustersetting refused{-1, -1, false};

// A job array 1-8 has ids 1..8; one with a step (0-30:10) counts its tasks by that step.
tclustersetting fromslurm() {
  if (!std::getenv("SLURM_ARRAY_TASK_COUNT")) return {};
  const auto id = environment("SLURM_ARRAY_TASK_ID", std::nullopt);
  const auto first = environment("SLURM_ARRAY_TASK_MIN", 0);
  const auto step = environment("SLURM_ARRAY_TASK_STEP", 1);
  const auto count = environment("SLURM_ARRAY_TASK_COUNT", std::nullopt);
  if (!id || !first || !step || !count || *step < 1) return refused;
  return {(*id - *first) / *step, *count, false};
}

}  // namespace

tclustersetting declareclusteroptions(toptions& o) {
  section(o, "Cluster Options");
  const std::string part = utf16toutf8(opttext(o, "parallel.part", "", "share of parallel loops taken by this process, 0..total-1"));
  const std::string total = utf16toutf8(opttext(o, "parallel.total", "", "number of processes sharing parallel loops"));
  const bool exitcode = optbool(o, "exitcode", false, "end with code 1 when the script stopped on an error");
  tclustersetting setting;
  if (part.empty() && total.empty()) {
    setting = fromslurm();
  } else {
    const auto p = part.empty() ? std::optional<int64_t>(0) : integer(part);
    const auto t = total.empty() ? std::optional<int64_t>(0) : integer(total);
    setting = p && t ? tclustersetting{*p, *t, false} : refused;
  }
  setting.exitcode = exitcode;
  return setting;
}

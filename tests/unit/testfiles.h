// Files for unit tests: written into the test's temporary folder under a family prefix, and
// read back whole.
#pragma once
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

inline std::string writetestfile(const std::string& prefix, const std::string& name, const std::string& bytes) {
  const std::string path = ::testing::TempDir() + prefix + name;
  std::ofstream(path, std::ios::binary) << bytes;
  return path;
}

inline std::string readtestfile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

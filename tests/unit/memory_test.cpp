#include "field/memory.h"

#include <gtest/gtest.h>
#include <unistd.h>
#include <malloc.h>

#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "shell/console.h"

namespace {

// Catches what one piece of work writes to the console and to the log.
class ttrace {
 public:
  // One log per test process: ctest runs tests side by side, and the log is opened to append.
  ttrace() : path_(testing::TempDir() + "memory_test_trace_" + std::to_string(getpid()) + ".log") {
    std::remove(path_.c_str());
    logopen(path_);
    testing::internal::CaptureStdout();
    active_ = true;
  }
  ~ttrace() {
    if (active_) finish();
  }
  void finish() {
    console_ = testing::internal::GetCapturedStdout();
    logclose();
    std::ifstream in(path_);
    std::stringstream all;
    all << in.rdbuf();
    log_ = all.str();
    // The closing line of the log belongs to the log, not to the work traced.
    const auto done = log_.rfind("Done (");
    if (done != std::string::npos) log_.erase(done);
    active_ = false;
  }
  const std::string& console() const { return console_; }
  const std::string& log() const { return log_; }

 private:
  std::string path_, console_, log_;
  bool active_ = false;
};

bool contains(const std::string& text, const std::string& part) { return text.find(part) != std::string::npos; }

// Each test lowers the machine to what it needs and restores it.
class tlimit {
 public:
  explicit tlimit(int64_t free) { setfieldmemorylimit(fieldmemoryheld() + free); }
  ~tlimit() { setfieldmemorylimit(0); }
};

std::vector<int64_t> elements(const tfieldmemory& m) {
  std::vector<int64_t> out;
  for (int64_t i = 1; i <= m.length; ++i) {
    int64_t v = 0;
    m.get(i, &v);
    out.push_back(v);
  }
  return out;
}

void fillcounting(tfieldmemory& m) {
  for (int64_t i = 1; i <= m.length; ++i) m.put(i, &i);
}

bool invariant(const tfieldmemory& m) { return m.maximal - m.dynamic == m.length; }

}  // namespace

TEST(FieldMemoryStatic, AllocateAndReleaseAccount) {
  const int64_t before = fieldmemoryheld();
  tfieldmemory m{};
  ttrace trace;
  m.allocate(10, 4);
  EXPECT_EQ(m.length, 10);
  EXPECT_FALSE(m.unallocated());
  EXPECT_EQ(fieldmemoryheld(), before + 40);
  for (int64_t i = 1; i <= 10; ++i) EXPECT_EQ(*reinterpret_cast<int32_t*>(m.address(i)), 0);
  m.release();
  trace.finish();
  EXPECT_EQ(trace.console(), "");  // trace lines never reach the console
  EXPECT_EQ(m.data, nullptr);
  EXPECT_EQ(m.length, 0);
  EXPECT_EQ(fieldmemoryheld(), before);
}

TEST(FieldMemoryStatic, TakeBlockKeepsTheBytesBehindTheSkipAndAccounts) {
  const int64_t before = fieldmemoryheld();
  tfieldmemory from{}, to{};
  from.allocate(9, 1);
  for (int64_t i = 1; i <= 9; ++i) from.data[i - 1] = static_cast<uint8_t>(i);
  to.allocate(3, 2);
  EXPECT_FALSE(to.takeblock(from, 4, 3));  // 6 bytes wanted, 5 left
  EXPECT_EQ(from.length, 9);
  ASSERT_TRUE(to.takeblock(from, 3, 3));
  EXPECT_TRUE(from.unallocated());
  EXPECT_EQ(std::vector<uint8_t>(to.data, to.data + 6), (std::vector<uint8_t>{4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(to.length, 3);
  EXPECT_EQ(fieldmemoryheld(), before + 6);
  to.release();
  EXPECT_EQ(fieldmemoryheld(), before);
}

TEST(FieldMemoryStatic, ResizeKeepsLeadingElementsAndZeroesNewOnes) {
  tfieldmemory m{};
  m.allocate(4, 8);
  fillcounting(m);
  m.resize(6);
  EXPECT_EQ(elements(m), (std::vector<int64_t>{1, 2, 3, 4, 0, 0}));
  m.resize(2);
  EXPECT_EQ(elements(m), (std::vector<int64_t>{1, 2}));
  EXPECT_TRUE(invariant(m));
  m.release();
}

TEST(FieldMemoryEmpty, ElementSizeZeroGivesEmptyRecordAndCorruptPacket) {
  tfieldmemory m{};
  m.allocate(5, 0);
  EXPECT_EQ(m.shadow, 1u);
  EXPECT_EQ(m.data, nullptr);
  EXPECT_EQ(m.length, 0);
  EXPECT_EQ(m.element, 0);
  ttrace trace;
  m.resize(3);
  trace.finish();
  EXPECT_EQ(trace.console(), "  Corrupt memory packet (size=0)!\n");
  EXPECT_EQ(m.length, 0);
}

TEST(FieldMemoryDynamic, ContentsSurviveGrowth) {
  tfieldmemory m{};
  m.allocatedynamic(8);
  for (int64_t i = 1; i <= 20000; ++i) m.putgrow(i, &i);
  ASSERT_EQ(m.length, 20000);
  EXPECT_GT(m.maximal, 20000);
  EXPECT_TRUE(invariant(m));
  const auto v = elements(m);
  for (int64_t i = 1; i <= 20000; ++i) ASSERT_EQ(v[static_cast<size_t>(i - 1)], i);
  m.release();
}

TEST(FieldMemoryElements, PutGrowOnStaticAndDynamicRecords) {
  tfieldmemory s{};
  s.allocate(3, 8);
  int64_t v = 9;
  s.putgrow(4, &v);
  s.putgrow(0, &v);
  EXPECT_EQ(s.length, 3);
  s.sorted = true;
  s.putgrow(2, &v);
  EXPECT_FALSE(s.sorted);
  EXPECT_EQ(elements(s), (std::vector<int64_t>{0, 9, 0}));
  s.release();

  tfieldmemory d{};
  d.allocatedynamic(8);
  d.putgrow(5, &v);
  EXPECT_EQ(d.length, 5);
  EXPECT_TRUE(invariant(d));
  EXPECT_EQ(elements(d), (std::vector<int64_t>{0, 0, 0, 0, 9}));
  d.putgrow(d.maximal, &v);  // beyond the reserve: a real growth
  EXPECT_TRUE(invariant(d));
  EXPECT_GT(d.maximal, d.length);
  d.release();
}

TEST(FieldMemoryElements, PutGrowFromInsideTheMovingBlock) {
  tfieldmemory d{};
  d.allocatedynamic(8);
  int64_t v = 42;
  d.putgrow(1, &v);
  const int64_t end = d.maximal;
  d.putgrow(end, d.address(1));  // the source moves with the growth
  int64_t out = 0;
  d.get(end, &out);
  EXPECT_EQ(out, 42);
  d.release();
}

TEST(FieldMemoryElements, ReverseCopyAndGrow) {
  tfieldmemory m{};
  m.allocatedynamic(8);
  m.resize(5);
  fillcounting(m);
  m.reverse();
  EXPECT_EQ(elements(m), (std::vector<int64_t>{5, 4, 3, 2, 1}));
  m.grow(2);
  EXPECT_EQ(elements(m), (std::vector<int64_t>{5, 4, 3, 2, 1, 0, 0}));

  tfieldmemory c{};
  c.allocate(1, 8);
  c.copyfrom(m);
  EXPECT_EQ(elements(c), elements(m));
  tfieldmemory narrow{};
  narrow.allocate(2, 4);
  narrow.copyfrom(m);  // element sizes differ: nothing
  EXPECT_EQ(narrow.length, 2);
  narrow.release();
  c.release();
  m.release();

  tfieldmemory one{};
  one.allocate(1, 8);
  fillcounting(one);
  one.reverse();
  EXPECT_EQ(elements(one), (std::vector<int64_t>{1}));
  one.release();
}

TEST(FieldMemoryElements, InsertBlockSplices) {
  auto make = [](tfieldmemory& m, std::vector<int64_t> v) {
    m.allocatedynamic(8);
    m.resize(static_cast<int64_t>(v.size()));
    for (size_t i = 0; i < v.size(); ++i) m.put(static_cast<int64_t>(i + 1), &v[i]);
  };
  tfieldmemory m{}, nines{}, one{};
  make(m, {1, 2, 3, 4, 5});
  make(nines, {9, 9, 9});
  make(one, {7});

  m.insertblock(2, 2, nines);  // grows by one
  EXPECT_EQ(elements(m), (std::vector<int64_t>{1, 9, 9, 9, 4, 5}));
  m.insertblock(2, 3, one);  // shrinks by two
  EXPECT_EQ(elements(m), (std::vector<int64_t>{1, 7, 4, 5}));
  m.insertblock(4, 10, nines);  // count beyond the end replaces the rest
  EXPECT_EQ(elements(m), (std::vector<int64_t>{1, 7, 4, 9, 9, 9}));
  m.insertblock(1, 0, one);  // pure insertion
  EXPECT_EQ(elements(m), (std::vector<int64_t>{7, 1, 7, 4, 9, 9, 9}));
  m.insertblock(8, 0, one);  // behind length: nothing
  m.insertblock(0, 0, one);
  EXPECT_EQ(m.length, 7);
  m.insertblock(2, 1, m);  // into itself
  EXPECT_EQ(elements(m), (std::vector<int64_t>{7, 7, 1, 7, 4, 9, 9, 9, 7, 4, 9, 9, 9}));

  tfieldmemory narrow{};
  narrow.allocate(1, 4);
  m.insertblock(1, 1, narrow);  // element sizes differ: nothing
  EXPECT_EQ(m.length, 13);
  narrow.release();
  m.release();
  nines.release();
  one.release();
}

TEST(FieldMemoryElements, SwapDataNeedsEqualShapeAndSwapBack) {
  tfieldmemory a{}, b{}, c{};
  a.allocate(3, 8);
  b.allocate(3, 8);
  c.allocate(4, 8);
  int64_t v = 5;
  a.put(1, &v);
  uint8_t* ablock = a.data;
  uint8_t* bblock = b.data;
  EXPECT_FALSE(a.swapdata(c));
  EXPECT_TRUE(a.swapdata(b));
  EXPECT_EQ(a.data, bblock);
  EXPECT_EQ(b.data, ablock);
  int64_t out = 0;
  b.get(1, &out);
  EXPECT_EQ(out, 5);
  // shadow stays behind, so both records count as unallocated until swapped back
  EXPECT_TRUE(a.unallocated());
  EXPECT_TRUE(b.unallocated());
  EXPECT_TRUE(a.swapdata(b));
  EXPECT_FALSE(a.unallocated());
  a.release();
  b.release();
  c.release();
}

TEST(FieldMemoryGuards, OverwrittenGuardKeepsBlockOnRelease) {
  tfieldmemory m{};
  m.allocate(10, 8);
  uint8_t* block = m.data;
  const int64_t held = fieldmemoryheld();
  m.guard2 = 1;
  ttrace trace;
  m.release();
  trace.finish();
  const std::string line = "  Corrupt memory (Done size=" + std::to_string(malloc_usable_size(block)) + " and should=80)!\n";
  EXPECT_EQ(trace.console(), line);
  EXPECT_TRUE(contains(trace.log(), line));
  EXPECT_EQ(fieldmemoryheld(), held);  // not given back
  EXPECT_EQ(m.data, nullptr);
  block[0] = 1;  // still ours: writing must be valid (the sanitizer would object otherwise)
  std::free(block);
}

TEST(FieldMemoryGuards, BrokenInvariantIsNotFreed) {
  tfieldmemory m{};
  m.allocate(4, 8);
  uint8_t* block = m.data;
  m.length = 3;  // maximal - dynamic != length
  ttrace trace;
  m.release();
  trace.finish();
  EXPECT_EQ(trace.log(), "  Deallocation fails! Length: 3 Dynamic length: 0 Maximal: 4 mismatch!\n");
  EXPECT_EQ(m.length, 0);
  std::free(block);
}

TEST(FieldMemoryFailure, StaticAllocationBeyondTheMachine) {
  tfieldmemory m{};
  {
    tlimit limit(1000);
    ttrace trace;
    m.allocate(2000, 1);
    trace.finish();
    EXPECT_EQ(trace.console(), "  Wrong static allocation (Out of memory?)! Create empty field.\n");
  }
  EXPECT_TRUE(m.unallocated());
  EXPECT_EQ(m.length, 0);
  EXPECT_EQ(m.element, 1);  // the failed record remembers its element size
  m.resize(10);             // with memory back, the record can be set up again
  EXPECT_EQ(m.length, 10);
  m.release();
}

TEST(FieldMemoryFailure, AbsurdRequestsAreRefusedWithoutAsking) {
  // A 200,000^3 volume of 16-bit voxels, and a product that overflows 64 bits.
  const int64_t counts[] = {fieldcount(200000, 200000, 200000), fieldcount(3000000, 3000000, 3000000),
                            std::numeric_limits<int64_t>::max()};
  EXPECT_EQ(counts[1], std::numeric_limits<int64_t>::max());
  for (const int64_t count : counts) {
    const int64_t held = fieldmemoryheld();
    tfieldmemory m{};
    ttrace trace;
    m.allocate(count, 2);
    trace.finish();
    EXPECT_EQ(trace.console(), "  Wrong static allocation (Out of memory?)! Create empty field.\n");
    EXPECT_EQ(m.length, 0);
    EXPECT_EQ(fieldmemoryheld(), held);
    m.release();
  }
}

TEST(FieldMemoryFailure, DynamicAllocationBeyondTheMachine) {
  tlimit limit(100);
  tfieldmemory m{};
  ttrace trace;
  m.allocatedynamic(8);
  trace.finish();
  EXPECT_EQ(trace.console(), "  Wrong dynamic allocation (Out of memory?)! Create empty field.\n");
  EXPECT_EQ(m.element, 0);
  EXPECT_EQ(m.length, 0);
  EXPECT_EQ(m.data, nullptr);
}

TEST(FieldMemoryFailure, FailedGrowthEmptiesTheRecord) {
  tfieldmemory m{};
  m.allocatedynamic(8);
  m.resize(10);
  fillcounting(m);
  const int64_t held = fieldmemoryheld();
  {
    tlimit limit(1000);
    ttrace trace;
    m.resize(100000);
    trace.finish();
    EXPECT_EQ(trace.console(), "  Not enough Memory! Create empty field.\n");
  }
  EXPECT_EQ(m.length, 0);
  EXPECT_EQ(m.maximal, 0);
  EXPECT_TRUE(m.unallocated());
  EXPECT_FALSE(m.sorted);
  EXPECT_EQ(fieldmemoryheld(), held - 65536);  // the old block went back to the heap
}

TEST(FieldMemoryFailure, FailedStaticResizeGivesTheOldBlockBack) {
  tfieldmemory m{};
  m.allocate(10, 8);
  const int64_t held = fieldmemoryheld();
  {
    tlimit limit(100);
    ttrace trace;
    m.resize(1000);
    trace.finish();
    EXPECT_EQ(trace.console(), "  Not enough Memory! Create empty field.\n");
  }
  EXPECT_EQ(m.length, 0);
  EXPECT_EQ(m.shadow, 0u);
  EXPECT_TRUE(m.unallocated());
  EXPECT_EQ(fieldmemoryheld(), held - 80);
  m.release();  // nothing more to give back
  EXPECT_EQ(fieldmemoryheld(), held - 80);
}

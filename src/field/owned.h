// Ownership of records that the guarded allocator never destroys on its own: fields and
// arrays are released by hand (fieldrelease, release), so an owner that must give them back
// on every path holds them through one of these.
#pragma once
#include <memory>

// Releases a heap field the way its kind does, then frees the record.
struct tfielddelete {
  template <class F>
  void operator()(F* f) const {
    fieldrelease(*f);
    delete f;
  }
};
template <class F>
using tfieldptr = std::unique_ptr<F, tfielddelete>;

// A field of a routine, released when the routine leaves, whichever way.
template <class F>
struct tlocalfield {
  F field{};
  tlocalfield() = default;
  tlocalfield(const tlocalfield&) = delete;
  tlocalfield& operator=(const tlocalfield&) = delete;
  ~tlocalfield() { fieldrelease(field); }
  F& operator*() { return field; }
  F* operator->() { return &field; }
};

// An array of a routine, released when the routine leaves.
template <class A>
struct tlocalarray {
  A array{};
  tlocalarray() = default;
  tlocalarray(const tlocalarray&) = delete;
  tlocalarray& operator=(const tlocalarray&) = delete;
  ~tlocalarray() { array.release(); }
  A& operator*() { return array; }
  A* operator->() { return &array; }
};

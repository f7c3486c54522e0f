// Opening a shared library at run time: the search over directories and version
// suffixes and routines by name.
#pragma once
#include <initializer_list>
#include <string>
#include <vector>

// The first library that opens: each directory (the bare name last, for the loader's own
// path), each version suffix, each ending; nullptr when none does.
void* searchlibrary(const char* base, std::initializer_list<const char*> suffixes, const std::vector<std::string>& endings);

// The address of a routine by its decorated name, else by the plain one between "_" and
// "@"; "Wrong ProcName: <name>" and false when there is none.
bool routineaddress(void* handle, void*& out, const char* name);
template <class P>
bool routine(void* handle, P& out, const char* name) {
  void* p = nullptr;
  const bool found = routineaddress(handle, p, name);
  out = reinterpret_cast<P>(p);
  return found;
}

// Runs whose allocations fail on request, each in a process of its own, so that it begins with a program that has not run yet.
// Counted are the allocations of the program and of the C++ library for it. What the C library takes for itself, a stream's
// buffer, is its own matter.
#pragma once

#include <cstdint>
#include <string>

/// What the allocations of a run are told.
struct Plan {
    std::uint64_t failing; // number of the allocation that fails, from 1; 0 for none
    bool          onward;  // all behind it fail too
};

/// What they tell.
struct Account {
    std::uint64_t made;  // allocations asked for
    std::int64_t  held;  // pieces of memory that were not given back
    bool          empty; // the program's variables hold nothing
};

extern Account *account; // shared with the process that waits; set by enter_folder

inline constexpr int BAD_FOLDER = 2; // exit status

/// Makes a folder with a copy of the pieces and an empty folder tmp, and works in it.
/// @return its path; empty when it can't be made
std::string enter_folder(const char *pieces);

/// Runs something in a child, its screen in a file.
/// @param run gives the exit status, with the counting on
/// @param end is called afterwards, with the counting off
/// @return as of waitpid
int run_in_child(const Plan &plan, int (*run)(const void *what), const void *what, void (*end)());

/// What the last run has shown.
std::string read_screen();

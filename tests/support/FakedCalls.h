#pragma once

namespace test
{

// The calls of DLLs that tests replaced by doubles and that were made. Those of a run are in a file beside its report,
// with the extension "calls" and a line for each: "Kelpkit.dll CreateFileW Suite.Test". The check of
// package/*.calls.txt reads them. There is no file where no report is asked for.

// Tells this process, and those that it starts, which test is running; null: none.
void SetRunningTest(const char* name);

// Forgets an earlier run. Does nothing in a process that a running test started.
void ForgetFakedCalls();

// Writes a line for the running test, if there is one. Takes no memory from the heap.
void NoteFakedCall(const wchar_t* module, const char* function);

} // namespace test

#pragma once

/// Ends the program with a report when memory was lost, if it is built with checks of addresses.
///
/// For one file of a program. To be called while the libraries of the windows are still loaded: what only these know
/// counts as lost afterwards.
#ifdef __SANITIZE_ADDRESS__
extern "C" void __lsan_do_leak_check(); // GCC installs no header for it
/// Libraries that lose memory of their own.
extern "C" const char* __lsan_default_suppressions()
{
  return "leak:libdbus-1.so\nleak:libfontconfig.so\n";
}
inline void reportLeaks()
{
  __lsan_do_leak_check();
}
#else
inline void reportLeaks() {}
#endif

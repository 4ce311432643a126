// The statically linked C++ runtime reserves 73 KiB for exceptions thrown when memory is short, and never
// frees them: each load and unload of the module would leak them.

namespace __gnu_cxx {
// The runtime's own function that frees them; none of its headers declares it.
void __freeres();
}  // namespace __gnu_cxx

namespace {

[[gnu::destructor]] void FreeTheRuntimesMemory() {
    __gnu_cxx::__freeres();
}

}  // namespace

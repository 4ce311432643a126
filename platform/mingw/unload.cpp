// The linked-in C++ runtime keeps 73 KiB for exceptions that are thrown when memory is short, and never frees
// them: a module that is loaded and unloaded again and again would use memory up.

namespace __gnu_cxx {
// The runtime's own release of them, declared in none of its headers.
void __freeres();
}  // namespace __gnu_cxx

namespace {

[[gnu::destructor]] void FreeTheRuntimesMemory() {
    __gnu_cxx::__freeres();
}

}  // namespace

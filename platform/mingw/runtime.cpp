// Replaces functions of the C++ runtime that mingw-w64 links in. The runtime's own print the name of the
// exception to a console, which a host application need not have, and pull in a demangler and all of
// <string>: a third of the library.

#include <cstdlib>
#include <new>

namespace __gnu_cxx {

// The runtime calls it for an unhandled exception.
void __verbose_terminate_handler() {
    std::abort();
}

}  // namespace __gnu_cxx

namespace std {

void __throw_bad_alloc() {
    throw bad_alloc();
}

void __throw_bad_array_new_length() {
    throw bad_alloc();
}

// A string or vector beyond its maximum size.
void __throw_length_error(const char*) {
    throw bad_alloc();
}

// The others report an error in the program, such as an index out of range.
void __throw_logic_error(const char*) {
    abort();
}

void __throw_out_of_range_fmt(const char*, ...) {
    abort();
}

}  // namespace std

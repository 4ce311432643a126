// Takes the place of functions of the C++ runtime that mingw-w64 links. Its own print the name of what was
// thrown to a console that no host has, and with the printing comes a demangler and all of <string>: a third
// of the library.

#include <cstdlib>
#include <new>

namespace __gnu_cxx {

// What the runtime does with an exception that nobody handles.
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

// A text or list longer than there can be memory for.
void __throw_length_error(const char*) {
    throw bad_alloc();
}

// The others tell of a mistake in the program, such as an index that does not exist.
void __throw_logic_error(const char*) {
    abort();
}

void __throw_out_of_range_fmt(const char*, ...) {
    abort();
}

}  // namespace std

/* A program that another compiler makes and links from nothing but the package and the system: it has no runtime
 * library, so it says the version itself, and ends with what a call on no handle leaves as its problem. */
#include "kestova/kestova_c.h"

#ifdef __cplusplus
extern "C" {
#endif

__declspec(dllimport) void *__stdcall GetStdHandle(unsigned long which);
__declspec(dllimport) int __stdcall WriteFile(void *file, const void *bytes, unsigned long size, unsigned long *written,
                                              void *overlapped);
__declspec(dllimport) void __stdcall ExitProcess(unsigned int status);

void start(void);

void start(void) {
    const unsigned long standardOutput = (unsigned long)-11;
    const char *version = kestova_version();
    unsigned long size = 0;
    unsigned long written;
    kestova_problem problem;
    while (version[size] != 0)
        ++size;
    WriteFile(GetStdHandle(standardOutput), version, size, &written, 0);
    problem.size = 8; /* as much as is read here */
    problem.code = 0;
    if (kestova_set_active(0, 1) == 1) kestova_last_problem(0, &problem);
    ExitProcess((unsigned int)problem.code);
}

#ifdef __cplusplus
}
#endif

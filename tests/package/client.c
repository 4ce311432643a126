/* A program in C that has nothing but the package: it asks what needs no service and changes nothing. */
#include <stdio.h>

#include "kestova/kestova_c.h"

static void show(const kestova_char *text) {
    for (; *text != 0; ++text)
        putchar(*text < 128 ? (char)*text : '?');
    putchar('\n');
}

int main(void) {
    kestova_char words[200];
    kestova_problem problem;
    int result;
    kestova *handle = kestova_open();
    printf("Kestova %s, interface %u\n", kestova_version(), kestova_interface());
    result = kestova_is_dynamic(handle);
    kestova_describe("IsDynamic", result, words, 200);
    printf("IsDynamic: %d, ", result);
    show(words);
    kestova_close(handle);
    result = kestova_set_active(handle, 1);
    problem.size = sizeof problem;
    kestova_last_problem(NULL, &problem);
    printf("SetActive: %d, code %d, ", result, problem.code);
    show(problem.words);
    return 0;
}

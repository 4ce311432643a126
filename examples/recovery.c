/* A recovery application on one page: it finds the recovery partition, reads a file there through a drive letter, removes
 * the letter, and makes the PC start from that partition next time.
 *
 *     recovery          this PC (Windows)
 *     recovery PC       elsewhere: a description, or the name of a PC that comes with the library
 *
 * The exit status is the code of the switch, or 9 if there is no recovery partition or its file cannot be read. An emulated
 * PC has no files that a program could read: there the file is passed over. */
#include <stdio.h>

#include "kestova/kestova_c.h"

#if defined(_WIN32)
#define IS_EMULATED 0
#else
#define IS_EMULATED 1
#endif

enum { nothing_to_recover_from = 9, shown_bytes = 512 };

/* Text of the library is in English letters. */
static void print_words(const kestova_char *words) {
    for (; *words != 0; ++words)
        putchar(*words < 128 ? (int)*words : '?');
}

static void print_problem(void) {
    kestova_problem problem;
    problem.size = sizeof problem;
    if (kestova_last_problem(NULL, &problem)) print_words(problem.words);
}

/* On a GPT disk the library finds the recovery partition by type and contents and gives it a letter. On an MBR disk it is
 * partition 1, which has a letter from Windows PE. */
static kestova_char letter_of_recovery_partition(kestova *handle) {
    kestova_char letter = KESTOVA_NO_LETTER;
    kestova_assign_recovery_partition(handle, &letter);
    if (letter != KESTOVA_NO_LETTER) return letter;
    return kestova_get_drive_letter(handle, kestova_get_first_internal_drive_number(handle), 1);
}

/* Whether the file could be read; its first bytes are then shown. */
static int show_beginning(kestova_char letter) {
    char path[] = "?:\\sources\\Qelhdrcv.ini";
    char bytes[shown_bytes];
    size_t count = 0;
    FILE *file;
    path[0] = (char)letter;
    file = fopen(path, "rb");
    if (file == NULL) return 0;
    count = fread(bytes, 1, sizeof bytes, file);
    fclose(file);
    if (count == 0) return 0;
    printf("Its Qelhdrcv.ini begins:\n%.*s\n", (int)count, bytes);
    return 1;
}

static int recover(kestova *handle) {
    kestova_char letter;
    int is_readable;
    int code;
    if (kestova_initialize(handle, 0) != KESTOVA_INITIALIZE_READY) {
        puts("The Virtual Disk Service cannot be reached.");
        return nothing_to_recover_from;
    }
    letter = letter_of_recovery_partition(handle);
    if (letter == KESTOVA_NO_LETTER) {
        puts("No recovery partition was found.");
        return nothing_to_recover_from;
    }
    printf("The recovery partition is %c:\n", (char)letter);
    is_readable = IS_EMULATED || show_beginning(letter);
    kestova_remove_recovery_partition(handle);
    if (!is_readable) {
        puts("Its Qelhdrcv.ini cannot be read.");
        return nothing_to_recover_from;
    }
    code = kestova_set_rcvprt_active(handle);
    if (code == KESTOVA_SWITCH_DONE) {
        puts("The next start boots the recovery partition.");
    } else {
        printf("The switch failed with code %d: ", code);
        print_problem();
        puts(".");
    }
    return code;
}

int main(int argc, char **argv) {
    int code = nothing_to_recover_from;
    kestova *handle;
#if defined(_WIN32)
    (void)argc;
    (void)argv;
#else
    if (argc > 1 && kestova_open_pc(argv[1]) == NULL) {
        print_problem();
        puts("");
        return code;
    }
#endif
    handle = kestova_open();
    if (handle == NULL) {
        print_problem();
        puts("");
        return code;
    }
    code = recover(handle);
    kestova_close(handle);
    return code;
}

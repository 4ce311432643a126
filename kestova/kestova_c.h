/* clang-format off */
/* The C interface of Kestova: the operations of the class, for every language that can call C.
 *
 * Open a handle, call `kestova_initialize`, then query and change; close the handle in the end. Each operation has
 * a function, whose result is that of the class as it is, with an enumeration of the results that have a meaning.
 * `kestova_last_problem` tells a refused call from a failed operation, and names the record that led to it.
 *
 * Threads: a handle may be used from any thread. Its object lives on a thread of its own, on which COM is initialised;
 * calls are made there, one after the other, and the caller waits. `kestova_stop_waiting` and `kestova_set_wait` end
 * the waiting, not the call: it runs to its end, and until then the handle is busy. Different handles work at the
 * same time, but for `kestova_get_win_drive_letters`, of which one runs at a time in this process. Between processes
 * that is the host's business.
 *
 * Rights: the process must be an administrator's, elevated, as the disks and Windows' services ask for it.
 *
 * Text is UTF-16, in units of 16 bits, and ends with a 0. A buffer comes with its size in units; text that does not fit
 * is cut, and still ends with a 0.
 *
 * Nothing here throws. A call that cannot be made answers what the operation answers when it fails.
 *
 * What to do after a failure stands behind the result:
 * - retry: nothing is changed, and the cause may pass: ask again; the same result once more is the answer;
 * - give-up: nothing is changed, and asking again changes nothing before the PC or the program does;
 * - undo: something may be changed: what follows says how to see it and to take it back;
 * - go-on: what was asked for is done; what follows says what is left over.
 *
 * docs/result-codes.md has all results in one table, with the last record that each leaves in the log.
 *
 * This file is made from the table of operations (./dev bindings). */
#ifndef KESTOVA_C_H
#define KESTOVA_C_H

/* The interface that this header describes: functions and enumerators are added, none is changed or removed, and
 * kestova_interface answers a number that is not lower. */
#define KESTOVA_INTERFACE 1

#if defined(_WIN32) && defined(KESTOVA_C_EXPORTS)
#define KESTOVA_C_API __declspec(dllexport)
#elif defined(_WIN32)
#define KESTOVA_C_API __declspec(dllimport)
#elif defined(__GNUC__)
#define KESTOVA_C_API __attribute__((visibility("default")))
#else
#define KESTOVA_C_API
#endif

#if defined(_WIN32)
#define KESTOVA_CALL __cdecl
#else
#define KESTOVA_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* A unit of text, and a drive letter: 'C', or '0' (KESTOVA_NO_LETTER) for none. */
typedef unsigned short kestova_char;

/* An object of the class on a thread of its own. */
typedef struct kestova kestova;

enum { KESTOVA_NO_LETTER = '0' };

/* --- handles --- */

/* Makes an object. Null if that failed, with the reason in kestova_last_problem(NULL, ...). Close it with
 * kestova_close. */
KESTOVA_C_API kestova *KESTOVA_CALL kestova_open(void);

/* Destroys the object, after the call that runs on it has ended. 0 for a handle that is not open, and from within a log
 * function; else 1. On Windows not to be called while a DLL is loaded or unloaded. */
KESTOVA_C_API int KESTOVA_CALL kestova_close(kestova *handle);

/* --- what went wrong --- */

enum kestova_problem_code {
    KESTOVA_PROBLEM_NONE = 0,      /* the call was made, and the operation did not fail */
    KESTOVA_PROBLEM_FAILED = 1,    /* the call was made, and its result is a failure */
    KESTOVA_PROBLEM_HANDLE = 2,    /* the handle is null or closed */
    KESTOVA_PROBLEM_ARGUMENT = 3,  /* a pointer is null, or a size is not possible */
    KESTOVA_PROBLEM_BUSY = 4,      /* a call that nobody waits for is still running, or a log function called */
    KESTOVA_PROBLEM_STOPPED = 5,   /* the caller stopped waiting; the call runs on */
    KESTOVA_PROBLEM_MEMORY = 6,    /* memory ran out */
    KESTOVA_PROBLEM_SYSTEM = 7,    /* the thread could not be started, or COM not be initialised */
    KESTOVA_PROBLEM_EXCEPTION = 8, /* anything else was thrown */
    KESTOVA_PROBLEM_PC = 9         /* an emulated PC: none is open, or its description or fault cannot be used */
};

typedef struct kestova_problem {
    unsigned int size;            /* in: sizeof(kestova_problem); no more than that is written */
    int code;                     /* kestova_problem_code */
    int has_result;               /* 1 if the operation was made and has a result */
    int result;                   /* of the operation */
    kestova_char operation[64];   /* as the class calls it; empty for other functions */
    kestova_char words[512];      /* the problem, or the meaning of the result */
    kestova_char record[1024];    /* the last record of an error that the operation wrote; empty without one */
} kestova_problem;

/* Of the calling thread's last call, if `handle` is null; else of the last operation that has ended on that handle,
 * also one that nobody waited for. 0 for a handle that is not open, for null or a size of less than 8; else 1. Calls
 * of this function and of kestova_describe change nothing here. */
KESTOVA_C_API int KESTOVA_CALL kestova_last_problem(kestova *handle, kestova_problem *problem);

/* A result in words: the operation as the class calls it ("SetRcvprtActive"). Returns the number of units without the
 * 0, also if the buffer is too small or null; 0 if there is no such operation, or no such result of it. */
KESTOVA_C_API unsigned int KESTOVA_CALL kestova_describe(const char *operation, int result, kestova_char *buffer,
                                                         unsigned int size);

/* --- waiting --- */

/* From now on callers of this handle wait at most so long for a call, their turn included; 0, as at the start: without
 * limit. 0 for a handle that is not open, else 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_wait(kestova *handle, unsigned int milliseconds);

/* Ends the waiting of everyone who waits on this handle now: their calls answer as after a failure, with
 * KESTOVA_PROBLEM_STOPPED. For another thread than theirs. 0 for a handle that is not open, else 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_stop_waiting(kestova *handle);

/* Waits so long for the end of a call that nobody waits for. 1 if the handle is free: kestova_last_problem(handle, ...)
 * then has the result of that call. 0 if it is still busy or not open. */
KESTOVA_C_API int KESTOVA_CALL kestova_wait(kestova *handle, unsigned int milliseconds);

/* --- the log --- */

/* Receives a record when it is written: its level (1: an error, 4: a trace) and text. Called on the handle's thread,
 * during an operation. It must return soon, as other handles' records wait for it, and so it can neither call an
 * operation nor open or close a handle, whichever: that answers with KESTOVA_PROBLEM_BUSY. */
typedef void(KESTOVA_CALL *kestova_log_function)(void *context, int level, const kestova_char *text);

/* From the next operation on the function receives the records of this handle; null: nobody does. 0 for a handle that
 * is not open, else 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_log(kestova *handle, kestova_log_function function, void *context);

/* --- version --- */

/* Of the library, "1.1.0"; never freed. */
KESTOVA_C_API const char *KESTOVA_CALL kestova_version(void);

/* The KESTOVA_INTERFACE of the library. A program needs at least that of its own header. */
KESTOVA_C_API unsigned int KESTOVA_CALL kestova_interface(void);

/* --- records of operations --- */

/* The place of a volume to which the installed Windows assigns a letter. */
typedef struct kestova_drive_info {
    int disk;            /* in the running system; 255 if it could not be read */
    int partition;       /* 0 if it could not be read */
    kestova_char letter; /* the installed Windows' letter */
} kestova_drive_info;

/* --- values of outputs --- */

/* The style (GetDiskStyle). */
enum kestova_style {
    KESTOVA_STYLE_UNKNOWN = 0, /* unknown, or not to be read */
    KESTOVA_STYLE_MBR = 1, /* MBR */
    KESTOVA_STYLE_GPT = 2 /* GPT */
};

/* The layout (GetCurrentDiskType). */
enum kestova_type {
    KESTOVA_TYPE_UNKNOWN = 0, /* unknown */
    KESTOVA_TYPE_GPT_ESP = 1, /* GPT, partition 3 is the EFI system partition */
    KESTOVA_TYPE_GPT_OTHER = 2, /* GPT, partition 3 is not the EFI system partition */
    KESTOVA_TYPE_MBR_SYSTEM_RESERVED = 3, /* MBR, partition 2 is labelled "System Reserved" */
    KESTOVA_TYPE_MBR_OTHER = 4 /* MBR, partition 2 is not labelled System Reserved */
};

/* --- operations --- */

enum kestova_initialize_result {
    /* the service is ready */
    KESTOVA_INITIALIZE_READY = 1,
    /* the service could not be loaded in 20 attempts; a failure: retry */
    KESTOVA_INITIALIZE_NOT_LOADED = 0
};

/* Prepares COM security and loads the Virtual Disk Service.
 * Takes up to 20 attempts to load the service, one second apart.
 * reserved: without effect. */
KESTOVA_C_API int KESTOVA_CALL kestova_initialize(kestova *handle, int reserved);

enum kestova_get_first_internal_drive_number_result {
    /* there is none, or it could not be told; a failure: retry */
    KESTOVA_GET_FIRST_INTERNAL_DRIVE_NUMBER_NONE = -1
};

/* Which disk is the first internal one.
 * Returns the number of the disk, or one of the results above. */
KESTOVA_C_API int KESTOVA_CALL kestova_get_first_internal_drive_number(kestova *handle);

enum kestova_get_disk_style_result {
    /* asked; the style tells the rest */
    KESTOVA_GET_DISK_STYLE_ASKED = 1,
    /* there is no volume layer; a failure: give-up, the object was made while memory had run out: make
     * another one */
    KESTOVA_GET_DISK_STYLE_NO_VOLUME_LAYER = 0
};

/* The partition style of the first internal disk.
 * style: the style (0 unknown, or not to be read, 1 MBR, 2 GPT). */
KESTOVA_C_API int KESTOVA_CALL kestova_get_disk_style(kestova *handle, int *style);

enum kestova_get_current_disk_type_result {
    /* asked; the type tells the rest */
    KESTOVA_GET_CURRENT_DISK_TYPE_ASKED = 1
};

/* The layout of the first internal disk.
 * type: the layout (0 unknown, 1 GPT, partition 3 is the EFI system partition, 2 GPT, partition 3 is not the
 * EFI system partition, 3 MBR, partition 2 is labelled "System Reserved", 4 MBR, partition 2 is not labelled
 * System Reserved). */
KESTOVA_C_API int KESTOVA_CALL kestova_get_current_disk_type(kestova *handle, int *type);

enum kestova_is_dynamic_result {
    /* no */
    KESTOVA_IS_DYNAMIC_NO = 0
};

/* Always 0: no disk counts as dynamic. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_dynamic(kestova *handle);

enum kestova_is_efi_boot_system_result {
    /* UEFI */
    KESTOVA_IS_EFI_BOOT_SYSTEM_UEFI = 1,
    /* BIOS */
    KESTOVA_IS_EFI_BOOT_SYSTEM_BIOS = 0
};

/* Whether the firmware is UEFI. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_efi_boot_system(kestova *handle);

enum kestova_get_drive_letter_result {
    /* it has none; a failure: retry */
    KESTOVA_GET_DRIVE_LETTER_NONE = '0'
};

/* The letter of a partition.
 * disk: number of a disk, from 0.
 * partition: number of a partition, from 1.
 * Returns its letter, or one of the results above. */
KESTOVA_C_API kestova_char KESTOVA_CALL kestova_get_drive_letter(kestova *handle, int disk, int partition);

enum kestova_is_need_hide_partition_result {
    /* yes */
    KESTOVA_IS_NEED_HIDE_PARTITION_YES = 1,
    /* no, or it could not be told */
    KESTOVA_IS_NEED_HIDE_PARTITION_NO = 0
};

/* Whether a partition is not for the user's eyes.
 * disk: number of a disk, from 0.
 * partition: number of a partition, from 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_need_hide_partition(kestova *handle, int disk, int partition);

enum kestova_is_bios_hibernation_partition_result {
    /* yes */
    KESTOVA_IS_BIOS_HIBERNATION_PARTITION_YES = 1,
    /* no, or it could not be told */
    KESTOVA_IS_BIOS_HIBERNATION_PARTITION_NO = 0
};

/* Whether a partition is the BIOS's hibernation partition.
 * disk: number of a disk, from 0.
 * partition: number of a partition, from 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_bios_hibernation_partition(kestova *handle, int disk, int partition);

enum kestova_set_bios_hibernation_partition_id_result {
    /* done */
    KESTOVA_SET_BIOS_HIBERNATION_PARTITION_ID_DONE = 0,
    /* failed; a failure: retry */
    KESTOVA_SET_BIOS_HIBERNATION_PARTITION_ID_FAILED = 1
};

/* Makes an MBR partition of the first internal disk the BIOS's hibernation partition. Changes the PC.
 * partition: number of a partition, from 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_bios_hibernation_partition_id(kestova *handle, int partition);

enum kestova_get_active_partition_number_result {
    /* there is none, or it could not be told; a failure: retry */
    KESTOVA_GET_ACTIVE_PARTITION_NUMBER_NONE = -1
};

/* Which partition of the first internal disk is active.
 * Returns the number of the partition, or one of the results above. */
KESTOVA_C_API int KESTOVA_CALL kestova_get_active_partition_number(kestova *handle);

enum kestova_set_active_result {
    /* done */
    KESTOVA_SET_ACTIVE_DONE = 0,
    /* failed; a failure: undo, if GetActivePartitionNumber no longer answers the number from before, call
     * ClearActive, then SetActive with it */
    KESTOVA_SET_ACTIVE_FAILED = 1
};

/* Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself. Changes
 * the PC.
 * partition: number of a partition, from 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_active(kestova *handle, int partition);

enum kestova_clear_active_result {
    /* done */
    KESTOVA_CLEAR_ACTIVE_DONE = 0,
    /* failed; a failure: undo, if GetActivePartitionNumber no longer answers the number from before, call
     * ClearActive, then SetActive with it */
    KESTOVA_CLEAR_ACTIVE_FAILED = 1
};

/* Clears every active flag of the first internal disk. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_clear_active(kestova *handle);

enum kestova_get_factory_prt_drive_letter_result {
    /* asked; the letter tells the rest */
    KESTOVA_GET_FACTORY_PRT_DRIVE_LETTER_ASKED = 1
};

/* The letter of the first volume labelled "Factory".
 * letter: its letter ('0' there is none). */
KESTOVA_C_API int KESTOVA_CALL kestova_get_factory_prt_drive_letter(kestova *handle, kestova_char *letter);

enum kestova_get_rcvdisc_result {
    /* there is none; a failure: retry */
    KESTOVA_GET_RCVDISC_NONE = '0'
};

/* The letter of the first recovery disc.
 * Returns its letter, or one of the results above. */
KESTOVA_C_API kestova_char KESTOVA_CALL kestova_get_rcvdisc(kestova *handle);

enum kestova_get_rcvufd_result {
    /* there is none; a failure: retry */
    KESTOVA_GET_RCVUFD_NONE = '0'
};

/* The letter of the first recovery USB flash drive.
 * Returns its letter, or one of the results above. */
KESTOVA_C_API kestova_char KESTOVA_CALL kestova_get_rcvufd(kestova *handle);

enum kestova_is_windows_re_result {
    /* yes */
    KESTOVA_IS_WINDOWS_RE_YES = 1,
    /* no */
    KESTOVA_IS_WINDOWS_RE_NO = 0
};

/* Whether a fixed drive holds the maker's bootable Windows RE files.
 * letter: a drive letter. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_windows_re(kestova *handle, kestova_char letter);

enum kestova_is_vista_os_result {
    /* yes */
    KESTOVA_IS_VISTA_OS_YES = 1,
    /* no */
    KESTOVA_IS_VISTA_OS_NO = 0
};

/* Whether a fixed drive holds an installed Windows, or is encrypted and so taken for one.
 * letter: a drive letter. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_vista_os(kestova *handle, kestova_char letter);

enum kestova_is_cache_partition_for_exp_cache_exist_result {
    /* yes */
    KESTOVA_IS_CACHE_PARTITION_FOR_EXP_CACHE_EXIST_YES = 1,
    /* no, or it could not be told */
    KESTOVA_IS_CACHE_PARTITION_FOR_EXP_CACHE_EXIST_NO = 0
};

/* Whether the second internal disk bears the cache partition. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_cache_partition_for_exp_cache_exist(kestova *handle);

enum kestova_active_orvo_boot_partition_result {
    /* done */
    KESTOVA_ACTIVE_ORVO_BOOT_PARTITION_DONE = 0,
    /* the type could not be read; a failure: retry */
    KESTOVA_ACTIVE_ORVO_BOOT_PARTITION_TYPE_NOT_READ = 101,
    /* the partition has no letter all the same; a failure: undo, DisableOrvoBootPartition takes a letter that
     * was given */
    KESTOVA_ACTIVE_ORVO_BOOT_PARTITION_NO_LETTER = 104,
    /* the letter could not be given; a failure: retry */
    KESTOVA_ACTIVE_ORVO_BOOT_PARTITION_LETTER_NOT_GIVEN = 105,
    /* partition 1 is not the maker's boot partition; a failure: give-up */
    KESTOVA_ACTIVE_ORVO_BOOT_PARTITION_OTHER_TYPE = 113
};

/* Gives the maker's boot partition, number 1, a letter. Changes the PC.
 * letter: the letter of the partition ('0' none). */
KESTOVA_C_API int KESTOVA_CALL kestova_active_orvo_boot_partition(kestova *handle, kestova_char *letter);

enum kestova_disable_orvo_boot_partition_result {
    /* done */
    KESTOVA_DISABLE_ORVO_BOOT_PARTITION_DONE = 0,
    /* the letter could not be taken; a failure: retry */
    KESTOVA_DISABLE_ORVO_BOOT_PARTITION_LETTER_NOT_TAKEN = 105
};

/* Takes the letter of partition 1, whoever gave it. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_disable_orvo_boot_partition(kestova *handle);

enum kestova_active_gpt_system_partition_result {
    /* done */
    KESTOVA_ACTIVE_GPT_SYSTEM_PARTITION_DONE = 0,
    /* the type could not be read; a failure: retry */
    KESTOVA_ACTIVE_GPT_SYSTEM_PARTITION_TYPE_NOT_READ = 101,
    /* the partition has no letter all the same; a failure: undo, DisableGPTSystemPartition takes a letter
     * that was given */
    KESTOVA_ACTIVE_GPT_SYSTEM_PARTITION_NO_LETTER = 104,
    /* the letter could not be given; a failure: retry */
    KESTOVA_ACTIVE_GPT_SYSTEM_PARTITION_LETTER_NOT_GIVEN = 105,
    /* partition 3 is not the EFI system partition; a failure: give-up */
    KESTOVA_ACTIVE_GPT_SYSTEM_PARTITION_OTHER_TYPE = 113
};

/* Gives the EFI system partition, number 3, a letter. Changes the PC.
 * letter: the letter of the partition ('0' none). */
KESTOVA_C_API int KESTOVA_CALL kestova_active_gpt_system_partition(kestova *handle, kestova_char *letter);

enum kestova_disable_gpt_system_partition_result {
    /* done */
    KESTOVA_DISABLE_GPT_SYSTEM_PARTITION_DONE = 0,
    /* the letter could not be taken; a failure: retry */
    KESTOVA_DISABLE_GPT_SYSTEM_PARTITION_LETTER_NOT_TAKEN = 105
};

/* Takes the letter of partition 3, whoever gave it. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_disable_gpt_system_partition(kestova *handle);

enum kestova_assign_recovery_partition_result {
    /* asked; the letter tells the rest */
    KESTOVA_ASSIGN_RECOVERY_PARTITION_ASKED = 1
};

/* Gives the recovery partition of a GPT disk a letter. Changes the PC.
 * letter: its letter ('0' there is no recovery partition, or no letter for it). */
KESTOVA_C_API int KESTOVA_CALL kestova_assign_recovery_partition(kestova *handle, kestova_char *letter);

enum kestova_assign_win_re_partition_result {
    /* asked; the letter tells the rest */
    KESTOVA_ASSIGN_WIN_RE_PARTITION_ASKED = 1
};

/* Gives the Windows RE partition, number 2, a letter. Changes the PC.
 * letter: its letter ('0' there is no Windows RE partition, or no letter for it). */
KESTOVA_C_API int KESTOVA_CALL kestova_assign_win_re_partition(kestova *handle, kestova_char *letter);

/* Takes the letter of the partition that AssignRecoveryPartition last found. Changes the PC. */
KESTOVA_C_API void KESTOVA_CALL kestova_remove_recovery_partition(kestova *handle);

/* Takes the letter of the partition that AssignWinREPartition last found. Changes the PC. */
KESTOVA_C_API void KESTOVA_CALL kestova_remove_win_re_partition(kestova *handle);

enum kestova_is_exist_rcvprt_result {
    /* yes */
    KESTOVA_IS_EXIST_RCVPRT_YES = 1,
    /* no, or it could not be given a letter */
    KESTOVA_IS_EXIST_RCVPRT_NO = 0
};

/* Whether there is a recovery partition; it keeps the letter that it is given. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_exist_rcvprt(kestova *handle);

enum kestova_is_exist_encrypt_volume_result {
    /* it can, even if it encrypts nothing */
    KESTOVA_IS_EXIST_ENCRYPT_VOLUME_YES = 1,
    /* it cannot */
    KESTOVA_IS_EXIST_ENCRYPT_VOLUME_NO = 0
};

/* Whether BitLocker can be asked. */
KESTOVA_C_API int KESTOVA_CALL kestova_is_exist_encrypt_volume(kestova *handle);

enum kestova_get_encrypt_volume_result {
    /* there are none, or several, or BitLocker cannot be asked; a failure: retry */
    KESTOVA_GET_ENCRYPT_VOLUME_NONE = '0',
    /* it has no letter */
    KESTOVA_GET_ENCRYPT_VOLUME_NO_LETTER = 0
};

/* The letter of the only encrypted volume.
 * Returns its letter, or one of the results above. */
KESTOVA_C_API kestova_char KESTOVA_CALL kestova_get_encrypt_volume(kestova *handle);

enum kestova_get_all_encrypt_volume_result {
    /* BitLocker was asked */
    KESTOVA_GET_ALL_ENCRYPT_VOLUME_ASKED = 1,
    /* BitLocker cannot be asked; a failure: retry */
    KESTOVA_GET_ALL_ENCRYPT_VOLUME_NOT_ASKED = 0
};

/* The letters of all encrypted volumes.
 * buffer: the letters; cut to `size` ('' empty).
 * size: characters that the buffer has room for, with the terminator. */
KESTOVA_C_API int KESTOVA_CALL kestova_get_all_encrypt_volume(kestova *handle, kestova_char *buffer, unsigned int size);

enum kestova_get_bit_locker_system_info_result {
    /* asked; the outputs tell the rest */
    KESTOVA_GET_BIT_LOCKER_SYSTEM_INFO_ASKED = 0,
    /* there is no internal disk; a failure: retry */
    KESTOVA_GET_BIT_LOCKER_SYSTEM_INFO_NO_INTERNAL_DISK = 100,
    /* the partition style is unknown; a failure: retry */
    KESTOVA_GET_BIT_LOCKER_SYSTEM_INFO_STYLE_UNKNOWN = 106,
    /* the partition style could not be read; a failure: retry */
    KESTOVA_GET_BIT_LOCKER_SYSTEM_INFO_STYLE_NOT_READ = 111,
    /* the type of partition 3 could not be read; a failure: retry */
    KESTOVA_GET_BIT_LOCKER_SYSTEM_INFO_TYPE_NOT_READ = 115,
    /* there is no volume layer; a failure: give-up, the object was made while memory had run out: make
     * another one */
    KESTOVA_GET_BIT_LOCKER_SYSTEM_INFO_NO_VOLUME_LAYER = 116
};

/* Where the EFI system partition is; its letter is never looked up.
 * disk: its disk (-1 none).
 * partition: its partition (-1 none).
 * letter: its letter ('0' none). */
KESTOVA_C_API int KESTOVA_CALL kestova_get_bit_locker_system_info(kestova *handle, int *disk, int *partition, kestova_char *letter);

enum kestova_get_vista_os_info_result {
    /* found */
    KESTOVA_GET_VISTA_OS_INFO_FOUND = 0,
    /* its partition has no letter, or the layout is another; a failure: retry */
    KESTOVA_GET_VISTA_OS_INFO_NO_LETTER = 104,
    /* its partition holds no Windows; a failure: retry */
    KESTOVA_GET_VISTA_OS_INFO_NO_WINDOWS = 110,
    /* the partition style is unknown or could not be read; a failure: retry */
    KESTOVA_GET_VISTA_OS_INFO_STYLE_UNKNOWN = 111
};

/* Where the installed Windows is, on a GPT disk with an EFI system partition.
 * disk: its disk (-1 none).
 * partition: its partition (-1 none).
 * letter: its letter ('0' none). */
KESTOVA_C_API int KESTOVA_CALL kestova_get_vista_os_info(kestova *handle, int *disk, int *partition, kestova_char *letter);

enum kestova_get_win_drive_letters_result {
    /* done */
    KESTOVA_GET_WIN_DRIVE_LETTERS_DONE = 1,
    /* something failed, or there was no room for all records; a failure: retry, with room for 26 records, one
     * for each letter */
    KESTOVA_GET_WIN_DRIVE_LETTERS_FAILED = 0
};

/* Which disk and partition each letter of the installed Windows stands for.
 * Takes up to 61.8 seconds for the program reg.
 * records: a record for each letter: iDiskNum, iPartNum, cDriveLetter.
 * count: records that there is room for. */
KESTOVA_C_API int KESTOVA_CALL kestova_get_win_drive_letters(kestova *handle, kestova_drive_info *records, int count);

enum kestova_switch_result {
    /* done, or it was active already */
    KESTOVA_SWITCH_DONE = 0,
    /* no active partition could be read; a failure: retry */
    KESTOVA_SWITCH_NO_ACTIVE_PARTITION = 1,
    /* the number of the active partition is unknown; a failure: retry */
    KESTOVA_SWITCH_UNKNOWN_ACTIVE_PARTITION = 2,
    /* the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure:
     * give-up, what a partition must be and hold: docs/recovery-partitions.md */
    KESTOVA_SWITCH_NO_RECOVERY_FILES = 3,
    /* the record could not be written; a failure: retry */
    KESTOVA_SWITCH_RECORD_NOT_WRITTEN = 4,
    /* the flag could not be set; setting the former one again was tried; a failure: undo, if
     * GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive
     * with it */
    KESTOVA_SWITCH_FLAG_NOT_SET = 5
};

/* Makes the recovery partition active and records the partition that was. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_rcvprt_active(kestova *handle);

enum kestova_switch_back_result {
    /* done, or there was nothing to do */
    KESTOVA_SWITCH_BACK_DONE = 0,
    /* no active partition could be read; a failure: retry */
    KESTOVA_SWITCH_BACK_NO_ACTIVE_PARTITION = 1,
    /* the number of the active partition is unknown; a failure: retry */
    KESTOVA_SWITCH_BACK_UNKNOWN_ACTIVE_PARTITION = 2,
    /* the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure:
     * give-up, what a partition must be and hold: docs/recovery-partitions.md */
    KESTOVA_SWITCH_BACK_NO_RECOVERY_FILES = 3,
    /* the flag could not be set; a failure: undo, if GetActivePartitionNumber no longer answers the number
     * from before, call ClearActive, then SetActive with it */
    KESTOVA_SWITCH_BACK_FLAG_NOT_SET = 4,
    /* the record could not be deleted; a failure: go-on, the PC starts from the partition that was asked for;
     * SystemVolume.ini stays, and asking again deletes it */
    KESTOVA_SWITCH_BACK_RECORD_NOT_DELETED = 5
};

/* Makes the recorded partition active again, 2 without a usable record. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_system_active(kestova *handle);

enum kestova_switch_p_one_result {
    /* done */
    KESTOVA_SWITCH_P_ONE_DONE = 0,
    /* no active partition could be read; a failure: retry */
    KESTOVA_SWITCH_P_ONE_NO_ACTIVE_PARTITION = 1,
    /* the number of the active partition is unknown; a failure: retry */
    KESTOVA_SWITCH_P_ONE_UNKNOWN_ACTIVE_PARTITION = 2,
    /* the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure:
     * give-up, what a partition must be and hold: docs/recovery-partitions.md */
    KESTOVA_SWITCH_P_ONE_NO_RECOVERY_FILES = 3,
    /* the record could not be written; a failure: retry */
    KESTOVA_SWITCH_P_ONE_RECORD_NOT_WRITTEN = 4,
    /* the flag could not be set; setting the former one again was tried; a failure: undo, if
     * GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive
     * with it */
    KESTOVA_SWITCH_P_ONE_FLAG_NOT_SET = 5,
    /* the record could not be dropped; a failure: go-on, the PC starts from the partition that was asked for;
     * SystemVolume.ini stays, and means what none would */
    KESTOVA_SWITCH_P_ONE_RECORD_NOT_DROPPED = 6
};

/* As SetRcvprtActive, and drops a record that says 2 or nothing usable. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_p_one_active(kestova *handle);

enum kestova_switch_p_two_result {
    /* done */
    KESTOVA_SWITCH_P_TWO_DONE = 0,
    /* the flag could not be set; setting partition 1 again was tried; a failure: undo, if
     * GetActivePartitionNumber no longer answers the number from before, call ClearActive, then SetActive
     * with it */
    KESTOVA_SWITCH_P_TWO_FLAG_NOT_SET = 1,
    /* the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure:
     * go-on, the PC starts from partition 2; SystemVolume.ini was not looked for */
    KESTOVA_SWITCH_P_TWO_NO_RECOVERY_FILES = 2,
    /* the record could not be deleted; a failure: go-on, the PC starts from the partition that was asked for;
     * SystemVolume.ini stays, and asking again deletes it */
    KESTOVA_SWITCH_P_TWO_RECORD_NOT_DELETED = 3
};

/* Makes partition 2 active and deletes the record. Changes the PC. */
KESTOVA_C_API int KESTOVA_CALL kestova_set_p_two_active(kestova *handle);

#if !defined(_WIN32)

/* --- emulated PCs, for tests of applications --- */

/* The PC that answers the library in this process. Names and texts are UTF-8. */
typedef struct kestova_pc kestova_pc;

/* Opens a PC: a machine that comes with the library ("factory-mbr"), or a file that describes one; in a library that was
 * built with KESTOVA_C_IMAGES also a disk image, to which nothing is written. One at a time in a process, before the first
 * handle is opened. Null if that failed. Without one, kestova_open opens the PC that the variable KESTOVA_PC of the
 * environment names, for the rest of the process. */
KESTOVA_C_API kestova_pc *KESTOVA_CALL kestova_open_pc(const char *name_or_file);

/* Closes the PC. 0 if a handle is still open, or if it is not open; else 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_close_pc(kestova_pc *pc);

/* From now on platform calls fail: "NAME[#N][+]=CODE", the Nth call of that name from now, with "+" all later ones too,
 * without "#N" every call: "IVdsAdvancedDisk::ChangeAttributes#1=E_FAIL". Null: none fails any more. 0 for text that is
 * no fault, else 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_fail(kestova_pc *pc, const char *fault);

/* The next platform call or record since the PC was opened, as a line of text; it is then taken off. Returns the number
 * of bytes without the 0, also if the buffer is too small or null, in which case it stays; 0 at the end. */
KESTOVA_C_API unsigned int KESTOVA_CALL kestova_trace_next(kestova_pc *pc, char *buffer, unsigned int size);

/* What the platform has handed out and not got back, in words, as kestova_trace_next writes; 0 if there is nothing. */
KESTOVA_C_API unsigned int KESTOVA_CALL kestova_outstanding(kestova_pc *pc, char *buffer, unsigned int size);

/* Writes the PC as it is now to a file that describes it, replacing one. 0 if that failed, else 1. */
KESTOVA_C_API int KESTOVA_CALL kestova_save(kestova_pc *pc, const char *file);

#endif

#ifdef __cplusplus
}
#endif

#endif

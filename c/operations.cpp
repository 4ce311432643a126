// The functions of the operations, made from the table of operations (./dev bindings).
// clang-format off

#include <mutex>

#include "c/call.h"
#include "manager/guard.h"

using namespace c_interface;

int KESTOVA_CALL kestova_initialize(kestova *handle, int reserved) {
    return Call(handle, "Initialize", ending::Initialize,
        [=](Kestova& object) {
            return object.Initialize(reserved != 0);
        });
}

int KESTOVA_CALL kestova_get_first_internal_drive_number(kestova *handle) {
    return Call(handle, "GetFirstInternalDriveNumber", ending::GetFirstInternalDriveNumber,
        [](Kestova& object) {
            return object.GetFirstInternalDriveNumber();
        });
}

int KESTOVA_CALL kestova_get_disk_style(kestova *handle, int *style) {
    return Call(handle, "GetDiskStyle", ending::GetDiskStyle,
        [](Kestova& object, THardDiskType& styleKept) {
            return object.GetDiskStyle(styleKept);
        },
        StyleOutput{style});
}

int KESTOVA_CALL kestova_get_current_disk_type(kestova *handle, int *type) {
    return Call(handle, "GetCurrentDiskType", ending::GetCurrentDiskType,
        [](Kestova& object, tagDiskTypeEnum& typeKept) {
            return object.GetCurrentDiskType(typeKept);
        },
        TypeOutput{type});
}

int KESTOVA_CALL kestova_is_dynamic(kestova *handle) {
    return Call(handle, "IsDynamic", ending::IsDynamic,
        [](Kestova& object) {
            return object.IsDynamic();
        });
}

int KESTOVA_CALL kestova_is_efi_boot_system(kestova *handle) {
    return Call(handle, "IsEFIBootSystem", ending::IsEFIBootSystem,
        [](Kestova& object) {
            return object.IsEFIBootSystem();
        });
}

kestova_char KESTOVA_CALL kestova_get_drive_letter(kestova *handle, int disk, int partition) {
    return static_cast<kestova_char>(Call(handle, "GetDriveLetter", ending::GetDriveLetter,
        [=](Kestova& object) {
            return object.GetDriveLetter(disk, partition);
        }));
}

int KESTOVA_CALL kestova_is_need_hide_partition(kestova *handle, int disk, int partition) {
    return Call(handle, "IsNeedHidePartition", ending::IsNeedHidePartition,
        [=](Kestova& object) {
            return object.IsNeedHidePartition(disk, partition);
        });
}

int KESTOVA_CALL kestova_is_bios_hibernation_partition(kestova *handle, int disk, int partition) {
    return Call(handle, "IsBIOSHibernationPartition", ending::IsBIOSHibernationPartition,
        [=](Kestova& object) {
            return object.IsBIOSHibernationPartition(disk, partition);
        });
}

int KESTOVA_CALL kestova_set_bios_hibernation_partition_id(kestova *handle, int partition) {
    return Call(handle, "SetBIOSHibernationPartitionID", ending::SetBIOSHibernationPartitionID,
        [=](Kestova& object) {
            return object.SetBIOSHibernationPartitionID(partition);
        });
}

int KESTOVA_CALL kestova_get_active_partition_number(kestova *handle) {
    return Call(handle, "GetActivePartitionNumber", ending::GetActivePartitionNumber,
        [](Kestova& object) {
            return object.GetActivePartitionNumber();
        });
}

int KESTOVA_CALL kestova_set_active(kestova *handle, int partition) {
    return Call(handle, "SetActive", ending::SetActive,
        [=](Kestova& object) {
            return object.SetActive(partition);
        });
}

int KESTOVA_CALL kestova_clear_active(kestova *handle) {
    return Call(handle, "ClearActive", ending::ClearActive,
        [](Kestova& object) {
            return object.ClearActive();
        });
}

int KESTOVA_CALL kestova_get_factory_prt_drive_letter(kestova *handle, kestova_char *letter) {
    return Call(handle, "GetFactoryPrtDriveLetter", ending::GetFactoryPrtDriveLetter,
        [](Kestova& object, WCHAR& letterKept) {
            return object.GetFactoryPrtDriveLetter(letterKept);
        },
        LetterOutput{letter});
}

kestova_char KESTOVA_CALL kestova_get_rcvdisc(kestova *handle) {
    return static_cast<kestova_char>(Call(handle, "GetRCVDISC", ending::GetRCVDISC,
        [](Kestova& object) {
            return object.GetRCVDISC();
        }));
}

kestova_char KESTOVA_CALL kestova_get_rcvufd(kestova *handle) {
    return static_cast<kestova_char>(Call(handle, "GetRCVUFD", ending::GetRCVUFD,
        [](Kestova& object) {
            return object.GetRCVUFD();
        }));
}

int KESTOVA_CALL kestova_is_windows_re(kestova *handle, kestova_char letter) {
    return Call(handle, "IsWindowsRE", ending::IsWindowsRE,
        [=](Kestova& object) {
            return object.IsWindowsRE(static_cast<WCHAR>(letter));
        });
}

int KESTOVA_CALL kestova_is_vista_os(kestova *handle, kestova_char letter) {
    return Call(handle, "IsVistaOS", ending::IsVistaOS,
        [=](Kestova& object) {
            return object.IsVistaOS(static_cast<WCHAR>(letter));
        });
}

int KESTOVA_CALL kestova_is_cache_partition_for_exp_cache_exist(kestova *handle) {
    return Call(handle, "IsCachePartitionForExpCacheExist", ending::IsCachePartitionForExpCacheExist,
        [](Kestova& object) {
            return object.IsCachePartitionForExpCacheExist();
        });
}

int KESTOVA_CALL kestova_active_orvo_boot_partition(kestova *handle, kestova_char *letter) {
    return Call(handle, "ActiveOrvoBootPartition", ending::ActivePartition,
        [](Kestova& object, WCHAR& letterKept) {
            return object.ActiveOrvoBootPartition(letterKept);
        },
        LetterOutput{letter});
}

int KESTOVA_CALL kestova_disable_orvo_boot_partition(kestova *handle) {
    return Call(handle, "DisableOrvoBootPartition", ending::DisablePartition,
        [](Kestova& object) {
            return object.DisableOrvoBootPartition();
        });
}

int KESTOVA_CALL kestova_active_gpt_system_partition(kestova *handle, kestova_char *letter) {
    return Call(handle, "ActiveGPTSystemPartition", ending::ActivePartition,
        [](Kestova& object, WCHAR& letterKept) {
            return object.ActiveGPTSystemPartition(letterKept);
        },
        LetterOutput{letter});
}

int KESTOVA_CALL kestova_disable_gpt_system_partition(kestova *handle) {
    return Call(handle, "DisableGPTSystemPartition", ending::DisablePartition,
        [](Kestova& object) {
            return object.DisableGPTSystemPartition();
        });
}

int KESTOVA_CALL kestova_assign_recovery_partition(kestova *handle, kestova_char *letter) {
    return Call(handle, "AssignRecoveryPartition", ending::AssignPartition,
        [](Kestova& object, WCHAR& letterKept) {
            return object.AssignRecoveryPartition(letterKept);
        },
        LetterOutput{letter});
}

int KESTOVA_CALL kestova_assign_win_re_partition(kestova *handle, kestova_char *letter) {
    return Call(handle, "AssignWinREPartition", ending::AssignPartition,
        [](Kestova& object, WCHAR& letterKept) {
            return object.AssignWinREPartition(letterKept);
        },
        LetterOutput{letter});
}

void KESTOVA_CALL kestova_remove_recovery_partition(kestova *handle) {
    Call(handle, "RemoveRecoveryPartition", 0,
        [](Kestova& object) {
            object.RemoveRecoveryPartition();
            return 0;
        });
}

void KESTOVA_CALL kestova_remove_win_re_partition(kestova *handle) {
    Call(handle, "RemoveWinREPartition", 0,
        [](Kestova& object) {
            object.RemoveWinREPartition();
            return 0;
        });
}

int KESTOVA_CALL kestova_is_exist_rcvprt(kestova *handle) {
    return Call(handle, "IsExistRcvprt", ending::IsExistRcvprt,
        [](Kestova& object) {
            return object.IsExistRcvprt();
        });
}

int KESTOVA_CALL kestova_is_exist_encrypt_volume(kestova *handle) {
    return Call(handle, "IsExistEncryptVolume", ending::IsExistEncryptVolume,
        [](Kestova& object) {
            return object.IsExistEncryptVolume();
        });
}

kestova_char KESTOVA_CALL kestova_get_encrypt_volume(kestova *handle) {
    return static_cast<kestova_char>(Call(handle, "GetEncryptVolume", ending::GetEncryptVolume,
        [](Kestova& object) {
            return object.GetEncryptVolume();
        }));
}

int KESTOVA_CALL kestova_get_all_encrypt_volume(kestova *handle, kestova_char *buffer, unsigned int size) {
    return Call(handle, "GetAllEncryptVolume", ending::GetAllEncryptVolume,
        [=](Kestova& object, Text& bufferKept) {
            return object.GetAllEncryptVolume(bufferKept.data(), size);
        },
        TextOutput{buffer, size});
}

int KESTOVA_CALL kestova_get_bit_locker_system_info(kestova *handle, int *disk, int *partition, kestova_char *letter) {
    return Call(handle, "GetBitLockerSystemInfo", ending::GetBitLockerSystemInfo,
        [](Kestova& object, int& diskKept, int& partitionKept, WCHAR& letterKept) {
            return object.GetBitLockerSystemInfo(diskKept, partitionKept, letterKept);
        },
        NumberOutput{disk},
        NumberOutput{partition},
        LetterOutput{letter});
}

int KESTOVA_CALL kestova_get_vista_os_info(kestova *handle, int *disk, int *partition, kestova_char *letter) {
    return Call(handle, "GetVistaOSInfo", ending::GetVistaOSInfo,
        [](Kestova& object, int& diskKept, int& partitionKept, WCHAR& letterKept) {
            return object.GetVistaOSInfo(diskKept, partitionKept, letterKept);
        },
        NumberOutput{disk},
        NumberOutput{partition},
        LetterOutput{letter});
}

int KESTOVA_CALL kestova_get_win_drive_letters(kestova *handle, kestova_drive_info *records, int count) {
    return Call(handle, "GetWinDriveLetters", ending::GetWinDriveLetters,
        [=](Kestova& object, DriveInfos& recordsKept) {
            static std::mutex turn;
            const std::scoped_lock alone(turn);
            return object.GetWinDriveLetters(recordsKept.data(), count);
        },
        DriveInfosOutput{records, count});
}

int KESTOVA_CALL kestova_set_rcvprt_active(kestova *handle) {
    return Call(handle, "SetRcvprtActive", ending::SetRcvprtActive,
        [](Kestova& object) {
            return object.SetRcvprtActive();
        });
}

int KESTOVA_CALL kestova_set_system_active(kestova *handle) {
    return Call(handle, "SetSystemActive", ending::SetSystemActive,
        [](Kestova& object) {
            return object.SetSystemActive();
        });
}

int KESTOVA_CALL kestova_set_p_one_active(kestova *handle) {
    return Call(handle, "SetPOneActive", ending::SetPOneActive,
        [](Kestova& object) {
            return object.SetPOneActive();
        });
}

int KESTOVA_CALL kestova_set_p_two_active(kestova *handle) {
    return Call(handle, "SetPTwoActive", ending::SetPTwoActive,
        [](Kestova& object) {
            return object.SetPTwoActive();
        });
}

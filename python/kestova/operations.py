"""The operations, their results and answers; made from the table of operations (./dev bindings)."""

from __future__ import annotations

import abc
import enum
import typing
from ctypes import POINTER, byref, c_int, c_ushort

from ._values import (
    NO_LETTER,
    DriveInfo,
    DriveInfoRecord,
    drive_infos,
    letter_text,
    letter_unit,
    named,
    number,
    text_of,
)


class Style(enum.IntEnum):
    """The style (Kestova.get_disk_style)."""

    # unknown, or not to be read
    UNKNOWN = 0
    # MBR
    MBR = 1
    # GPT
    GPT = 2


class Type(enum.IntEnum):
    """The layout (Kestova.get_current_disk_type)."""

    # unknown
    UNKNOWN = 0
    # GPT, partition 3 is the EFI system partition
    GPT_ESP = 1
    # GPT, partition 3 is not the EFI system partition
    GPT_OTHER = 2
    # MBR, partition 2 is labelled "System Reserved"
    MBR_SYSTEM_RESERVED = 3
    # MBR, partition 2 is not labelled System Reserved
    MBR_OTHER = 4


class InitializeResult(enum.IntEnum):
    """Results of Kestova.initialize."""

    # the service is ready
    READY = 1
    # the service could not be loaded in 20 attempts; a failure
    NOT_LOADED = 0


class GetFirstInternalDriveNumberResult(enum.IntEnum):
    """Results of Kestova.get_first_internal_drive_number."""

    # there is none, or it could not be told; a failure
    NONE = -1


class GetDiskStyleResult(enum.IntEnum):
    """Results of Kestova.get_disk_style."""

    # asked; the style tells the rest
    ASKED = 1
    # there is no volume layer; a failure
    NO_VOLUME_LAYER = 0


class GetCurrentDiskTypeResult(enum.IntEnum):
    """Results of Kestova.get_current_disk_type."""

    # asked; the type tells the rest
    ASKED = 1


class IsDynamicResult(enum.IntEnum):
    """Results of Kestova.is_dynamic."""

    # no
    NO = 0


class IsEFIBootSystemResult(enum.IntEnum):
    """Results of Kestova.is_efi_boot_system."""

    # UEFI
    UEFI = 1
    # BIOS
    BIOS = 0


class IsNeedHidePartitionResult(enum.IntEnum):
    """Results of Kestova.is_need_hide_partition."""

    # yes
    YES = 1
    # no, or it could not be told
    NO = 0


class IsBIOSHibernationPartitionResult(enum.IntEnum):
    """Results of Kestova.is_bios_hibernation_partition."""

    # yes
    YES = 1
    # no, or it could not be told
    NO = 0


class SetBIOSHibernationPartitionIDResult(enum.IntEnum):
    """Results of Kestova.set_bios_hibernation_partition_id."""

    # done
    DONE = 0
    # failed; a failure
    FAILED = 1


class GetActivePartitionNumberResult(enum.IntEnum):
    """Results of Kestova.get_active_partition_number."""

    # there is none, or it could not be told; a failure
    NONE = -1


class SetActiveResult(enum.IntEnum):
    """Results of Kestova.set_active."""

    # done
    DONE = 0
    # failed; a failure
    FAILED = 1


class ClearActiveResult(enum.IntEnum):
    """Results of Kestova.clear_active."""

    # done
    DONE = 0
    # failed; a failure
    FAILED = 1


class GetFactoryPrtDriveLetterResult(enum.IntEnum):
    """Results of Kestova.get_factory_prt_drive_letter."""

    # asked; the letter tells the rest
    ASKED = 1


class IsWindowsREResult(enum.IntEnum):
    """Results of Kestova.is_windows_re."""

    # yes
    YES = 1
    # no
    NO = 0


class IsVistaOSResult(enum.IntEnum):
    """Results of Kestova.is_vista_os."""

    # yes
    YES = 1
    # no
    NO = 0


class IsCachePartitionForExpCacheExistResult(enum.IntEnum):
    """Results of Kestova.is_cache_partition_for_exp_cache_exist."""

    # yes
    YES = 1
    # no, or it could not be told
    NO = 0


class ActiveOrvoBootPartitionResult(enum.IntEnum):
    """Results of Kestova.active_orvo_boot_partition."""

    # done
    DONE = 0
    # the type could not be read; a failure
    TYPE_NOT_READ = 101
    # the partition has no letter all the same; a failure
    NO_LETTER = 104
    # the letter could not be given; a failure
    LETTER_NOT_GIVEN = 105
    # partition 1 is not the maker's boot partition; a failure
    OTHER_TYPE = 113


class DisableOrvoBootPartitionResult(enum.IntEnum):
    """Results of Kestova.disable_orvo_boot_partition."""

    # done
    DONE = 0
    # the letter could not be taken; a failure
    LETTER_NOT_TAKEN = 105


class ActiveGPTSystemPartitionResult(enum.IntEnum):
    """Results of Kestova.active_gpt_system_partition."""

    # done
    DONE = 0
    # the type could not be read; a failure
    TYPE_NOT_READ = 101
    # the partition has no letter all the same; a failure
    NO_LETTER = 104
    # the letter could not be given; a failure
    LETTER_NOT_GIVEN = 105
    # partition 3 is not the EFI system partition; a failure
    OTHER_TYPE = 113


class DisableGPTSystemPartitionResult(enum.IntEnum):
    """Results of Kestova.disable_gpt_system_partition."""

    # done
    DONE = 0
    # the letter could not be taken; a failure
    LETTER_NOT_TAKEN = 105


class AssignRecoveryPartitionResult(enum.IntEnum):
    """Results of Kestova.assign_recovery_partition."""

    # asked; the letter tells the rest
    ASKED = 1


class AssignWinREPartitionResult(enum.IntEnum):
    """Results of Kestova.assign_win_re_partition."""

    # asked; the letter tells the rest
    ASKED = 1


class IsExistRcvprtResult(enum.IntEnum):
    """Results of Kestova.is_exist_rcvprt."""

    # yes
    YES = 1
    # no, or it could not be given a letter
    NO = 0


class IsExistEncryptVolumeResult(enum.IntEnum):
    """Results of Kestova.is_exist_encrypt_volume."""

    # it can, even if it encrypts nothing
    YES = 1
    # it cannot
    NO = 0


class GetAllEncryptVolumeResult(enum.IntEnum):
    """Results of Kestova.get_all_encrypt_volume."""

    # BitLocker was asked
    ASKED = 1
    # BitLocker cannot be asked; a failure
    NOT_ASKED = 0


class GetBitLockerSystemInfoResult(enum.IntEnum):
    """Results of Kestova.get_bit_locker_system_info."""

    # asked; the outputs tell the rest
    ASKED = 0
    # there is no internal disk; a failure
    NO_INTERNAL_DISK = 100
    # the partition style is unknown; a failure
    STYLE_UNKNOWN = 106
    # the partition style could not be read; a failure
    STYLE_NOT_READ = 111
    # the type of partition 3 could not be read; a failure
    TYPE_NOT_READ = 115
    # there is no volume layer; a failure
    NO_VOLUME_LAYER = 116


class GetVistaOSInfoResult(enum.IntEnum):
    """Results of Kestova.get_vista_os_info."""

    # found
    FOUND = 0
    # its partition has no letter, or the layout is another; a failure
    NO_LETTER = 104
    # its partition holds no Windows; a failure
    NO_WINDOWS = 110
    # the partition style is unknown or could not be read; a failure
    STYLE_UNKNOWN = 111


class GetWinDriveLettersResult(enum.IntEnum):
    """Results of Kestova.get_win_drive_letters."""

    # done
    DONE = 1
    # something failed, or there was no room for all records; a failure
    FAILED = 0


class SwitchResult(enum.IntEnum):
    """Results of Kestova.set_rcvprt_active."""

    # done, or it was active already
    DONE = 0
    # no active partition could be read; a failure
    NO_ACTIVE_PARTITION = 1
    # the number of the active partition is unknown; a failure
    UNKNOWN_ACTIVE_PARTITION = 2
    # the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure
    NO_RECOVERY_FILES = 3
    # the record could not be written; a failure
    RECORD_NOT_WRITTEN = 4
    # the flag could not be set; setting the former one again was tried; a failure
    FLAG_NOT_SET = 5


class SwitchBackResult(enum.IntEnum):
    """Results of Kestova.set_system_active."""

    # done, or there was nothing to do
    DONE = 0
    # no active partition could be read; a failure
    NO_ACTIVE_PARTITION = 1
    # the number of the active partition is unknown; a failure
    UNKNOWN_ACTIVE_PARTITION = 2
    # the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure
    NO_RECOVERY_FILES = 3
    # the flag could not be set; a failure
    FLAG_NOT_SET = 4
    # the record could not be deleted; a failure
    RECORD_NOT_DELETED = 5


class SwitchPOneResult(enum.IntEnum):
    """Results of Kestova.set_p_one_active."""

    # done
    DONE = 0
    # no active partition could be read; a failure
    NO_ACTIVE_PARTITION = 1
    # the number of the active partition is unknown; a failure
    UNKNOWN_ACTIVE_PARTITION = 2
    # the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure
    NO_RECOVERY_FILES = 3
    # the record could not be written; a failure
    RECORD_NOT_WRITTEN = 4
    # the flag could not be set; setting the former one again was tried; a failure
    FLAG_NOT_SET = 5
    # the record could not be dropped; a failure
    RECORD_NOT_DROPPED = 6


class SwitchPTwoResult(enum.IntEnum):
    """Results of Kestova.set_p_two_active."""

    # done
    DONE = 0
    # the flag could not be set; setting partition 1 again was tried; a failure
    FLAG_NOT_SET = 1
    # the recovery partition cannot be used: no letter, an unexpected type, or no recovery files; a failure
    NO_RECOVERY_FILES = 2
    # the record could not be deleted; a failure
    RECORD_NOT_DELETED = 3


class GetDiskStyleAnswer(typing.NamedTuple):
    """What Kestova.get_disk_style returns."""

    result: GetDiskStyleResult
    style: Style


class GetCurrentDiskTypeAnswer(typing.NamedTuple):
    """What Kestova.get_current_disk_type returns."""

    result: GetCurrentDiskTypeResult
    type: Type


class GetFactoryPrtDriveLetterAnswer(typing.NamedTuple):
    """What Kestova.get_factory_prt_drive_letter returns."""

    result: GetFactoryPrtDriveLetterResult
    letter: str | None


class ActiveOrvoBootPartitionAnswer(typing.NamedTuple):
    """What Kestova.active_orvo_boot_partition returns."""

    result: ActiveOrvoBootPartitionResult
    letter: str | None


class ActiveGPTSystemPartitionAnswer(typing.NamedTuple):
    """What Kestova.active_gpt_system_partition returns."""

    result: ActiveGPTSystemPartitionResult
    letter: str | None


class AssignRecoveryPartitionAnswer(typing.NamedTuple):
    """What Kestova.assign_recovery_partition returns."""

    result: AssignRecoveryPartitionResult
    letter: str | None


class AssignWinREPartitionAnswer(typing.NamedTuple):
    """What Kestova.assign_win_re_partition returns."""

    result: AssignWinREPartitionResult
    letter: str | None


class GetAllEncryptVolumeAnswer(typing.NamedTuple):
    """What Kestova.get_all_encrypt_volume returns."""

    result: GetAllEncryptVolumeResult
    buffer: str


class GetBitLockerSystemInfoAnswer(typing.NamedTuple):
    """What Kestova.get_bit_locker_system_info returns."""

    result: GetBitLockerSystemInfoResult
    disk: int
    partition: int
    letter: str | None


class GetVistaOSInfoAnswer(typing.NamedTuple):
    """What Kestova.get_vista_os_info returns."""

    result: GetVistaOSInfoResult
    disk: int
    partition: int
    letter: str | None


class GetWinDriveLettersAnswer(typing.NamedTuple):
    """What Kestova.get_win_drive_letters returns."""

    result: GetWinDriveLettersResult
    records: list[DriveInfo]


__all__ = [
    "Style",
    "Type",
    "InitializeResult",
    "GetFirstInternalDriveNumberResult",
    "GetDiskStyleResult",
    "GetCurrentDiskTypeResult",
    "IsDynamicResult",
    "IsEFIBootSystemResult",
    "IsNeedHidePartitionResult",
    "IsBIOSHibernationPartitionResult",
    "SetBIOSHibernationPartitionIDResult",
    "GetActivePartitionNumberResult",
    "SetActiveResult",
    "ClearActiveResult",
    "GetFactoryPrtDriveLetterResult",
    "IsWindowsREResult",
    "IsVistaOSResult",
    "IsCachePartitionForExpCacheExistResult",
    "ActiveOrvoBootPartitionResult",
    "DisableOrvoBootPartitionResult",
    "ActiveGPTSystemPartitionResult",
    "DisableGPTSystemPartitionResult",
    "AssignRecoveryPartitionResult",
    "AssignWinREPartitionResult",
    "IsExistRcvprtResult",
    "IsExistEncryptVolumeResult",
    "GetAllEncryptVolumeResult",
    "GetBitLockerSystemInfoResult",
    "GetVistaOSInfoResult",
    "GetWinDriveLettersResult",
    "SwitchResult",
    "SwitchBackResult",
    "SwitchPOneResult",
    "SwitchPTwoResult",
    "GetDiskStyleAnswer",
    "GetCurrentDiskTypeAnswer",
    "GetFactoryPrtDriveLetterAnswer",
    "ActiveOrvoBootPartitionAnswer",
    "ActiveGPTSystemPartitionAnswer",
    "AssignRecoveryPartitionAnswer",
    "AssignWinREPartitionAnswer",
    "GetAllEncryptVolumeAnswer",
    "GetBitLockerSystemInfoAnswer",
    "GetVistaOSInfoAnswer",
    "GetWinDriveLettersAnswer",
]

# Of each function the type of its result, and those of its parameters behind the handle.
PROTOTYPES = {
    "kestova_initialize": (c_int, c_int),
    "kestova_get_first_internal_drive_number": (c_int,),
    "kestova_get_disk_style": (c_int, POINTER(c_int)),
    "kestova_get_current_disk_type": (c_int, POINTER(c_int)),
    "kestova_is_dynamic": (c_int,),
    "kestova_is_efi_boot_system": (c_int,),
    "kestova_get_drive_letter": (c_ushort, c_int, c_int),
    "kestova_is_need_hide_partition": (c_int, c_int, c_int),
    "kestova_is_bios_hibernation_partition": (c_int, c_int, c_int),
    "kestova_set_bios_hibernation_partition_id": (c_int, c_int),
    "kestova_get_active_partition_number": (c_int,),
    "kestova_set_active": (c_int, c_int),
    "kestova_clear_active": (c_int,),
    "kestova_get_factory_prt_drive_letter": (c_int, POINTER(c_ushort)),
    "kestova_get_rcvdisc": (c_ushort,),
    "kestova_get_rcvufd": (c_ushort,),
    "kestova_is_windows_re": (c_int, c_ushort),
    "kestova_is_vista_os": (c_int, c_ushort),
    "kestova_is_cache_partition_for_exp_cache_exist": (c_int,),
    "kestova_active_orvo_boot_partition": (c_int, POINTER(c_ushort)),
    "kestova_disable_orvo_boot_partition": (c_int,),
    "kestova_active_gpt_system_partition": (c_int, POINTER(c_ushort)),
    "kestova_disable_gpt_system_partition": (c_int,),
    "kestova_assign_recovery_partition": (c_int, POINTER(c_ushort)),
    "kestova_assign_win_re_partition": (c_int, POINTER(c_ushort)),
    "kestova_remove_recovery_partition": (None,),
    "kestova_remove_win_re_partition": (None,),
    "kestova_is_exist_rcvprt": (c_int,),
    "kestova_is_exist_encrypt_volume": (c_int,),
    "kestova_get_encrypt_volume": (c_ushort,),
    "kestova_get_all_encrypt_volume": (c_int, POINTER(c_ushort), c_int),
    "kestova_get_bit_locker_system_info": (c_int, POINTER(c_int), POINTER(c_int), POINTER(c_ushort)),
    "kestova_get_vista_os_info": (c_int, POINTER(c_int), POINTER(c_int), POINTER(c_ushort)),
    "kestova_get_win_drive_letters": (c_int, POINTER(DriveInfoRecord), c_int),
    "kestova_set_rcvprt_active": (c_int,),
    "kestova_set_system_active": (c_int,),
    "kestova_set_p_one_active": (c_int,),
    "kestova_set_p_two_active": (c_int,),
}


class Operations(abc.ABC):
    """The operations of the class, one method each."""

    @abc.abstractmethod
    def _call(self, function: str, *arguments: typing.Any) -> int:
        """Calls the function with the handle and the arguments. Raises KestovaError if that cannot be done."""

    def initialize(self, reserved: bool = False) -> InitializeResult:
        """Prepares COM security and loads the Virtual Disk Service.

        Takes up to 20 attempts to load the service, one second apart.

        reserved: without effect.
        """
        result = self._call("kestova_initialize", bool(reserved))
        return named(InitializeResult, result)

    def get_first_internal_drive_number(self) -> int:
        """Which disk is the first internal one.

        Returns the number of the disk, or a GetFirstInternalDriveNumberResult.
        """
        result = self._call("kestova_get_first_internal_drive_number")
        return named(GetFirstInternalDriveNumberResult, result)

    def get_disk_style(self) -> GetDiskStyleAnswer:
        """The partition style of the first internal disk.

        style: the style (0: unknown, or not to be read; 1: MBR; 2: GPT).
        """
        style = c_int()
        result = self._call("kestova_get_disk_style", byref(style))
        return GetDiskStyleAnswer(named(GetDiskStyleResult, result), named(Style, style.value))

    def get_current_disk_type(self) -> GetCurrentDiskTypeAnswer:
        """The layout of the first internal disk.

        type: the layout (0: unknown; 1: GPT, partition 3 is the EFI system partition; 2: GPT, partition 3 is
        not the EFI system partition; 3: MBR, partition 2 is labelled "System Reserved"; 4: MBR, partition 2
        is not labelled System Reserved).
        """
        type = c_int()
        result = self._call("kestova_get_current_disk_type", byref(type))
        return GetCurrentDiskTypeAnswer(named(GetCurrentDiskTypeResult, result), named(Type, type.value))

    def is_dynamic(self) -> IsDynamicResult:
        """Always 0: no disk counts as dynamic."""
        result = self._call("kestova_is_dynamic")
        return named(IsDynamicResult, result)

    def is_efi_boot_system(self) -> IsEFIBootSystemResult:
        """Whether the firmware is UEFI."""
        result = self._call("kestova_is_efi_boot_system")
        return named(IsEFIBootSystemResult, result)

    def get_drive_letter(self, disk: int, partition: int) -> str | None:
        """The letter of a partition.

        disk: number of a disk, from 0.

        partition: number of a partition, from 1.

        Returns its letter (None: it has none).
        """
        result = self._call("kestova_get_drive_letter", number(disk), number(partition))
        return letter_text(result)

    def is_need_hide_partition(self, disk: int, partition: int) -> IsNeedHidePartitionResult:
        """Whether a partition is not for the user's eyes.

        disk: number of a disk, from 0.

        partition: number of a partition, from 1.
        """
        result = self._call("kestova_is_need_hide_partition", number(disk), number(partition))
        return named(IsNeedHidePartitionResult, result)

    def is_bios_hibernation_partition(self, disk: int, partition: int) -> IsBIOSHibernationPartitionResult:
        """Whether a partition is the BIOS's hibernation partition.

        disk: number of a disk, from 0.

        partition: number of a partition, from 1.
        """
        result = self._call("kestova_is_bios_hibernation_partition", number(disk), number(partition))
        return named(IsBIOSHibernationPartitionResult, result)

    def set_bios_hibernation_partition_id(self, partition: int) -> SetBIOSHibernationPartitionIDResult:
        """Makes an MBR partition of the first internal disk the BIOS's hibernation partition. Changes the PC.

        partition: number of a partition, from 1.
        """
        result = self._call("kestova_set_bios_hibernation_partition_id", number(partition))
        return named(SetBIOSHibernationPartitionIDResult, result)

    def get_active_partition_number(self) -> int:
        """Which partition of the first internal disk is active.

        Returns the number of the partition, or a GetActivePartitionNumberResult.
        """
        result = self._call("kestova_get_active_partition_number")
        return named(GetActivePartitionNumberResult, result)

    def set_active(self, partition: int) -> SetActiveResult:
        """Sets the active flag of an MBR partition of the first internal disk; clears no other flag itself.
        Changes the PC.

        partition: number of a partition, from 1.
        """
        result = self._call("kestova_set_active", number(partition))
        return named(SetActiveResult, result)

    def clear_active(self) -> ClearActiveResult:
        """Clears every active flag of the first internal disk. Changes the PC."""
        result = self._call("kestova_clear_active")
        return named(ClearActiveResult, result)

    def get_factory_prt_drive_letter(self) -> GetFactoryPrtDriveLetterAnswer:
        """The letter of the first volume labelled "Factory".

        letter: its letter (None: there is none).
        """
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_get_factory_prt_drive_letter", byref(letter))
        return GetFactoryPrtDriveLetterAnswer(
            named(GetFactoryPrtDriveLetterResult, result), letter_text(letter.value)
        )

    def get_rcvdisc(self) -> str | None:
        """The letter of the first recovery disc.

        Returns its letter (None: there is none).
        """
        result = self._call("kestova_get_rcvdisc")
        return letter_text(result)

    def get_rcvufd(self) -> str | None:
        """The letter of the first recovery USB flash drive.

        Returns its letter (None: there is none).
        """
        result = self._call("kestova_get_rcvufd")
        return letter_text(result)

    def is_windows_re(self, letter: str) -> IsWindowsREResult:
        """Whether a fixed drive holds the maker's bootable Windows RE files.

        letter: a drive letter.
        """
        result = self._call("kestova_is_windows_re", letter_unit(letter))
        return named(IsWindowsREResult, result)

    def is_vista_os(self, letter: str) -> IsVistaOSResult:
        """Whether a fixed drive holds an installed Windows, or is encrypted and so taken for one.

        letter: a drive letter.
        """
        result = self._call("kestova_is_vista_os", letter_unit(letter))
        return named(IsVistaOSResult, result)

    def is_cache_partition_for_exp_cache_exist(self) -> IsCachePartitionForExpCacheExistResult:
        """Whether the second internal disk bears the cache partition."""
        result = self._call("kestova_is_cache_partition_for_exp_cache_exist")
        return named(IsCachePartitionForExpCacheExistResult, result)

    def active_orvo_boot_partition(self) -> ActiveOrvoBootPartitionAnswer:
        """Gives the maker's boot partition, number 1, a letter. Changes the PC.

        letter: the letter of the partition (None: none).
        """
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_active_orvo_boot_partition", byref(letter))
        return ActiveOrvoBootPartitionAnswer(named(ActiveOrvoBootPartitionResult, result), letter_text(letter.value))

    def disable_orvo_boot_partition(self) -> DisableOrvoBootPartitionResult:
        """Takes the letter of partition 1, whoever gave it. Changes the PC."""
        result = self._call("kestova_disable_orvo_boot_partition")
        return named(DisableOrvoBootPartitionResult, result)

    def active_gpt_system_partition(self) -> ActiveGPTSystemPartitionAnswer:
        """Gives the EFI system partition, number 3, a letter. Changes the PC.

        letter: the letter of the partition (None: none).
        """
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_active_gpt_system_partition", byref(letter))
        return ActiveGPTSystemPartitionAnswer(
            named(ActiveGPTSystemPartitionResult, result), letter_text(letter.value)
        )

    def disable_gpt_system_partition(self) -> DisableGPTSystemPartitionResult:
        """Takes the letter of partition 3, whoever gave it. Changes the PC."""
        result = self._call("kestova_disable_gpt_system_partition")
        return named(DisableGPTSystemPartitionResult, result)

    def assign_recovery_partition(self) -> AssignRecoveryPartitionAnswer:
        """Gives the recovery partition of a GPT disk a letter. Changes the PC.

        letter: its letter (None: there is no recovery partition, or no letter for it).
        """
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_assign_recovery_partition", byref(letter))
        return AssignRecoveryPartitionAnswer(named(AssignRecoveryPartitionResult, result), letter_text(letter.value))

    def assign_win_re_partition(self) -> AssignWinREPartitionAnswer:
        """Gives the Windows RE partition, number 2, a letter. Changes the PC.

        letter: its letter (None: there is no Windows RE partition, or no letter for it).
        """
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_assign_win_re_partition", byref(letter))
        return AssignWinREPartitionAnswer(named(AssignWinREPartitionResult, result), letter_text(letter.value))

    def remove_recovery_partition(self) -> None:
        """Takes the letter of the partition that AssignRecoveryPartition last found. Changes the PC."""
        self._call("kestova_remove_recovery_partition")

    def remove_win_re_partition(self) -> None:
        """Takes the letter of the partition that AssignWinREPartition last found. Changes the PC."""
        self._call("kestova_remove_win_re_partition")

    def is_exist_rcvprt(self) -> IsExistRcvprtResult:
        """Whether there is a recovery partition; it keeps the letter that it is given. Changes the PC."""
        result = self._call("kestova_is_exist_rcvprt")
        return named(IsExistRcvprtResult, result)

    def is_exist_encrypt_volume(self) -> IsExistEncryptVolumeResult:
        """Whether BitLocker can be asked."""
        result = self._call("kestova_is_exist_encrypt_volume")
        return named(IsExistEncryptVolumeResult, result)

    def get_encrypt_volume(self) -> str | None:
        """The letter of the only encrypted volume.

        Returns its letter (None: there are none, or several, or BitLocker cannot be asked; '': it has no
        letter).
        """
        result = self._call("kestova_get_encrypt_volume")
        return letter_text(result)

    def get_all_encrypt_volume(self, size: int = 33) -> GetAllEncryptVolumeAnswer:
        """The letters of all encrypted volumes.

        buffer: the letters ('': empty).

        size: characters that the buffer has room for, with the terminator.
        """
        buffer = (c_ushort * size)()
        result = self._call("kestova_get_all_encrypt_volume", buffer, number(size))
        return GetAllEncryptVolumeAnswer(named(GetAllEncryptVolumeResult, result), text_of(buffer))

    def get_bit_locker_system_info(self) -> GetBitLockerSystemInfoAnswer:
        """Where the EFI system partition is; its letter is never looked up.

        disk: its disk (-1: none).

        partition: its partition (-1: none).

        letter: its letter (None: none).
        """
        disk = c_int()
        partition = c_int()
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_get_bit_locker_system_info", byref(disk), byref(partition), byref(letter))
        return GetBitLockerSystemInfoAnswer(
            named(GetBitLockerSystemInfoResult, result), disk.value, partition.value, letter_text(letter.value)
        )

    def get_vista_os_info(self) -> GetVistaOSInfoAnswer:
        """Where the installed Windows is, on a GPT disk with an EFI system partition.

        disk: its disk (-1: none).

        partition: its partition (-1: none).

        letter: its letter (None: none).
        """
        disk = c_int()
        partition = c_int()
        letter = c_ushort(NO_LETTER)
        result = self._call("kestova_get_vista_os_info", byref(disk), byref(partition), byref(letter))
        return GetVistaOSInfoAnswer(
            named(GetVistaOSInfoResult, result), disk.value, partition.value, letter_text(letter.value)
        )

    def get_win_drive_letters(self, count: int = 26) -> GetWinDriveLettersAnswer:
        """Which disk and partition each letter of the installed Windows stands for.

        Takes up to 61.8 seconds for the program reg.

        records: a record for each letter: iDiskNum, iPartNum, cDriveLetter.

        count: records that there is room for.
        """
        records = (DriveInfoRecord * count)()
        result = self._call("kestova_get_win_drive_letters", records, number(count))
        return GetWinDriveLettersAnswer(named(GetWinDriveLettersResult, result), drive_infos(records))

    def set_rcvprt_active(self) -> SwitchResult:
        """Makes the recovery partition active and records the partition that was. Changes the PC."""
        result = self._call("kestova_set_rcvprt_active")
        return named(SwitchResult, result)

    def set_system_active(self) -> SwitchBackResult:
        """Makes the recorded partition active again, 2 without a usable record. Changes the PC."""
        result = self._call("kestova_set_system_active")
        return named(SwitchBackResult, result)

    def set_p_one_active(self) -> SwitchPOneResult:
        """As SetRcvprtActive, and drops a record that says 2 or nothing usable. Changes the PC."""
        result = self._call("kestova_set_p_one_active")
        return named(SwitchPOneResult, result)

    def set_p_two_active(self) -> SwitchPTwoResult:
        """Makes partition 2 active and deletes the record. Changes the PC."""
        result = self._call("kestova_set_p_two_active")
        return named(SwitchPTwoResult, result)

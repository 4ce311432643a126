// Encryption and the installed Windows.

#include "base/drive_letter.h"
#include "base/utf.h"
#include "tools/kestova/operations/operation_tables.h"

namespace {

std::vector<Parameter> PlaceOutputs() {
    return {
        {.name = "disk", .words = "its disk", .output = true, .meanings = {{-1, "NONE", "none", {}, vague}}},
        {.name = "partition", .words = "its partition", .output = true, .meanings = {{-1, "NONE", "none"}}},
        LetterOutput("its letter", "none")};
}

template <typename Member>
Value WithPlace(Values& outputs, Member member) {
    int foundDisk = -1;
    int foundPartition = -1;
    WCHAR letter = noLetter;
    const auto result = static_cast<int>(member(foundDisk, foundPartition, letter));
    outputs.emplace_back("disk", foundDisk);
    outputs.emplace_back("partition", foundPartition);
    outputs.emplace_back("letter", LetterText(letter));
    return result;
}

Value GetAllEncryptVolume(Kestova& object, const Values& arguments, Values& outputs) {
    const auto size = static_cast<DWORD>(Number(arguments, "size"));
    std::basic_string<WCHAR> buffer(size + size_t{1}, TEXT('\0'));
    const int result = object.GetAllEncryptVolume(buffer.data(), size);
    outputs.emplace_back("buffer", ToUtf8(buffer.c_str()));
    return result;
}

Value GetWinDriveLetters(Kestova& object, const Values& arguments, Values& outputs) {
    const int count = Number(arguments, "count");
    constexpr tagDriveInfo_t notFilled{-1, -1, noLetter};
    std::vector<tagDriveInfo_t> records(static_cast<size_t>(count) + 1, notFilled);
    const int result = object.GetWinDriveLetters(records.data(), count);
    std::vector<DriveRecord> filled;
    for (const tagDriveInfo_t& record : records) {
        if (record.cDriveLetter == notFilled.cDriveLetter) break;
        filled.push_back({record.iDiskNum, record.iPartNum, LetterText(record.cDriveLetter)});
    }
    outputs.emplace_back("records", filled);
    return result;
}

}  // namespace

std::vector<Operation> WindowsOperations() {
    return {
        {.name = "IsExistEncryptVolume",
         .summary = "Whether BitLocker can be asked.",
         .results = {{1, "YES", "it can, even if it encrypts nothing"}, {0, "NO", "it cannot", {}, vague}},
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return object.IsExistEncryptVolume();
         }},

        {.name = "GetEncryptVolume",
         .summary = "The letter of the only encrypted volume.",
         .results = {{"0", "NONE", "there are none, or several, or BitLocker cannot be asked", retry, vague},
                     {std::string(1, '\0'), "NO_LETTER", "it has no letter"}},
         .otherwise = "its letter",
         .invoke = [](Kestova& object, const Values&, Values&) -> Value {
             return LetterText(object.GetEncryptVolume());
         }},

        {.name = "GetAllEncryptVolume",
         .summary = "The letters of all encrypted volumes.",
         .parameters = {{.name = "buffer",
                         .kind = Kind::Text,
                         .words = "the letters",
                         .output = true,
                         .meanings = {{"", "EMPTY", "empty"}}},
                        {.name = "size",
                         .kind = Kind::Count,
                         .words = "characters that the buffer has room for, with the terminator",
                         .standard = 33}},
         .results = {{1, "ASKED", "BitLocker was asked"},
                     {0, "NOT_ASKED", "BitLocker cannot be asked", retry, vague}},
         .invoke = GetAllEncryptVolume},

        {.name = "GetBitLockerSystemInfo",
         .summary = "Where the EFI system partition is; its letter is never looked up.",
         .parameters = PlaceOutputs(),
         .results = {{0, "ASKED", "asked; the outputs tell the rest"},
                     {100, "NO_INTERNAL_DISK", "there is no internal disk", retry, vague},
                     {106, "STYLE_UNKNOWN", "the partition style is unknown", retry, vague},
                     {111, "STYLE_NOT_READ", "the partition style could not be read", retry, vague},
                     {115, "TYPE_NOT_READ", "the type of partition 3 could not be read", retry, vague},
                     {116, "NO_VOLUME_LAYER", "there is no volume layer", makeAnother, vague}},
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithPlace(outputs, [&](int& onDisk, int& number, WCHAR& letter) {
                 return object.GetBitLockerSystemInfo(onDisk, number, letter);
             });
         }},

        {.name = "GetVistaOSInfo",
         .summary = "Where the installed Windows is, on a GPT disk with an EFI system partition.",
         .parameters = PlaceOutputs(),
         .results = {{0, "FOUND", "found"},
                     {104, "NO_LETTER", "its partition has no letter, or the layout is another", retry,
                      vague},
                     {110, "NO_WINDOWS", "its partition holds no Windows", retry, vague},
                     {111, "STYLE_UNKNOWN", "the partition style is unknown or could not be read", retry,
                      vague}},
         .invoke = [](Kestova& object, const Values&, Values& outputs) -> Value {
             return WithPlace(outputs, [&](int& onDisk, int& number, WCHAR& letter) {
                 return object.GetVistaOSInfo(onDisk, number, letter);
             });
         }},

        {.name = "GetWinDriveLetters",
         .summary = "Which disk and partition each letter of the installed Windows stands for.",
         .parameters = {{.name = "records",
                         .kind = Kind::List,
                         .words = "a record for each letter: iDiskNum, iPartNum, cDriveLetter",
                         .output = true},
                        {.name = "count",
                         .kind = Kind::Count,
                         .words = "records that there is room for",
                         .standard = 26}},
         .results = {{1, "DONE", "done"},
                     {0, "FAILED", "something failed, or there was no room for all records",
                      After{Advice::Retry, "with room for 26 records, one for each letter"}, vague}},
         .waits = "up to 61.8 seconds for the program reg",
         .invoke = GetWinDriveLetters},
    };
}

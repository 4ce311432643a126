// Each function answers what the operation of the class answers, on each machine that comes with the tool.

#include <gmock/gmock.h>

#include <functional>
#include <map>

#include "machine/facts/machines.h"
#include "tests/c/interface.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/operations/session.h"
#include "tools/kestova/pc/opened_pc.h"

namespace {

using testing::ElementsAre;

// The result and the outputs, in words that the table of operations gives too.
using Answer = std::vector<std::string>;
using Caller = std::function<Answer(kestova*)>;

std::string Text(int number) {
    return std::to_string(number);
}

std::string Text(kestova_char letter) {
    return LetterText(static_cast<WCHAR>(letter));
}

template <typename Result>
Caller Plain(Result (*function)(kestova*)) {
    return [=](kestova* handle) -> Answer { return {Text(function(handle))}; };
}

Caller Silent(void (*function)(kestova*)) {
    return [=](kestova* handle) -> Answer {
        function(handle);
        return {""};
    };
}

template <typename Result, typename... Numbers>
Caller With(Result (*function)(kestova*, Numbers...), std::type_identity_t<Numbers>... numbers) {
    return [=](kestova* handle) -> Answer { return {Text(function(handle, numbers...))}; };
}

Caller Put(int (*function)(kestova*, int*)) {
    return [=](kestova* handle) -> Answer {
        int value = 0;
        const int result = function(handle, &value);
        return {Text(result), Text(value)};
    };
}

Caller PutLetter(int (*function)(kestova*, kestova_char*)) {
    return [=](kestova* handle) -> Answer {
        kestova_char letter = '0';
        const int result = function(handle, &letter);
        return {Text(result), Text(letter)};
    };
}

Caller PutPlace(int (*function)(kestova*, int*, int*, kestova_char*)) {
    return [=](kestova* handle) -> Answer {
        int disk = -1;
        int partition = -1;
        kestova_char letter = '0';
        const int result = function(handle, &disk, &partition, &letter);
        return {Text(result), Text(disk), Text(partition), Text(letter)};
    };
}

Answer AllEncrypted(kestova* handle) {
    kestova_char buffer[33] = {};
    const int result = kestova_get_all_encrypt_volume(handle, buffer, 33);
    return {Text(result), Utf8(buffer)};
}

Answer WinDriveLetters(kestova* handle) {
    kestova_drive_info records[26] = {};
    const int result = kestova_get_win_drive_letters(handle, records, 26);
    std::string filled;
    for (const kestova_drive_info& record : records) {
        if (record.letter == 0) break;
        filled += Text(record.letter) + Text(record.disk) + "," + Text(record.partition) + ";";
    }
    return {Text(result), filled};
}

struct Row {
    Caller call;
    std::vector<std::string> words = {};  // the arguments, as they are typed
};

const std::map<std::string, Row>& Rows() {
    static const std::map<std::string, Row> rows = {
        {"Initialize", {With(kestova_initialize, 0), {"false"}}},
        {"GetFirstInternalDriveNumber", {Plain(kestova_get_first_internal_drive_number)}},
        {"GetDiskStyle", {Put(kestova_get_disk_style)}},
        {"GetCurrentDiskType", {Put(kestova_get_current_disk_type)}},
        {"IsDynamic", {Plain(kestova_is_dynamic)}},
        {"IsEFIBootSystem", {Plain(kestova_is_efi_boot_system)}},
        {"GetDriveLetter", {With(kestova_get_drive_letter, 0, 3), {"0", "3"}}},
        {"IsNeedHidePartition", {With(kestova_is_need_hide_partition, 0, 2), {"0", "2"}}},
        {"IsBIOSHibernationPartition", {With(kestova_is_bios_hibernation_partition, 0, 4), {"0", "4"}}},
        {"SetBIOSHibernationPartitionID", {With(kestova_set_bios_hibernation_partition_id, 4), {"4"}}},
        {"GetActivePartitionNumber", {Plain(kestova_get_active_partition_number)}},
        {"SetActive", {With(kestova_set_active, 2), {"2"}}},
        {"ClearActive", {Plain(kestova_clear_active)}},
        {"GetFactoryPrtDriveLetter", {PutLetter(kestova_get_factory_prt_drive_letter)}},
        {"GetRCVDISC", {Plain(kestova_get_rcvdisc)}},
        {"GetRCVUFD", {Plain(kestova_get_rcvufd)}},
        {"IsWindowsRE", {With(kestova_is_windows_re, 'C'), {"C"}}},
        {"IsVistaOS", {With(kestova_is_vista_os, 'C'), {"C"}}},
        {"IsCachePartitionForExpCacheExist", {Plain(kestova_is_cache_partition_for_exp_cache_exist)}},
        {"ActiveOrvoBootPartition", {PutLetter(kestova_active_orvo_boot_partition)}},
        {"DisableOrvoBootPartition", {Plain(kestova_disable_orvo_boot_partition)}},
        {"ActiveGPTSystemPartition", {PutLetter(kestova_active_gpt_system_partition)}},
        {"DisableGPTSystemPartition", {Plain(kestova_disable_gpt_system_partition)}},
        {"AssignRecoveryPartition", {PutLetter(kestova_assign_recovery_partition)}},
        {"AssignWinREPartition", {PutLetter(kestova_assign_win_re_partition)}},
        {"RemoveRecoveryPartition", {Silent(kestova_remove_recovery_partition)}},
        {"RemoveWinREPartition", {Silent(kestova_remove_win_re_partition)}},
        {"IsExistRcvprt", {Plain(kestova_is_exist_rcvprt)}},
        {"IsExistEncryptVolume", {Plain(kestova_is_exist_encrypt_volume)}},
        {"GetEncryptVolume", {Plain(kestova_get_encrypt_volume)}},
        {"GetAllEncryptVolume", {AllEncrypted}},
        {"GetBitLockerSystemInfo", {PutPlace(kestova_get_bit_locker_system_info)}},
        {"GetVistaOSInfo", {PutPlace(kestova_get_vista_os_info)}},
        {"GetWinDriveLetters", {WinDriveLetters}},
        {"SetRcvprtActive", {Plain(kestova_set_rcvprt_active)}},
        {"SetSystemActive", {Plain(kestova_set_system_active)}},
        {"SetPOneActive", {Plain(kestova_set_p_one_active)}},
        {"SetPTwoActive", {Plain(kestova_set_p_two_active)}},
    };
    return rows;
}

std::string Text(const Value& value) {
    struct Words {
        std::string operator()(std::monostate) { return ""; }
        std::string operator()(bool flag) { return flag ? "1" : "0"; }
        std::string operator()(int number) { return std::to_string(number); }
        std::string operator()(const std::string& text) { return text; }
        std::string operator()(const std::vector<DriveRecord>& records) {
            std::string text;
            for (const DriveRecord& record : records)
                text += record.letter + std::to_string(record.disk) + "," + std::to_string(record.partition) +
                        ";";
            return text;
        }
    };
    return std::visit(Words(), value);
}

// What happened, as the two ways to call show it.
struct Happened {
    Answer answer;
    std::vector<std::string> trace;

    bool operator==(const Happened&) const = default;
};

void PrintTo(const Happened& happened, std::ostream* stream) {
    *stream << testing::PrintToString(happened.answer) << testing::PrintToString(happened.trace);
}

std::vector<std::string> Lines(const Trace& trace) {
    std::vector<std::string> lines;
    for (const machine::JournalEntry& entry : trace)
        lines.push_back(TraceLine(entry));
    return lines;
}

// The class itself, as the tool calls it: all operations one after the other.
std::vector<Happened> OfTheClass(const std::string& machine) {
    const std::unique_ptr<OpenedPc> pc = OpenPc({.pc = machine, .trace = true}, Access::Change);
    Session session(*pc, nullptr, true);
    session.Construct();
    std::vector<Happened> all;
    for (const Operation& operation : Operations()) {
        const OperationReport report =
            session.Call(operation, ReadArguments(operation, Rows().at(operation.name).words));
        Happened happened{{Text(report.result)}, Lines(report.trace)};
        for (const auto& [name, value] : report.outputs)
            happened.answer.push_back(Text(value));
        all.push_back(std::move(happened));
    }
    session.Destroy();
    return all;
}

class COperations : public CInterfaceTest {
  protected:
    std::vector<Happened> OfTheInterface(const std::string& machine) {
        OpenPc(machine.c_str());
        handle_ = kestova_open();
        Trace();
        std::vector<Happened> all;
        for (const Operation& operation : Operations()) {
            Answer answer = Rows().at(operation.name).call(handle_);
            all.push_back({std::move(answer), Trace()});
        }
        return all;
    }
};

TEST_F(COperations, EachMachine_EveryFunctionCalled_AnswersAndWritesAsTheOperation) {
    for (const machine::NamedMachine& machine : machine::NamedMachines()) {
        const std::vector<Happened> expected = OfTheClass(std::string(machine.name));
        const std::vector<Happened> actual = OfTheInterface(std::string(machine.name));
        ASSERT_EQ(actual.size(), expected.size());
        for (size_t i = 0; i < actual.size(); ++i)
            EXPECT_EQ(actual[i], expected[i]) << machine.name << ": " << Operations()[i].name;
        TearDown();
        handle_ = nullptr;
        pc_ = nullptr;
    }
}

TEST_F(COperations, EachResultInTheTable_Described_HasItsWords) {
    for (const Operation& operation : Operations()) {
        for (const Meaning& meaning : operation.results) {
            const auto* const letter = std::get_if<std::string>(&meaning.value);
            const int result = letter != nullptr ? letter->front() : std::get<int>(meaning.value);
            kestova_char words[200];
            const unsigned int length = kestova_describe(operation.name.c_str(), result, words, 200);
            EXPECT_EQ(Utf8(words), meaning.words) << operation.name;
            EXPECT_EQ(length, std::string(meaning.words).size());
        }
    }
}

TEST_F(COperations, OtherResult_Described_HasTheWordsForIt) {
    kestova_char words[40];
    EXPECT_EQ(kestova_describe("GetFirstInternalDriveNumber", 7, words, 40), 22U);
    EXPECT_EQ(Utf8(words), "the number of the disk");
    EXPECT_EQ(kestova_describe("SetActive", 7, words, 40), 0U);
    EXPECT_EQ(Utf8(words), "");
    EXPECT_EQ(kestova_describe("GetNothing", 0, words, 40), 0U);
    EXPECT_EQ(kestova_describe(nullptr, 0, words, 40), 0U);
}

TEST_F(COperations, SmallBuffer_Described_CutsTheWords) {
    kestova_char words[5] = {1, 1, 1, 1, 1};
    EXPECT_EQ(kestova_describe("GetFirstInternalDriveNumber", 7, words, 4), 22U);
    EXPECT_THAT(words, ElementsAre('t', 'h', 'e', 0, 1));
    EXPECT_EQ(kestova_describe("GetFirstInternalDriveNumber", 7, nullptr, 4), 22U);
}

}  // namespace

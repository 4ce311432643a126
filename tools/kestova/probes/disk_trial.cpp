#include "tools/kestova/probes/disk_trial.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "base/hexadecimal.h"
#include "base/utf.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"

namespace {

constexpr BYTE hiddenType = 0x27;
constexpr const char* notListed = "the service did not list the partitions";

const char* YesNo(bool yes) {
    return yes ? "true" : "false";
}

class Trial {
  public:
    Trial(OpenedPc& pc, TrialDisk& disk) : probes_(pc), disk_(disk), before_(disk.partitions) {}

    DiskTrial Run() {
        TryActiveFlags();
        TryLetterless();
        TryLetters();
        TryHiding();
        CheckNothingIsLeft();
        trial_.calls = probes_.Take();
        return std::move(trial_);
    }

  private:
    void TryActiveFlags();
    void TryLetterless();
    void TryLetters();
    void TryHiding();
    void CheckNothingIsLeft();

    // The calls, each with its answer among the probes.
    HRESULT SetActive(const TrialPartition& partition, bool isActive);
    HRESULT SetType(const TrialPartition& partition, BYTE type);
    HRESULT Assign(const TrialPartition& partition, WCHAR letter);
    HRESULT Delete(const TrialPartition& partition, WCHAR letter);
    HRESULT GetLetter(const TrialPartition& partition, WCHAR& letter);

    // After flags of these were set. Whatever they are now is not asked: the answer could be missing.
    void PutFlagsBack(const std::vector<TrialPartition>& changed);
    void PutLettersBack(const TrialPartition& partition);
    // The partition as it is now; nothing if it is gone, or if the service does not list partitions.
    std::optional<TrialPartition> Now(const TrialPartition& partition);
    // The first with a volume; null without one.
    const TrialPartition* WithVolume() const;
    std::string Place(const TrialPartition& partition) const {
        return disk_.name + ", " + std::to_string(partition.offset);
    }
    void Answer(const char* key, const char* question, const std::string& value) {
        trial_.answers.push_back({key, question, value, ""});
    }
    void NoAnswer(const char* key, const char* question, const std::string& why) {
        trial_.answers.push_back({key, question, "", why});
    }

    Probes probes_;
    TrialDisk& disk_;
    const std::vector<TrialPartition> before_;
    DiskTrial trial_;
};

HRESULT Trial::SetActive(const TrialPartition& partition, bool isActive) {
    CHANGE_ATTRIBUTES_PARAMETERS parameters = {};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.bootIndicator = isActive ? TRUE : FALSE;
    const HRESULT result = disk_.advanced->ChangeAttributes(partition.offset, &parameters);
    probes_.Add("IVdsAdvancedDisk::ChangeAttributes",
                Place(partition) + (isActive ? ", active" : ", not active"), HresultWords(result));
    return result;
}

HRESULT Trial::SetType(const TrialPartition& partition, BYTE type) {
    CHANGE_PARTITION_TYPE_PARAMETERS parameters = {};
    parameters.style = VDS_PST_MBR;
    parameters.MbrPartInfo.partitionType = type;
    const HRESULT result = disk_.types->ChangePartitionType(partition.offset, TRUE, &parameters);
    probes_.Add("IVdsAdvancedDisk2::ChangePartitionType", Place(partition) + ", " + Hex(type, 2),
                HresultWords(result));
    return result;
}

HRESULT Trial::Assign(const TrialPartition& partition, WCHAR letter) {
    const HRESULT result = disk_.advanced->AssignDriveLetter(partition.offset, letter);
    probes_.Add("IVdsAdvancedDisk::AssignDriveLetter", Place(partition) + ", " + LetterText(letter),
                HresultWords(result));
    return result;
}

HRESULT Trial::Delete(const TrialPartition& partition, WCHAR letter) {
    const HRESULT result = disk_.advanced->DeleteDriveLetter(partition.offset, letter);
    probes_.Add("IVdsAdvancedDisk::DeleteDriveLetter", Place(partition) + ", " + LetterText(letter),
                HresultWords(result));
    return result;
}

// The letter is an output of a success only.
HRESULT Trial::GetLetter(const TrialPartition& partition, WCHAR& letter) {
    letter = TEXT('?');
    const HRESULT result = disk_.advanced->GetDriveLetter(partition.offset, &letter);
    probes_.Add("IVdsAdvancedDisk::GetDriveLetter", Place(partition) + ", during the trial",
                HresultWords(result) + (SUCCEEDED(result) ? ", " + Quoted(WideView(&letter, 1)) : ""));
    return result;
}

std::optional<TrialPartition> Trial::Now(const TrialPartition& partition) {
    const std::vector<TrialPartition> now = PartitionsNow(disk_).value_or(std::vector<TrialPartition>());
    const auto found = std::ranges::find(now, partition.offset, &TrialPartition::offset);
    return found != now.end() ? std::optional(*found) : std::nullopt;
}

const TrialPartition* Trial::WithVolume() const {
    const auto found = std::ranges::find_if(before_, &TrialPartition::holdsVolume);
    return found != before_.end() ? &*found : nullptr;
}

// Those that were active come last, as setting one flag may clear the others.
void Trial::PutFlagsBack(const std::vector<TrialPartition>& changed) {
    for (const TrialPartition& partition : changed) {
        if (!partition.isActive) SetActive(partition, false);
    }
    for (const TrialPartition& partition : before_) {
        if (partition.isActive) SetActive(partition, true);
    }
}

void Trial::PutLettersBack(const TrialPartition& partition) {
    const std::optional<TrialPartition> now = Now(partition);
    for (const WCHAR letter : partition.letters) {
        if (!now || now->letters.find(letter) == WideString::npos) Assign(partition, letter);
    }
}

void Trial::TryActiveFlags() {
    constexpr const char* key = "activeFlagIsExclusive";
    constexpr const char* question = "does setting one active flag clear the others?";
    constexpr ULONG mostPrimary = 4;
    std::vector<TrialPartition> primary = before_;
    std::erase_if(primary, [](const TrialPartition& partition) { return partition.number > mostPrimary; });
    if (primary.size() < 2) return NoAnswer(key, question, "the disk has less than two primary partitions");
    const HRESULT first = SetActive(primary[0], true);
    const HRESULT second = SetActive(primary[1], true);
    const std::optional<TrialPartition> now = Now(primary[0]);
    PutFlagsBack({primary[0], primary[1]});
    if (first == S_OK && second == S_OK && now) return Answer(key, question, YesNo(!now->isActive));
    if (first == S_OK && second == S_OK) return NoAnswer(key, question, notListed);
    NoAnswer(key, question,
             "ChangeAttributes answered " + HresultWords(first) + ", then " + HresultWords(second));
}

void Trial::TryLetterless() {
    constexpr const char* key = "letterless";
    constexpr const char* question = "what does GetDriveLetter answer for a partition without a letter?";
    std::vector<TrialPartition> letterless = before_;
    std::erase_if(letterless, [](const TrialPartition& partition) { return !partition.letters.empty(); });
    if (letterless.empty()) return NoAnswer(key, question, "every partition has a letter");
    // One without a volume, on which no letter call is refused for it.
    const TrialPartition& partition = *std::ranges::min_element(letterless, {}, &TrialPartition::holdsVolume);
    WCHAR letter = TEXT('\0');
    const HRESULT result = GetLetter(partition, letter);
    if (FAILED(result) && partition.holdsVolume) {
        return NoAnswer(key, question,
                        "it answered " + HresultWords(result) +
                            ", which can be for the volume; a partition "
                            "without one is wanted");
    }
    if (FAILED(result)) return Answer(key, question, "\"fails\"");
    if (letter == TEXT('\0')) return Answer(key, question, "\"nul\"");
    if (letter == TEXT('0')) return Answer(key, question, "\"zero\"");
    NoAnswer(key, question, "it answered " + HresultWords(result) + ", " + Quoted(WideView(&letter, 1)));
}

void Trial::TryLetters() {
    constexpr const char* key = "volumesRefuseLetterCalls";
    constexpr const char* question = "are letter calls refused on a partition that holds a volume?";
    constexpr const char* second = "what does a second letter do?";
    const TrialPartition* const partition = WithVolume();
    const WideString used = LettersInUse();
    const WideView letters = TEXT("ZYXWVUTSRQPONMLKJIHGFED");
    const size_t free = letters.find_first_not_of(used);
    if (partition == nullptr || free == WideView::npos)
        return NoAnswer(key, question,
                        partition == nullptr ? "no partition holds a volume" : "no letter is free");
    const HRESULT assigned = Assign(*partition, letters[free]);
    Answer(key, question, YesNo(FAILED(assigned)));
    if (FAILED(assigned)) return NoAnswer("", second, "AssignDriveLetter answered " + HresultWords(assigned));
    WCHAR shown = TEXT('\0');
    const HRESULT asked = GetLetter(*partition, shown);
    Delete(*partition, letters[free]);
    if (partition->letters.empty()) return NoAnswer("", second, "the partition had no first one");
    const WCHAR first = partition->letters.front();
    const std::optional<TrialPartition> now = Now(*partition);
    PutLettersBack(*partition);
    if (FAILED(asked)) return NoAnswer("", second, "GetDriveLetter answered " + HresultWords(asked));
    if (!now) return NoAnswer("", second, notListed);
    const bool hasFirst = now->letters.find(first) != WideString::npos;
    Answer("", second,
           std::string(shown == first ? "GetDriveLetter shows the first one"
                                      : "GetDriveLetter shows the second one") +
               (hasFirst ? "; the first stays" : "; it replaces the first"));
}

void Trial::TryHiding() {
    constexpr const char* key = "hidingRemovesVolume";
    constexpr const char* question = "does hiding a partition remove its volume and letter?";
    const TrialPartition* const partition = WithVolume();
    if (partition == nullptr) return NoAnswer(key, question, "no partition holds a volume");
    const HRESULT hidden = SetType(*partition, hiddenType);
    const std::optional<TrialPartition> now = Now(*partition);
    SetType(*partition, partition->type);
    PutLettersBack(*partition);
    if (hidden != S_OK)
        return NoAnswer(key, question, "ChangePartitionType answered " + HresultWords(hidden));
    if (!now) return NoAnswer(key, question, notListed);
    Answer(key, question, YesNo(!now->holdsVolume || now->letters != partition->letters));
}

std::string Words(const TrialPartition& partition) {
    return "type " + Hex(partition.type, 2) + (partition.isActive ? ", active" : ", not active") +
           (partition.letters.empty() ? ", no letter" : ", letters " + ToUtf8(partition.letters));
}

// A volume that comes back later is none that is left.
void Trial::CheckNothingIsLeft() {
    for (const TrialPartition& was : before_) {
        const std::string place = disk_.name + ", partition " + std::to_string(was.number);
        std::optional<TrialPartition> now = Now(was);
        if (now) now->holdsVolume = was.holdsVolume;
        if (now == was) continue;
        trial_.left.push_back(place + " was: " + Words(was) + "; it is: " +
                              (now ? Words(*now) : "not to be read") + "; put it back with diskpart");
    }
}

}  // namespace

DiskTrial TryChanges(OpenedPc& pc, TrialDisk& disk) {
    return Trial(pc, disk).Run();
}

#include "tools/kestova/probes/disk_trial.h"

#include <algorithm>

#include "base/hexadecimal.h"
#include "base/utf.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/probes/answer_words.h"

namespace {

constexpr BYTE hiddenType = 0x27;

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

    void PutFlagsBack();
    // The partition as it is now; as it was before, if it is gone.
    TrialPartition Now(const TrialPartition& partition);
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

TrialPartition Trial::Now(const TrialPartition& partition) {
    const std::vector<TrialPartition> now = PartitionsNow(disk_);
    const auto found = std::ranges::find(now, partition.offset, &TrialPartition::offset);
    return found != now.end() ? *found : partition;
}

const TrialPartition* Trial::WithVolume() const {
    const auto found = std::ranges::find_if(before_, &TrialPartition::holdsVolume);
    return found != before_.end() ? &*found : nullptr;
}

// First those that were not active, so that a flag that clears the others is set last.
void Trial::PutFlagsBack() {
    for (const bool wasActive : {false, true}) {
        for (const TrialPartition& partition : before_) {
            if (partition.isActive == wasActive && Now(partition).isActive != wasActive)
                SetActive(partition, wasActive);
        }
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
    const bool stays = Now(primary[0]).isActive;
    PutFlagsBack();
    if (first == S_OK && second == S_OK) return Answer(key, question, YesNo(!stays));
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
    const bool hasFirst = Now(*partition).letters.find(first) != WideString::npos;
    if (!hasFirst) Assign(*partition, first);
    Answer("", second,
           std::string(SUCCEEDED(asked) && shown == first ? "GetDriveLetter shows the first one"
                                                          : "GetDriveLetter shows the second one") +
               (hasFirst ? "; the first stays" : "; it replaces the first"));
}

void Trial::TryHiding() {
    constexpr const char* key = "hidingRemovesVolume";
    constexpr const char* question = "does hiding a partition remove its volume and letter?";
    const TrialPartition* const partition = WithVolume();
    if (partition == nullptr) return NoAnswer(key, question, "no partition holds a volume");
    const HRESULT hidden = SetType(*partition, hiddenType);
    const TrialPartition now = Now(*partition);
    const bool isGone = !now.holdsVolume || now.letters != partition->letters;
    SetType(*partition, partition->type);
    for (const WCHAR letter : partition->letters) {
        if (Now(*partition).letters.find(letter) == WideString::npos) Assign(*partition, letter);
    }
    if (hidden == S_OK) return Answer(key, question, YesNo(isGone));
    NoAnswer(key, question, "ChangePartitionType answered " + HresultWords(hidden));
}

std::string Words(const TrialPartition& partition) {
    return "type " + Hex(partition.type, 2) + (partition.isActive ? ", active" : ", not active") +
           (partition.letters.empty() ? ", no letter" : ", letters " + ToUtf8(partition.letters));
}

// A volume that comes back later is none that is left.
void Trial::CheckNothingIsLeft() {
    for (const TrialPartition& was : before_) {
        TrialPartition now = Now(was);
        now.holdsVolume = was.holdsVolume;
        if (now == was) continue;
        trial_.left.push_back(disk_.name + ", partition " + std::to_string(was.number) + " was: " +
                              Words(was) + "; it is: " + Words(now) + "; put it back with diskpart");
    }
}

}  // namespace

DiskTrial TryChanges(OpenedPc& pc, TrialDisk& disk) {
    return Trial(pc, disk).Run();
}

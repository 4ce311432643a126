#include "tools/kestova/pc/changes.h"

#include <algorithm>
#include <map>
#include <optional>
#include <sstream>

#include "tools/kestova/common/partition_words.h"

namespace {

using machine::Disk;
using machine::Partition;
using machine::Pc;
using machine::Volume;

using Texts = std::vector<std::string>;
// Path and content; nothing for a missing file.
using Files = std::map<std::string, std::optional<std::string>>;

// The lines of an INI file, indented; for longer or binary content only its length.
std::string Shown(const std::string& content) {
    constexpr size_t longest = 400;
    const auto isText = [](unsigned char unit) {
        return unit >= ' ' || unit == '\r' || unit == '\n' || unit == '\t';
    };
    if (content.size() > longest || !std::all_of(content.begin(), content.end(), isText)) {
        return " (" + std::to_string(content.size()) + " bytes)";
    }
    std::string shown;
    std::istringstream lines(content);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) line.pop_back();
        shown += "\n    " + line;
    }
    return shown;
}

Files FilesOf(const machine::FileTree& tree) {
    Files files;
    for (const auto& entry : tree.Entries()) {
        if (!entry.folder) files[entry.path] = entry.content;
    }
    return files;
}

void CompareFiles(const std::string& place, const Files& before, const Files& after, Texts& texts) {
    for (const auto& [path, content] : after) {
        const auto found = before.find(path);
        const auto old = found != before.end() ? found->second : std::nullopt;
        if (old == content) continue;
        if (!content) {
            texts.push_back(place + "file " + path + " deleted");
        } else {
            texts.push_back(place + "file " + path + (old ? " changed:" : " created:") + Shown(*content));
        }
    }
    for (const auto& [path, content] : before) {
        if (content && !after.contains(path)) texts.push_back(place + "file " + path + " deleted");
    }
}

void CompareVolumeFiles(const std::string& place, const Volume& before, const Volume& after, Since since,
                        Texts& texts) {
    const auto* const watched = dynamic_cast<const WatchedStore*>(after.store.get());
    if (watched == nullptr) {
        CompareFiles(place, FilesOf(before.files), FilesOf(after.files), texts);
        return;
    }
    Files now;
    for (const auto& [path, content] : watched->Touched(since))
        now[path] = watched->Content(path);
    CompareFiles(place, watched->Touched(since), now, texts);
}

// An image keeps no letters.
std::string LetterChange(const std::string& before, const std::string& after, bool isOnImage) {
    if (before.empty()) return "given letter " + after + (isOnImage ? " (for this run only)" : "");
    if (after.empty()) return "letter " + before + " taken away";
    return "letter " + before + " became " + after;
}

void ComparePartitions(const std::string& place, bool isOnImage, const Partition& before,
                       const Partition& after, Since since, Texts& texts) {
    if (before.mbrType != after.mbrType) {
        texts.push_back(place + "type " + MbrTypeWords(before.mbrType) + " became " +
                        MbrTypeWords(after.mbrType));
    }
    if ((before.bootIndicator != 0) != (after.bootIndicator != 0)) {
        texts.push_back(place + (after.bootIndicator != 0 ? "active now" : "no longer active"));
    }
    if (before.attributes != after.attributes) texts.push_back(place + "attributes changed");
    const Volume oldVolume = before.volume.value_or(Volume());
    const Volume newVolume = after.volume.value_or(Volume());
    if (oldVolume.letters != newVolume.letters) {
        texts.push_back(place + LetterChange(oldVolume.letters, newVolume.letters, isOnImage));
    }
    CompareVolumeFiles(place, oldVolume, newVolume, since, texts);
}

}  // namespace

void WatchFiles(Pc& pc) {
    for (Disk& disk : pc.disks) {
        for (Partition& partition : disk.partitions) {
            if (!partition.volume || !partition.volume->store) continue;
            partition.volume->store = std::make_shared<WatchedStore>(partition.volume->store);
        }
    }
}

void MarkFiles(const Pc& pc) {
    for (const Disk& disk : pc.disks) {
        for (const Partition& partition : disk.partitions) {
            auto* const watched =
                partition.volume ? dynamic_cast<WatchedStore*>(partition.volume->store.get()) : nullptr;
            if (watched != nullptr) watched->Mark();
        }
    }
}

std::vector<std::string> Changes(const Pc& before, const Pc& after, Since since) {
    Texts texts;
    for (size_t i = 0; i < std::min(before.disks.size(), after.disks.size()); ++i) {
        const auto& then = before.disks[i].partitions;
        const auto& now = after.disks[i].partitions;
        for (size_t j = 0; j < std::min(then.size(), now.size()); ++j) {
            const std::string place = "disk " + std::to_string(after.disks[i].number) + ", partition " +
                                      std::to_string(now[j].number) + ": ";
            ComparePartitions(place, !after.disks[i].image.empty(), then[j], now[j], since, texts);
        }
    }
    for (size_t i = 0; i < std::min(before.volumes.size(), after.volumes.size()); ++i) {
        CompareVolumeFiles("volume " + after.volumes[i].letters + ": ", before.volumes[i], after.volumes[i],
                           since, texts);
    }
    CompareFiles("host program's folder: ", FilesOf(before.host.files), FilesOf(after.host.files), texts);
    return texts;
}

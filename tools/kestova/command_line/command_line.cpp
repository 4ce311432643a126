#include "tools/kestova/command_line/command_line.h"

#include <algorithm>

#include "tools/kestova/arguments/options.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/pc/images.h"

namespace {

constexpr bool risky = true;

std::vector<OptionGroup> OptionGroups(CommandLine& line) {
    PcChoice& choice = line.choice;
    return {
        {"PC",
         {
             {"--image", "FILE", "A disk image, or a disk of this computer; repeated: disk 0, 1, ...",
              &choice.images},
             {"--sector-size", "512|4096", "Of the disk image, where its table does not show it",
              &choice.sectorSize},
             {"--disc", "FILE", "An image of a disc, ISO 9660 or UDF; repeated: more drives", &choice.discs},
             {"--stick", "FILE", "An image of a stick, FAT, exFAT, NTFS or UDF; repeated: more sticks",
              &choice.sticks},
             {"--pc", "NAME|FILE", "A machine that comes with the tool, or a description file", &choice.pc,
              "--image"},
             {"--windows", "", "The installed Windows is running", &choice.windows},
             {"--pe", "", "Windows PE is running; so it is on images", &choice.windowsPe, "--windows"},
         }},
        {"Survey",
         {
             {"--script", "FILE|-", "The operations, one a line", &line.script},
             {"--from", "FILE|-", "Names of further PCs, one a line", &line.from},
             {"--jobs", "NUMBER", "Of PCs at once; as many as there are processors unless given", &line.jobs},
             {"--time-limit", "SECONDS", "For each PC; 60 unless given", &line.timeLimit},
             {"--shard", "PART/PARTS", "Only each PARTS-th PC, from PART on", &line.shard},
             {"--against", "FILE", "Show which PCs answer differently than in this earlier output",
              &line.against},
             {"--resume", "", "Go on with the file of --output: leave out the PCs in it", &line.resume},
             {"--write", "", "Change the images", &line.write, nullptr, risky},
         }},
        {"Also",
         {
             {"--json", "", "Answer in JSON", &line.json},
             {"--hash", "", "Show the SHA-256 of each file", &line.hash},
             {"--output,-o", "FILE|FOLDER|-",
              "Write the report, the page, the description, the generated PCs or the survey there; '-' shows it",
              &line.output},
             {"--format", "html|markdown", "Of the report or the page", &line.format},
             {"--seed", "NUMBER", "Of generated PCs: another seed, other PCs", &line.seed},
             {"--first", "NUMBER", "Of the first PC to generate", &line.first},
             {"--count", "NUMBER", "Of PCs to generate", &line.count},
             {"--changes", "DISK", "Try calls that change this disk, and put back what they change",
              &line.changes},
             {"--expect", "FILE", "Differences that are known, and why", &line.expect},
             {"--anonymous", "", "Put stand-ins for serial numbers, labels, paths and the like",
              &line.anonymous},
             {"--with-installed-registry", "", "Mount the registry of the installed Windows and read it too",
              &line.installedRegistry},
             {"--seen", "", "Compare only what a running system can show", &line.seen},
             {"--bytes", "", "Show sizes in bytes", &line.bytes, "--json"},
             {"--columns", "LIST", "Show these columns, separated by commas", &line.columns, "--json"},
             {"--quiet", "", "Show no notes and remarks, and of status the disks only", &line.quiet},
             {"--log", "FILE|-", "Write the library's log; '-' shows it", &line.log},
             {"--trace", "", "Show platform calls and log records", &choice.trace},
             {"--record", "FILE", "Record the platform calls with their answers, for `replay`",
              &choice.record},
             {"--ledger", "", "Show what the library holds of the platform in the end", &choice.ledger},
             {"--dry-run", "", "Change no file, and show what would change", &choice.dryRun},
             {"--journal", "FILE",
              "Where a change of the image is kept until it is whole; beside the image unless given",
              &choice.journal},
             {"--no-journal", "", "Keep it nowhere: a power cut can leave the image half changed",
              &choice.noJournal, "--journal", risky},
             {"--force-dirty", "", "Change an NTFS volume that is merely marked dirty", &choice.forceDirty,
              nullptr, risky},
             {"--backup", "FILE",
              "Where a backup of what changes on the image stays; beside the image unless given",
              &choice.backup},
             {"--no-backup", "", "Keep none", &choice.noBackup, "--backup", risky},
             {"--yes", "", "Change a disk of this computer, or on Windows the PC itself, without a question",
              &choice.yes, nullptr, risky},
             {"--fail", "NAME[#N][+]=CODE",
              "Let a platform call fail: every one, the Nth, or the Nth and all later ones", &choice.faults},
             {"--save", "FILE", "Write the PC afterwards, as a description", &choice.save, "--dry-run"},
             {"--overwrite", "", "Let --log, --record, --save and -o replace files of any kind",
              &line.overwrite, "--resume", risky},
             {"!--no-initialize", "", "Do not call Initialize first", &line.initialize},
             {"--help,-h", "", "Show this", &line.help},
             {"--version", "", "Show the version", &line.version},
             {"--schema", "", "Show the JSON Schema of what a command writes; of a description without one",
              &line.schema},
         }},
    };
}

// The image of `undo` is the one that the backup is named after, if no other is named.
void NameImageOfBackup(CommandLine& line) {
    if (line.command != "undo" || line.arguments.size() != 1 || !line.choice.images.empty()) return;
    const std::string image = ImageOfBackupFile(line.arguments.front());
    if (!image.empty()) line.choice.images.push_back(image);
}

}  // namespace

bool WantsJson(const std::vector<std::string>& words) {
    const auto end = std::ranges::find(words, "--");
    return std::find(words.begin(), end, "--json") != end;
}

CommandLine ReadCommandLine(const std::vector<std::string>& words) {
    CommandLine line;
    ReadWords read = ReadOptions(OptionGroups(line), words);
    line.options = read.options;
    if (read.positional.empty()) return line;
    line.command = read.positional.front();
    line.arguments.assign(read.positional.begin() + 1, read.positional.end());
    NameImageOfBackup(line);
    return line;
}

const std::vector<OptionWords>& KnownOptions() {
    static const std::vector<OptionWords> options = [] {
        CommandLine line;
        std::vector<OptionWords> known;
        for (const OptionGroup& group : OptionGroups(line)) {
            for (const Option& option : group.options)
                known.push_back({LongName(option), option.value, option.words});
        }
        return known;
    }();
    return options;
}

std::string OptionsText(size_t columns, const std::function<bool(const std::string& option)>& isShown) {
    CommandLine line;
    std::string text;
    for (const OptionGroup& group : OptionGroups(line)) {
        std::vector<std::vector<std::string>> rows;
        for (const Option& option : group.options) {
            if (isShown(LongName(option)))
                rows.push_back({LongName(option) + " " + option.value, option.words});
        }
        if (!rows.empty()) text += "\n" + std::string(group.title) + ":\n" + Table(rows, "  ", columns);
    }
    return text;
}

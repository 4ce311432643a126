#include "tools/kestova/arguments/file_argument.h"

#include <charconv>
#include <optional>

#include "base/text_case.h"
#include "machine/facts/store_path.h"
#include "tools/kestova/common/errors.h"
#include "tools/kestova/common/text.h"

namespace {

[[noreturn]] void RefusePlace(const std::string& text) {
    throw WrongUse("files: '" + Printable(text) +
                   "' is neither a letter, as C:\\sources, nor a partition, as 2:\\sources (on disk 1: "
                   "1.2:\\sources)");
}

std::optional<int> Number(std::string_view text) {
    int number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || rest != text.data() + text.size() || number < 0) return std::nullopt;
    return number;
}

bool IsLetter(char unit) {
    return FoldCase(unit) >= 'A' && FoldCase(unit) <= 'Z';
}

}  // namespace

FilePlace ReadFilePlace(const std::string& text) {
    const size_t colon = text.find(':');
    const std::string volume = text.substr(0, colon);
    FilePlace place;
    if (volume.size() == 1 && IsLetter(volume[0]) && colon != std::string::npos) {
        place.volume.letter = FoldCase(volume[0]);
    } else {
        const size_t dot = volume.find('.');
        place.isOnInternalDisk = dot == std::string::npos;
        const auto disk = place.isOnInternalDisk ? 0 : Number(std::string_view(volume).substr(0, dot));
        const auto partition = Number(std::string_view(volume).substr(place.isOnInternalDisk ? 0 : dot + 1));
        if (!disk || !partition) RefusePlace(text);
        place.volume.disk = *disk;
        place.volume.partition = *partition;
    }
    place.volumeText = UpperCase(volume) + ":";
    if (colon == std::string::npos) return place;
    for (const std::string& name : machine::NamesOf(std::string_view(text).substr(colon + 1)))
        place.path += (place.path.empty() ? "" : "\\") + name;
    return place;
}

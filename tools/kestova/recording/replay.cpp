#include "tools/kestova/recording/replay.h"

#include <algorithm>

#include "tools/kestova/common/input_file.h"
#include "tools/kestova/common/text.h"
#include "tools/kestova/recording/header.h"
#include "tools/kestova/recording/json_line.h"

namespace {

using Json = Tape::Json;

constexpr size_t largestRecording = size_t{256} << 20;

// Characters of a line that a message shows.
constexpr size_t longestShown = 400;

std::string ReadText(std::istream& file, const std::string& name) {
    std::string text = ReadUpTo(file, largestRecording);
    if (file.bad()) throw DamagedRecording(name + ": cannot be read");
    if (text.size() > largestRecording)
        throw DamagedRecording(name + ": larger than 256 MiB, so no recording");
    return text;
}

std::string Shown(const Json& json) {
    const std::string text = json.dump(-1, ' ', false, Json::error_handler_t::replace);
    return Printable(text.size() > longestShown ? text.substr(0, longestShown) + "..." : text);
}

bool Holds(const Json& line, const Json& asked) {
    return std::ranges::all_of(asked.items(), [&](const auto& item) {
        const auto found = line.find(item.key());
        return found != line.end() && *found == item.value();
    });
}

// Of the recorded line as much as was asked for; of another kind of line the whole.
Json Comparable(const Json& line, const Json& asked) {
    Json part = Json::object();
    for (const auto& item : asked.items()) {
        if (line.contains(item.key())) part[item.key()] = line[item.key()];
    }
    return part.empty() ? line : part;
}

}  // namespace

Replay::Replay(std::istream& file, const std::string& name) : name_(name), text_(ReadText(file, name)) {
    const Json* const header = IsAtEnd() ? nullptr : ReadObject();
    if (header == nullptr || !header->contains(recordingKey))
        throw DamagedRecording(name + ": not a recording of platform calls");
    if ((*header)[recordingKey] != recordingVersion)
        throw DamagedRecording(name + ": a recording of another version, " + Shown((*header)[recordingKey]));
}

void Replay::Add(const Json& line) {
    if (Next(line) != nullptr && line.contains("text")) record_ = line["text"].get<std::string>();
}

const Json* Replay::Next(const Json& asked) {
    if (!problem_.empty()) return nullptr;
    if (IsAtEnd()) {
        Complain("the recording ends behind this line; asked was " + Shown(asked));
        return nullptr;
    }
    const Json* const line = ReadObject();
    if (line == nullptr) return nullptr;
    if (!Holds(*line, asked)) {
        Complain("recorded was " + Shown(Comparable(*line, asked)) + "; asked was " + Shown(asked));
        return nullptr;
    }
    calls_ += asked.contains("call");
    return line;
}

void Replay::Reject(const std::string& why) {
    if (problem_.empty()) Complain(why);
}

std::optional<Replay::Operation> Replay::NextOperation() {
    if (!problem_.empty() || IsAtEnd()) return std::nullopt;
    const Place begin = next_;
    const Json* const line = ReadObject();
    if (line == nullptr) return std::nullopt;
    const auto name = line->find("operation");
    const auto arguments = line->find("arguments");
    if (name == line->end() || !name->is_string() || arguments == line->end() || !arguments->is_object()) {
        Complain("no operation begins here: recorded was " + Shown(*line));
        return std::nullopt;
    }
    operation_ = *name;
    next_ = begin;
    return Operation{operation_, *arguments};
}

bool Replay::GoTo(const std::string& operation, const std::optional<Json>& arguments) {
    const Place begin = next_;
    while (!IsAtEnd()) {
        const Place here = next_;
        const Json line = ParsedLine(TakeLine());
        if (!line.is_object() || line.value("operation", Json()) != operation) continue;
        if (arguments && line.value("arguments", Json()) != *arguments) continue;
        next_ = here;
        return true;
    }
    next_ = begin;
    return false;
}

std::string_view Replay::TakeLine() {
    const std::string_view rest = std::string_view(text_).substr(next_.begin);
    const std::string_view line = rest.substr(0, rest.find('\n'));
    next_ = {std::min(next_.begin + line.size() + 1, text_.size()), next_.number + 1};
    return line;
}

// Null, with a complaint, for a line that is no JSON object.
const Json* Replay::ReadObject() {
    line_ = ParsedLine(TakeLine());
    if (line_.is_object()) return &line_;
    Complain(IsAtEnd() ? "the last line is cut off, or damaged" : "damaged: not a JSON object");
    return nullptr;
}

void Replay::Complain(const std::string& what) {
    problem_ = name_ + ":" + std::to_string(next_.number) + ": " + what;
    if (!operation_.empty()) problem_ += "; in " + operation_;
    if (!record_.empty()) problem_ += "; the last record before it: " + Printable(record_);
}

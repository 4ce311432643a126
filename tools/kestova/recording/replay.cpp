#include "tools/kestova/recording/replay.h"

#include <algorithm>

#include "tools/kestova/common/text.h"
#include "tools/kestova/recording/header.h"

namespace {

using Json = Tape::Json;

constexpr size_t largestRecording = size_t{256} << 20;

// Characters of a line that a message shows.
constexpr size_t longestShown = 400;

std::vector<std::string> ReadLines(std::istream& file, const std::string& name) {
    std::vector<std::string> lines;
    size_t size = 0;
    for (std::string line; std::getline(file, line);) {
        size += line.size() + 1;
        if (size > largestRecording) throw DamagedRecording(name + ": larger than 256 MiB, so no recording");
        lines.push_back(std::move(line));
    }
    if (file.bad()) throw DamagedRecording(name + ": cannot be read");
    return lines;
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

Replay::Replay(std::istream& file, const std::string& name) : name_(name), lines_(ReadLines(file, name)) {
    const Json* const header = lines_.empty() ? nullptr : ReadLine();
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
    if (next_ == lines_.size()) {
        Complain("the recording ends behind this line; asked was " + Shown(asked));
        return nullptr;
    }
    const Json* const line = ReadLine();
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
    if (!problem_.empty() || next_ == lines_.size()) return std::nullopt;
    const Json* const line = ReadLine();
    if (line == nullptr) return std::nullopt;
    const auto name = line->find("operation");
    const auto arguments = line->find("arguments");
    if (name == line->end() || !name->is_string() || arguments == line->end() || !arguments->is_object()) {
        Complain("no operation begins here: recorded was " + Shown(*line));
        return std::nullopt;
    }
    operation_ = *name;
    --next_;
    return Operation{operation_, *arguments};
}

bool Replay::GoTo(const std::string& operation) {
    for (size_t at = next_; at < lines_.size(); ++at) {
        const Json line = Json::parse(lines_[at], nullptr, false);
        if (!line.is_object() || line.value("operation", Json()) != operation) continue;
        next_ = at;
        return true;
    }
    return false;
}

// Null, with a complaint, for a line that is no JSON object.
const Json* Replay::ReadLine() {
    line_ = Json::parse(lines_[next_++], nullptr, false);
    if (line_.is_object()) return &line_;
    Complain(next_ == lines_.size() ? "the last line is cut off, or damaged" : "damaged: not a JSON object");
    return nullptr;
}

void Replay::Complain(const std::string& what) {
    problem_ = name_ + ":" + std::to_string(next_) + ": " + what;
    if (!operation_.empty()) problem_ += "; in " + operation_;
    if (!record_.empty()) problem_ += "; the last record before it: " + Printable(record_);
}

// A file of expected logs: the sections of one function, each "== NAME" and its lines, closed by an empty
// line. The sections of tests come first, the folded calls (#...) after them, each in the order of their
// names.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

struct TranscriptSection {
    std::string name;
    std::string text;

    bool operator==(const TranscriptSection&) const = default;
};

// Folded calls may share a name: they differ in texts only.
inline bool IsFoldedCall(const std::string& name) {
    return name.starts_with("#");
}

// Empty if there is no such file.
std::vector<TranscriptSection> ReadTranscripts(const std::filesystem::path& path);

// Adds the section, or replaces the test's section of that name. Other processes may record in the same file.
// Not on Windows: there it fails the running test.
void RecordTranscript(const std::filesystem::path& path, const TranscriptSection& section);

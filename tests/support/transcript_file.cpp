#include "tests/support/transcript_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <tuple>

#ifndef _WIN32
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>
#endif

namespace {

const std::string title = "== ";

}  // namespace

std::vector<TranscriptSection> ReadTranscripts(const std::filesystem::path& path) {
    std::vector<TranscriptSection> sections;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(title)) {
            sections.push_back({line.substr(title.size()), ""});
        } else if (!line.empty() && !sections.empty()) {
            sections.back().text += line + "\n";
        }
    }
    return sections;
}

#ifdef _WIN32
void RecordTranscript(const std::filesystem::path& path, const TranscriptSection&) {
    ADD_FAILURE() << "transcripts are recorded on Linux only: " << path;
}
#else
namespace {

bool ComesBefore(const TranscriptSection& left, const TranscriptSection& right) {
    const auto rank = [](const TranscriptSection& section) {
        return std::tuple(IsFoldedCall(section.name), section.name, section.text);
    };
    return rank(left) < rank(right);
}

void Write(const std::filesystem::path& path, const std::vector<TranscriptSection>& sections) {
    std::ofstream file(path, std::ios::binary);
    for (const TranscriptSection& section : sections)
        file << title << section.name << "\n" << section.text << "\n";
}

}  // namespace

void RecordTranscript(const std::filesystem::path& path, const TranscriptSection& section) {
    std::filesystem::create_directories(path.parent_path());
    const int lock = open(path.parent_path().c_str(), O_RDONLY | O_DIRECTORY);
    flock(lock, LOCK_EX);
    std::vector<TranscriptSection> sections = ReadTranscripts(path);
    std::erase_if(sections, [&](const TranscriptSection& other) {
        return IsFoldedCall(section.name) ? other == section : other.name == section.name;
    });
    sections.push_back(section);
    std::ranges::sort(sections, ComesBefore);
    Write(path, sections);
    close(lock);
}
#endif

// Which PCs a survey is about: descriptions and disk images, each in a file.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The names with folders replaced by the descriptions and images in them, sorted by name; not those in
// folders below them. Each file is there once. Throws WrongUse for a folder without any.
std::vector<std::string> SurveyInputs(const std::vector<std::string>& names);

// The names in a file, one a line; "-" is standard input. Throws WrongUse.
std::vector<std::string> NamesFrom(const std::string& file);

// Every `of`-th, from number `part` on, which counts from 1.
struct Shard {
    size_t part = 1;
    size_t of = 1;
};

// Of "2/8". Throws WrongUse.
Shard ReadShard(const std::string& text);
std::vector<std::string> PartOf(const std::vector<std::string>& inputs, const Shard& shard);

// Whether a file is a description, by its name or its first character; else it is an image.
bool IsDescriptionFile(const std::string& file);

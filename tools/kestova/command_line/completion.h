// What a shell offers while a command line is being typed.
#pragma once

#include <string>
#include <vector>

// The script that makes a shell ask this program; the shell is "bash", "zsh" or "fish". Throws WrongUse for
// another one.
std::string CompletionScript(const std::string& shell);

struct Candidate {
    std::string word;
    std::string meaning;  // may be empty
};

// What the last of the words, those behind the program's name, can become. Nothing where a file can be named,
// or anything.
std::vector<Candidate> Complete(const std::vector<std::string>& words);

#include "tests/tree/shell_commands.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <sstream>
#include <string_view>
#include <vector>

namespace {

// What another command follows.
const std::set<std::string> leading = {"!",  "{",    "do",   "elif", "else",  "exec",
                                       "if", "nice", "then", "time", "until", "while"};

// Whether a word can be the name of a program or a function.
bool IsName(const std::string& word) {
    return !word.empty() && std::isalpha(static_cast<unsigned char>(word.front())) != 0 &&
           std::all_of(word.begin(), word.end(), [](unsigned char unit) {
               return std::isalnum(unit) != 0 || std::strchr("_.+-", unit) != nullptr;
           });
}

bool IsAssignment(const std::string& word) {
    const size_t sign = word.find('=');
    return sign != 0 && sign != std::string::npos && IsName(word.substr(0, sign));
}

// Reads a script, or a part of it, from front to end.
class Reader {
  public:
    explicit Reader(std::string_view script) : rest_(script) {}

    // Up to a closing parenthesis that nothing here opens and that ends no pattern, or to the end.
    void Read(bool isSubstitution) {
        int open = 0;
        while (!rest_.empty()) {
            if (rest_.front() == ')') {
                EndWord();
                if (open == 0 && isSubstitution) return;
                if (open == 0) names_.resize(atLine_);  // the pattern of a case
                open = std::max(0, open - 1);
                isArray_ = false;
                EndCommand();
                Skip(1);
            } else if (rest_.starts_with("((") && word_.empty()) {
                SkipPast("))");
            } else if (rest_.front() == '(') {
                ++open;
                if (!word_.empty()) isBare_ = false;  // of a function or an array
                isArray_ = word_.ends_with('=');
                EndCommand();
                Skip(1);
            } else {
                ReadOther();
            }
        }
        EndWord();
    }

    const std::vector<std::string>& Names() const { return names_; }
    std::string_view Rest() const { return rest_; }

  private:
    std::string_view rest_;
    std::vector<std::string> names_;
    size_t atLine_ = 0;   // how many were read before this line
    std::string word_;    // read so far
    bool isBare_ = true;  // nothing of it is quoted or expanded
    std::string lastWord_;
    bool isArray_ = false;  // the words are those of an array
    bool expected_ = true;  // the next word is a command
    std::string document_;  // the word that ends the document after this line

    void Skip(size_t count) { rest_.remove_prefix(std::min(count, rest_.size())); }
    std::string_view SkipPast(std::string_view end) {
        const std::string_view skipped = rest_.substr(0, rest_.find(end));
        Skip(skipped.size() + end.size());
        return skipped;
    }

    void Nest(std::string_view script, bool isSubstitution) {
        Reader inner(script);
        inner.Read(isSubstitution);
        names_.insert(names_.end(), inner.Names().begin(), inner.Names().end());
        if (isSubstitution) rest_ = inner.Rest();
    }

    void EndWord() {
        if (word_.empty() && isBare_) return;
        if (expected_ && !IsAssignment(word_) && !(isBare_ && leading.contains(word_))) {
            if (isBare_ && IsName(word_)) names_.push_back(word_);
            expected_ = false;
        }
        lastWord_ = word_;
        word_.clear();
        isBare_ = true;
    }

    void EndCommand() {
        EndWord();
        expected_ = !isArray_;
    }

    void ReadOther() {
        const char unit = rest_.front();
        if (unit == '#' && word_.empty() && isBare_) {
            Skip(std::min(rest_.find('\n'), rest_.size()));
        } else if (rest_.starts_with("[[ ") && word_.empty()) {
            SkipPast(" ]]");
            expected_ = false;
        } else if (unit == '\'') {
            ReadText();
        } else if (unit == '"') {
            ReadExpandedText();
        } else if (unit == '$') {
            ReadExpansion();
        } else if (unit == '\\') {
            if (!rest_.starts_with("\\\n")) isBare_ = false;
            Skip(2);
        } else if (rest_.starts_with("<<")) {
            ReadDocumentMark();
        } else if (unit == '\n') {
            EndLine();
        } else if (unit == ';' || unit == '|' || (unit == '&' && !word_.ends_with('>'))) {
            if (rest_.starts_with(";;")) atLine_ = names_.size();
            EndCommand();
            Skip(1);
        } else if (unit == ' ' || unit == '\t') {
            EndWord();
            Skip(1);
        } else {
            word_ += unit;
            Skip(1);
        }
    }

    void ReadText() {
        const bool isScript = word_.empty() && lastWord_ == "-c";
        Skip(1);
        const std::string_view text = SkipPast("'");
        if (isScript) Nest(text, false);
        isBare_ = false;
    }

    void ReadExpandedText() {
        isBare_ = false;
        Skip(1);
        while (!rest_.empty() && rest_.front() != '"') {
            if (rest_.front() == '$')
                ReadExpansion();
            else
                Skip(rest_.front() == '\\' ? 2 : 1);
        }
        Skip(1);
    }

    void ReadExpansion() {
        isBare_ = false;
        if (rest_.starts_with("$((")) {
            SkipPast("))");
        } else if (rest_.starts_with("$(")) {
            Skip(2);
            Nest(rest_, true);
            Skip(1);
        } else if (rest_.starts_with("${")) {
            SkipPast("}");
        } else {
            Skip(1);
        }
    }

    void ReadDocumentMark() {
        if (rest_.starts_with("<<<")) return Skip(3);
        Skip(2);
        const std::string_view mark = rest_.substr(0, rest_.find_first_of(" \n)"));
        for (const char unit : mark)
            if (unit != '\'' && unit != '"') document_ += unit;
        Skip(mark.size());
    }

    void EndLine() {
        EndCommand();
        Skip(1);
        if (!document_.empty()) SkipPast("\n" + document_ + "\n");
        document_.clear();
        atLine_ = names_.size();
    }
};

}  // namespace

std::set<std::string> CommandsOf(const std::string& script) {
    Reader reader(script);
    reader.Read(false);
    return {reader.Names().begin(), reader.Names().end()};
}

std::set<std::string> FunctionsOf(const std::string& script) {
    std::set<std::string> functions;
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        const size_t end = line.find("() ");
        const std::string name = line.substr(0, end);
        if (end != std::string::npos && IsName(name)) functions.insert(name);
    }
    return functions;
}

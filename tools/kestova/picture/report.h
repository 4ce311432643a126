// Everything about a PC that somebody who helps from afar wants to see, for a page or a message.
#pragma once

#include <string>
#include <vector>

#include "tools/kestova/picture/pieces.h"
#include "tools/kestova/reports/switch_check.h"

struct LoggedLine {
    int level = 0;
    std::string text = {};  // UTF-8, on one line, without tabs

    bool IsError() const { return level == errorLevel; }
};

struct PcReport {
    std::string maker = {};                // the program, with its version
    std::string time = {};                 // of making
    std::vector<std::string> images = {};  // their names; or that of the PC, where one was named
    StatusReport status = {};
    SwitchReport check = {};
    std::vector<std::string> notes = {};  // of the PC that was opened
    std::vector<LoggedLine> log = {};     // of the session
};

// "Made by MAKER at TIME of disk.img. Nothing was changed."
std::string MakingWords(const PcReport& report);

// Problems, remarks and notes in this order, the problems marked.
struct Remark {
    std::string text;
    bool isProblem;
};
std::vector<Remark> RemarksOf(const PcReport& report);

// The table of a disk's partitions: its titles, and a row for each piece.
std::vector<std::string> PieceTitles();
std::vector<std::string> PieceRow(const Piece& piece);

// The page, whole in itself: no script, nothing from elsewhere.
std::string HtmlReport(const PcReport& report);
// The same for a chat.
std::string MarkdownReport(const PcReport& report);

// How a page or a text of this program begins, whatever its version.
bool IsReport(const std::string& text);

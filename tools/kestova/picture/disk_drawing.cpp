#include "tools/kestova/picture/disk_drawing.h"

#include <algorithm>
#include <cstdio>
#include <string_view>

#include "tools/kestova/picture/columns.h"
#include "tools/kestova/picture/html_text.h"

namespace {

constexpr double leastPercent = 2.5;

// The share of each piece in percent: tiny ones get the least width, the others share the rest to scale.
std::vector<double> SharesOf(const std::vector<Piece>& pieces) {
    std::vector<bool> isTiny(pieces.size());
    std::vector<double> shares(pieces.size());
    const double least = std::min(leastPercent, 100.0 / static_cast<double>(pieces.size()));
    for (bool hasChanged = true; hasChanged;) {
        hasChanged = false;
        double whole = 0;
        double left = 100;
        for (size_t i = 0; i < pieces.size(); ++i) {
            if (isTiny[i])
                left -= least;
            else
                whole += static_cast<double>(pieces[i].size);
        }
        for (size_t i = 0; i < pieces.size(); ++i) {
            shares[i] = isTiny[i] ? least : left * static_cast<double>(pieces[i].size) / std::max(whole, 1.0);
            if (!isTiny[i] && shares[i] < least) isTiny[i] = hasChanged = true;
        }
    }
    return shares;
}

std::string Percent(double number) {
    char text[32];
    std::snprintf(text, sizeof text, "%.3f%%", number);
    return text;
}

// What it looks like, beside its words.
const char* ClassOf(const Piece& piece) {
    if (piece.partition == nullptr) return "free";
    const auto has = [&](std::string_view word) {
        return std::ranges::any_of(piece.partition->roles, [&](const Role& role) {
            return std::string_view(role.role).find(word) != std::string_view::npos;
        });
    };
    if (has("installed Windows")) return "windows";
    if (has("recovery") || has("Windows RE")) return "recovery";
    return "other";
}

std::string TextLine(int y, const std::string& text) {
    return "<text x=\"6\" y=\"" + std::to_string(y) + "\">" + HtmlText(text) + "</text>";
}

std::string DrawnPiece(const Piece& piece, double x, double share) {
    const std::string place = "x=\"" + Percent(x) + "\" width=\"" + Percent(share) + "\"";
    std::string drawn = "<g><title>" + HtmlText(PieceWords(piece)) + "</title><rect class=\"" +
                        std::string(ClassOf(piece)) + "\" " + place + " y=\"0\" height=\"72\"/>";
    if (piece.partition != nullptr && piece.partition->active)
        drawn += "<rect class=\"active\" " + place + " y=\"66\" height=\"6\"/>";
    // Another picture in the picture cuts texts off at its edge.
    drawn += "<svg " + place + " y=\"0\" height=\"72\">";
    if (piece.partition == nullptr) {
        drawn += TextLine(20, "free");
    } else {
        const std::string letter =
            piece.partition->letter ? " " + LetterText(*piece.partition->letter) + ":" : "";
        drawn += TextLine(20, std::to_string(piece.partition->number) + letter);
        drawn += TextLine(38, piece.partition->label.value_or(""));
    }
    return drawn + TextLine(56, SizeWords(piece.size, false)) + "</svg></g>\n";
}

}  // namespace

std::string DiskDrawing(const DiskReport& disk) {
    const std::vector<Piece> pieces = PiecesOf(disk);
    if (pieces.empty()) return "";
    const std::string id = "disk" + std::to_string(disk.number);
    const std::string description = Joined(pieces, "; ", PieceWords);
    std::string svg = "<svg class=\"disk\" role=\"img\" aria-labelledby=\"" + id + "-title " + id +
                      "-words\" width=\"100%\" height=\"72\">\n<title id=\"" + id + "-title\">Disk " +
                      std::to_string(disk.number) + " to scale</title>\n<desc id=\"" + id + "-words\">" +
                      HtmlText(description) + "</desc>\n";
    const std::vector<double> shares = SharesOf(pieces);
    double x = 0;
    for (size_t i = 0; i < pieces.size(); ++i) {
        svg += DrawnPiece(pieces[i], x, shares[i]);
        x += shares[i];
    }
    return svg + "</svg>\n";
}

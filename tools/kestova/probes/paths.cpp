// Texts of paths, which are joined and cut.

#include "tools/kestova/probes/answer_words.h"
#include "tools/kestova/probes/probes.h"

namespace {

void ProbeAppending(Probes& probes, const WideString& path, const WideString& more) {
    WCHAR buffer[MAX_PATH + 1] = {};
    CopyBounded(buffer, MAX_PATH, path.c_str());
    const BOOL result = PathAppendW(buffer, more.c_str());
    probes.Add(
        "PathAppendW", Quoted(path) + ", " + Quoted(more),
        std::string(result ? "TRUE, " : "FALSE, ") + QuotedBuffer(WideView(buffer, std::size(buffer))));
}

void ProbeCutting(Probes& probes, const WideString& path) {
    WCHAR buffer[MAX_PATH + 1] = {};
    CopyBounded(buffer, MAX_PATH, path.c_str());
    const BOOL result = PathRemoveFileSpecW(buffer);
    probes.Add(
        "PathRemoveFileSpecW", Quoted(path),
        std::string(result ? "TRUE, " : "FALSE, ") + QuotedBuffer(WideView(buffer, std::size(buffer))));
}

}  // namespace

void ProbePaths(Probes& probes) {
    const WideString longest = TEXT("C:\\") + WideString(MAX_PATH - 8, TEXT('x'));
    const WideString texts[] = {TEXT(""),
                                TEXT("C:"),
                                TEXT("C:\\"),
                                TEXT("C:\\Folder"),
                                TEXT("C:\\Folder\\"),
                                TEXT("C:\\Folder\\File.ini"),
                                TEXT("C:Folder"),
                                TEXT("Folder"),
                                TEXT("Folder\\File.ini"),
                                TEXT("\\"),
                                TEXT("\\Folder"),
                                TEXT("\\\\Server"),
                                TEXT("\\\\Server\\Share"),
                                TEXT("\\\\Server\\Share\\File.ini"),
                                TEXT("C:\\Folder\\..\\File.ini"),
                                TEXT("C:/Folder/File.ini"),
                                longest};
    const WideString added[] = {
        TEXT("IDE.INI"),     TEXT("\\IDE.INI"),         TEXT("..\\IDE.INI"), TEXT(".\\IDE.INI"),
        TEXT("D:\\IDE.INI"), TEXT("\\\\Server\\Share"), TEXT("A\\\\B"),      TEXT("")};
    for (const WideString& path : texts) {
        ProbeCutting(probes, path);
        for (const WideString& more : added)
            ProbeAppending(probes, path, more);
    }
}

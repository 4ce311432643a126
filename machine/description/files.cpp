// Files of a volume as JSON: an object with a key for each path.

#include <set>

#include "machine/description/values.h"

namespace machine::description {

namespace {

bool IsFolderPath(const std::string& path) {
    return path.ends_with('/') || path.ends_with('\\');
}

bool HasEmptyStep(const std::string& path) {
    const std::string slashes = "/\\";
    bool afterSlash = true;
    for (size_t at = 0; at < path.size(); ++at) {
        const bool slash = slashes.find(path[at]) != std::string::npos;
        if (slash && afterSlash) return true;
        afterSlash = slash;
    }
    return path.empty();
}

// Fails for a path that is no path, and for one that is a file and a folder at once.
void ExpectFits(const FileTree& tree, const std::string& path, const Node& node) {
    if (HasEmptyStep(path) || path.find_first_of(":*?\"<>|") != std::string::npos)
        node.Fail(
            "must be a path without drive, like \"sources/boot.wim\", or \"sources/data/\" for a folder");
    const FileTree::Entry* const entry = tree.Find(path);
    if (entry != nullptr && !(entry->folder && IsFolderPath(path)))
        node.Fail("stands here already as \"" + entry->path + "\"");
    for (size_t slash = path.find_first_of("/\\"); slash != std::string::npos;
         slash = path.find_first_of("/\\", slash + 1)) {
        const FileTree::Entry* const above = tree.Find(path.substr(0, slash));
        if (above != nullptr && !above->folder) node.Fail("lies below the file \"" + above->path + "\"");
    }
}

std::string ReadContent(const Node& node) {
    if (!node.Value().is_object()) return node.Text();
    node.ExpectKeys({"hex"});
    if (node.Value().empty()) node.Fail("the key \"hex\" is missing");
    return HexBytes().read(node.Key("hex"), {});
}

Json WriteContent(const std::string& content) {
    if (IsJsonText(content)) return content;
    Json object = Json::object();
    object["hex"] = HexBytes().write(content, {});
    return object;
}

FileTree ReadFiles(const Node& node) {
    node.ExpectObject();
    FileTree tree;
    for (const auto& entry : node.Value().items()) {
        const Node file = node.Key(entry.key());
        ExpectFits(tree, entry.key(), file);
        if (!IsFolderPath(entry.key())) {
            tree.PutFile(entry.key(), ReadContent(file));
        } else {
            if (!file.Value().is_null()) file.Fail("must be null, since the path is a folder's");
            tree.PutFolder(entry.key());
        }
    }
    return tree;
}

// The folders that must be written: those with nothing below, and those that a path below spells otherwise.
// The paths below tell all others.
std::set<std::string> FoldersToWrite(const FileTree& tree) {
    std::set<std::string> told;
    std::set<std::string> toWrite;
    for (const FileTree::Entry& entry : tree.Entries()) {
        for (size_t slash = entry.path.find('/'); slash != std::string::npos;
             slash = entry.path.find('/', slash + 1)) {
            const std::string spelled = entry.path.substr(0, slash);
            const std::string& folder = tree.Find(spelled)->path;
            (folder == spelled ? told : toWrite).insert(folder);
        }
    }
    for (const FileTree::Entry& entry : tree.Entries()) {
        if (entry.folder && !told.contains(entry.path)) toWrite.insert(entry.path);
    }
    return toWrite;
}

Json WriteFiles(const FileTree& tree) {
    const std::set<std::string> folders = FoldersToWrite(tree);
    Json object = Json::object();
    for (const FileTree::Entry& entry : tree.Entries()) {
        if (!entry.folder) {
            object[entry.path] = WriteContent(entry.content);
        } else if (folders.contains(entry.path)) {
            object[entry.path + "/"] = nullptr;
        }
    }
    return object;
}

}  // namespace

Codec<FileTree> Files() {
    return PlainCodec<FileTree>(ReadFiles, WriteFiles);
}

}  // namespace machine::description

// Files of a volume as JSON: an object with a key for each path.

#include <set>

#include "machine/description/values.h"
#include "machine/facts/store_path.h"

namespace machine::description {

namespace {

// Of the platform, MAX_PATH.
constexpr size_t longestPath = 260;

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

// Fails for a malformed path, for a file that exists already, and for a path below a file.
void ExpectFits(const FileTree& tree, const std::string& path, const Node& node) {
    if (HasEmptyStep(path) || path.find_first_of(":*?\"<>|") != std::string::npos)
        node.Fail(
            "must be a path without drive, like \"sources/boot.wim\", or \"sources/data/\" for a folder");
    if (path.size() > longestPath) node.Fail("is longer than " + std::to_string(longestPath) + " bytes");
    const FileTree::Entry* const entry = tree.Find(path);
    if (entry != nullptr && !(entry->folder && IsFolderPath(path)))
        node.Fail("stands here already as \"" + entry->path + "\"");
    // Above the nearest one that exists there are only folders.
    const FileTree::Entry* above = nullptr;
    for (std::string folder = FolderOf(Normalized(path)); above == nullptr && !folder.empty();
         folder = FolderOf(folder))
        above = tree.Find(folder);
    if (above != nullptr && !above->folder) node.Fail("lies below the file \"" + above->path + "\"");
}

std::string ReadContent(const Node& node) {
    if (!node.IsObject()) return node.Content();
    node.ExpectKeys({"hex"});
    if (!node.Has("hex")) node.Fail("the key \"hex\" is missing");
    std::string content;
    HexBytes::Read(node.Key("hex"), content);
    return content;
}

void WriteContent(Output out, const std::string& content) {
    if (IsJsonText(content)) return out.Text(content);
    out.Object();
    HexBytes::Write(out.Key("hex"), content, {});
}

void ReadFile(FileTree& tree, const std::string& path, const Node& file) {
    ExpectFits(tree, path, file);
    const size_t before = tree.Entries().size();
    if (!IsFolderPath(path)) {
        tree.PutFile(path, ReadContent(file));
    } else {
        if (!file.IsNull()) file.Fail("must be null, since the path is a folder's");
        tree.PutFolder(path);
    }
    file.Count(tree.Entries().size() - before);
}

// The folders that need a key of their own: the empty ones, and those that a path below spells differently.
// All others follow from the paths below them.
std::set<std::string> FoldersToWrite(const FileTree& tree) {
    std::set<std::string> implied;
    std::set<std::string> toWrite;
    for (const FileTree::Entry& entry : tree.Entries()) {
        for (size_t slash = entry.path.find('/'); slash != std::string::npos;
             slash = entry.path.find('/', slash + 1)) {
            const std::string spelled = entry.path.substr(0, slash);
            const std::string& folder = tree.Find(spelled)->path;
            (folder == spelled ? implied : toWrite).insert(folder);
        }
    }
    for (const FileTree::Entry& entry : tree.Entries()) {
        if (entry.folder && !implied.contains(entry.path)) toWrite.insert(entry.path);
    }
    return toWrite;
}

}  // namespace

void Files::Read(const Node& node, FileTree& tree) {
    node.ExpectObject();
    tree = {};
    for (const auto& [path, file] : node.Members())
        node.Try([&tree, &path = path, &file = file] { ReadFile(tree, path, file); });
}

void Files::Write(Output out, const FileTree& tree, const FileTree&) {
    const std::set<std::string> folders = FoldersToWrite(tree);
    out.Object();
    for (const FileTree::Entry& entry : tree.Entries()) {
        if (!entry.folder) {
            WriteContent(out.Key(entry.path), entry.content);
        } else if (folders.contains(entry.path)) {
            out.Key(entry.path + "/").Null();
        }
    }
}

void Files::Describe(Output out) {
    const Output values = schema::AnyOf(schema::Map(out));
    Text::Describe(values.Entry());
    schema::Null(values.Entry());
    HexBytes::DescribeObject(values.Entry());
}

}  // namespace machine::description

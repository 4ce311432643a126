#include "machine/facts/file_tree.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace machine;
using testing::ElementsAre;

std::vector<std::string> Paths(const FileTree& tree) {
    std::vector<std::string> paths;
    for (const FileTree::Entry& entry : tree.Entries())
        paths.push_back(entry.path);
    return paths;
}

TEST(FileTree, NestedFile_Put_CreatesTheFoldersAboveIt) {
    FileTree tree;
    tree.PutFile("a/b/c.txt", "text");
    EXPECT_THAT(Paths(tree), ElementsAre("a", "a/b", "a/b/c.txt"));
    ASSERT_NE(tree.Find("a/b"), nullptr);
    EXPECT_TRUE(tree.Find("a/b")->folder);
    EXPECT_FALSE(tree.Find("a/b/c.txt")->folder);
}

TEST(FileTree, OtherCaseAndSlashes_Find_ReturnsTheEntry) {
    const FileTree tree = {{"sources/Boot.wim", "WIM"}};
    for (const char* const path : {"sources/boot.wim", "\\SOURCES\\BOOT.WIM", "/Sources/Boot.wim"}) {
        ASSERT_NE(tree.Find(path), nullptr) << path;
        EXPECT_EQ(tree.Find(path)->content, "WIM");
    }
    EXPECT_EQ(tree.Find("boot.wim"), nullptr);
}

TEST(FileTree, ExistingFileInOtherCase_Put_KeepsTheFirstSpelling) {
    FileTree tree = {{"IDE.INI", "old"}};
    tree.PutFile("ide.ini", "new");
    EXPECT_THAT(Paths(tree), ElementsAre("IDE.INI"));
    EXPECT_EQ(tree.Find("IDE.INI")->content, "new");
}

TEST(FileTree, TrailingSlash_Construct_CreatesAFolder) {
    const FileTree tree = {{"sources/data/", ""}, {"other\\", ""}};
    EXPECT_THAT(Paths(tree), ElementsAre("other", "sources", "sources/data"));
    EXPECT_TRUE(tree.Find("sources/data")->folder);
    EXPECT_TRUE(tree.Find("other")->folder);
}

TEST(FileTree, ExistingFolder_Put_ChangesNothing) {
    FileTree tree = {{"a/file", "x"}};
    tree.PutFolder("A");
    EXPECT_THAT(Paths(tree), ElementsAre("a", "a/file"));
}

TEST(FileTree, FileAndFolder_Remove_DeletesOnlyTheFile) {
    FileTree tree = {{"a/file", "x"}};
    EXPECT_FALSE(tree.RemoveFile("a"));
    EXPECT_FALSE(tree.RemoveFile("a/other"));
    EXPECT_TRUE(tree.RemoveFile("A\\FILE"));
    EXPECT_THAT(Paths(tree), ElementsAre("a"));
    EXPECT_FALSE(tree.RemoveFile("a/file"));
}

TEST(FileTree, Root_Find_ReturnsNull) {
    FileTree tree;
    tree.PutFolder("/");
    EXPECT_TRUE(tree.IsEmpty());
    EXPECT_EQ(tree.Find(""), nullptr);
}

}  // namespace

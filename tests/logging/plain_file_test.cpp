#include "logging/plain_file.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace {

BY_HANDLE_FILE_INFORMATION Facts(DWORD attributes, DWORD links) {
    BY_HANDLE_FILE_INFORMATION facts = {};
    facts.dwFileAttributes = attributes;
    facts.nNumberOfLinks = links;
    return facts;
}

TEST(PlainFile, FileUnderOneName_IsPlain) {
    for (const DWORD attributes : std::initializer_list<DWORD>{
             FILE_ATTRIBUTE_NORMAL, FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_COMPRESSED})
        EXPECT_TRUE(IsPlainFile(FILE_TYPE_DISK, Facts(attributes, 1))) << attributes;
}

TEST(PlainFile, FileWithASecondHardLink_IsRefused) {
    EXPECT_FALSE(IsPlainFile(FILE_TYPE_DISK, Facts(FILE_ATTRIBUTE_ARCHIVE, 2)));
}

TEST(PlainFile, ReparsePointFolderOrDevice_IsRefused) {
    for (const DWORD attribute : std::initializer_list<DWORD>{
             FILE_ATTRIBUTE_REPARSE_POINT, FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_DEVICE})
        EXPECT_FALSE(IsPlainFile(FILE_TYPE_DISK, Facts(FILE_ATTRIBUTE_ARCHIVE | attribute, 1))) << attribute;
}

TEST(PlainFile, PipeConsoleOrUnknown_IsRefused) {
    for (const DWORD type : std::initializer_list<DWORD>{FILE_TYPE_PIPE, FILE_TYPE_CHAR, FILE_TYPE_UNKNOWN})
        EXPECT_FALSE(IsPlainFile(type, Facts(FILE_ATTRIBUTE_NORMAL, 1))) << type;
}

TEST(FullPath, DriveAndFoldersOrShare_IsFull) {
    for (const WCHAR* const path :
         {TEXT("C:\\log.txt"), TEXT("z:\\a\\b"), TEXT("\\\\server\\share\\log.txt")})
        EXPECT_TRUE(IsFullPath(path));
}

TEST(FullPath, PathThatDependsOnTheCurrentFolderOrDrive_IsNotFull) {
    for (const WCHAR* const path :
         {TEXT(""), TEXT("C:"), TEXT("log.txt"), TEXT("..\\log.txt"), TEXT("\\log.txt"), TEXT("C:log.txt"),
          TEXT("1:\\log.txt"), TEXT("[:\\log.txt"), TEXT("{:\\log.txt")})
        EXPECT_FALSE(IsFullPath(path));
}

}  // namespace

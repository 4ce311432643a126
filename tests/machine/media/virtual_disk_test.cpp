// Virtual disks: each format that is opened, made by qemu-img, and what is refused.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "machine/facts/file_store.h"
#include "machine/facts/partition_table.h"
#include "tests/machine/media/image_fixture.h"

namespace machine {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Format {
    const char* name;     // of the test
    const char* file;     // of the disk
    const char* options;  // of qemu-img, to make it
    const char* asServer;
};

class VirtualDiskTest : public ImageTest {
  protected:
    std::string Path(const std::string& name) { return (Folder() / name).string(); }
    // The factory disk in that format.
    std::string Virtual(const Format& format) {
        const std::string raw = FactoryMbrImage("raw.img");
        OutputOf("qemu-img convert -f raw -O " + std::string(format.options) + " '" + raw + "' '" +
                 Path(format.file) + "'");
        return Path(format.file);
    }
    // A file of these bytes, as long as some sectors.
    std::string File(const std::string& name, std::string content) {
        content.resize(4096);
        std::ofstream(Path(name), std::ios::binary) << content;
        return Path(name);
    }
};

class EachFormat : public VirtualDiskTest, public testing::WithParamInterface<Format> {};

INSTANTIATE_TEST_SUITE_P(
    VirtualDisk, EachFormat,
    testing::Values(Format{"Qcow2", "disk.qcow2", "qcow2", "qcow2"},
                    Format{"Vhdx", "disk.vhdx", "vhdx", "vhdx"},
                    Format{"DynamicVhd", "disk.vhd", "vpc -o force_size=on", "vpc"},
                    Format{"FixedVhd", "disk.vhd", "vpc -o subformat=fixed,force_size=on", "raw"},
                    Format{"SparseVmdk", "disk.vmdk", "vmdk", "vmdk"},
                    Format{"FlatVmdk", "disk.vmdk", "vmdk -o subformat=monolithicFlat", "vmdk"},
                    Format{"SplitVmdk", "disk.vmdk", "vmdk -o subformat=twoGbMaxExtentSparse", "vmdk"},
                    Format{"Vdi", "disk.vdi", "vdi", "vdi"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_P(EachFormat, FactoryDisk_AttachAndChange_IsTheRawImage) {
    const std::string image = Virtual(GetParam());
    const std::string before = OutputOf("md5sum '" + Path("") + "'*");
    {
        const Disk raw = Attach(Path("raw.img"));
        const Disk disk = Attach(image);
        EXPECT_EQ(disk.size, raw.size);
        EXPECT_EQ(disk.signature, raw.signature);
        ASSERT_EQ(disk.partitions.size(), 4u);
        EXPECT_EQ(disk.partitions[1].volume->label.value, "Windows");
        EXPECT_EQ(disk.partitions[0].volume->store->Find("sources/Qelhdrcv.ini"), FileKind::File);
        EXPECT_THAT(disk.medium->Notes(), IsEmpty());
    }
    EXPECT_EQ(OutputOf("md5sum '" + Path("") + "'*"), before);

    for (const std::string& path : {image, Path("raw.img")}) {
        const Disk disk = Attach(path, ImageAccess::Write);
        ASSERT_EQ(disk.table->SetActive(disk.partitions[2].offset, true, OtherFlags::Clear), 0u);
        EXPECT_EQ(disk.medium->Commit(), "");
    }
    // As another program reads it.
    OutputOf("qemu-img convert -f " + std::string(GetParam().asServer) + " -O raw '" + image + "' '" +
             Path("back.img") + "' && truncate -s 300M '" + Path("back.img") + "'");
    EXPECT_TRUE(AreSame(Path("raw.img"), Path("back.img")));
    EXPECT_FALSE(std::filesystem::exists(image + ".kestova-journal"));
}

constexpr Format qcow2 = {"", "disk.qcow2", "qcow2", "qcow2"};

TEST_F(VirtualDiskTest, ServedDisk_AttachForWritingTwice_IsRefused) {
    const std::string image = Virtual(qcow2);
    const Disk writer = Attach(image, ImageAccess::Write);
    EXPECT_EQ(Complaint(image, ImageAccess::Write),
              image + ": in use: another program has opened it for writing");
}

TEST_F(VirtualDiskTest, ServedDisk_Destroy_ReturnsWhenTheServerHasLetTheFileGo) {
    const std::string image = Virtual(qcow2);
    { const Disk disk = Attach(image, ImageAccess::Write); }
    EXPECT_EQ(StatusOf("qemu-img check -q -f qcow2 '" + image + "'"), 0);
    EXPECT_EQ(Complaint(image, ImageAccess::Write), "");
}

// The server would open the other file with the rights of the user.
TEST_F(VirtualDiskTest, Qcow2WithABackingFile_Attach_IsRefused) {
    FactoryMbrImage("raw.img");
    const std::string image = Path("overlay.qcow2");
    OutputOf("cd '" + Path("") + "' && qemu-img create -q -f qcow2 -b raw.img -F raw overlay.qcow2");
    EXPECT_EQ(Complaint(image),
              image +
                  ": has only what differs from another image, its backing file; make it one file "
                  "with `qemu-img convert -O qcow2 FILE NEW.qcow2`");
}

TEST_F(VirtualDiskTest, Qcow2WithADataFile_Attach_IsRefused) {
    const std::string image = Path("outside.qcow2");
    OutputOf("qemu-img create -q -f qcow2 -o data_file='" + Path("data") + "' '" + image + "' 10M");
    EXPECT_THAT(Complaint(image), HasSubstr(": has its data in another file; make it one file with "));
}

TEST_F(VirtualDiskTest, VmdkOfOtherFiles_Attach_IsRefused) {
    const std::string start =
        "# Disk DescriptorFile\nversion=1\nCID=1\nparentCID=ffffffff\ncreateType=\"monolithicFlat\"\n";
    const std::string elsewhere = ": a VMDK with a part that is not a plain file beside it; ";
    OutputOf("truncate -s 1M '" + Path("plain") + "' && ln -s plain '" + Path("link") + "'");
    File("link\nmore", "the server would read the first line of this name");
    for (const std::string part :
         {"/etc/passwd", "../plain", "nbd:localhost", "link", "missing", "link\nmore"}) {
        const std::string image = File("other.vmdk", start + "RW 8 FLAT \"" + part + "\" 0\n");
        EXPECT_THAT(Complaint(image), HasSubstr(elsewhere)) << part;
    }
    // As the server reads it, too.
    EXPECT_THAT(Complaint(File("a.vmdk", start + "  RW\n8\tFLAT\n \"/etc/passwd\" 0\n")),
                HasSubstr(elsewhere));
    EXPECT_THAT(Complaint(File("b.vmdk", start + "RW 8 VMFSRDM \"plain\"\n")),
                HasSubstr("part of an unknown kind"));
    EXPECT_THAT(Complaint(File("c.vmdk", start + "parentFileNameHint=\"/etc/passwd\"\n")),
                HasSubstr(": has only what differs from another image, its parent; "));
}

TEST_F(VirtualDiskTest, VmdkOfOtherFilesInAPart_Attach_IsRefused) {
    OutputOf("qemu-img create -q -f vmdk '" + Path("base.vmdk") + "' 10M && cd '" + Path("") +
             "' && qemu-img create -q -f vmdk -b base.vmdk -F vmdk part.vmdk");
    EXPECT_THAT(Complaint(Path("part.vmdk")), HasSubstr("its parent"));
    for (const std::string kind : {"SPARSE", "VMFSSPARSE"}) {
        const std::string image =
            File("whole.vmdk", "# Disk DescriptorFile\nversion=1\nRW 20480 " + kind + " \"part.vmdk\"\n");
        EXPECT_THAT(Complaint(image), HasSubstr("its parent")) << kind;
    }
    // Where the server looks for the parent, although the header says that the description is elsewhere.
    PatchByte(Path("part.vmdk"), 28, 2);
    EXPECT_THAT(Complaint(Path("part.vmdk")), HasSubstr("its parent"));
}

TEST_F(VirtualDiskTest, DifferencingVhd_Attach_IsRefused) {
    const std::string image = Virtual({"", "disk.vhd", "vpc", "vpc"});
    PatchByte(image, 63, 4);
    EXPECT_EQ(Complaint(image),
              image + ": has only what differs from another image, its parent; merge them where it was made");
}

// A raw disk whose first bytes a virtual machine has written to mislead whoever looks at it.
TEST_F(VirtualDiskTest, RawDiskThatBeginsLikeAnotherFormat_Attach_IsARawDisk) {
    const std::string image = FactoryMbrImage();
    OutputOf("printf 'QFI\\373\\0\\0\\0\\003' | dd of='" + image + "' conv=notrunc status=none");
    EXPECT_EQ(Attach(image).size, 300 * MiB);
}

TEST_F(VirtualDiskTest, OtherKindsOfFiles_Attach_AreNamedWithTheWayToADisk) {
    const std::pair<std::string, std::string> kinds[] = {
        {std::string("MSWIM\0\0\0", 8),
         "a WIM archive of files, no disk image; `wimapply FILE FOLDER` takes them out"},
        {"\x1F\x8B\x08", "compressed with gzip; expand it with `gunzip --keep FILE`"},
        {std::string("\xFD"
                     "7zXZ\0",
                     6),
         "compressed with xz; expand it with `unxz --keep FILE`"},
        {"\x28\xB5\x2F\xFD", "compressed with zstd; expand it with `unzstd FILE`"},
        {"PK\x03\x04", "a zip archive, no disk image; expand it with `unzip FILE`"},
        {"7z\xBC\xAF\x27\x1C", "a 7z archive, no disk image; expand it with `7z x FILE`"},
        {"partclone-image",
         "a partclone image of one volume, no disk image; `partclone.restore -C -s FILE -O NEW` makes a raw one"},
    };
    for (const auto& [start, words] : kinds) {
        const std::string image = File("file", start);
        for (const ImageAccess access : {ImageAccess::Read, ImageAccess::Write})
            EXPECT_EQ(Complaint(image, access), image + ": " + words);
    }
}

TEST_F(VirtualDiskTest, DamagedQcow2_Attach_IsRefusedInTheWordsOfTheServer) {
    const std::string image =
        File("damaged.qcow2", std::string("QFI\xFB\0\0\0\3", 8) + std::string(4000, '\0'));
    EXPECT_THAT(Complaint(image), testing::StartsWith(image + ": Unsupported cluster size"));
}

// Two segments, made from the factory disk.
class EvidenceTest : public VirtualDiskTest {
  protected:
    EvidenceTest() {
        OutputOf("ewfacquire -u -q -c fast -S 1048576 -f encase6 -t '" + Path("disk") + "' '" +
                 FactoryMbrImage("raw.img") + "' 2>&1");
    }
    const std::string image = Path("disk.E01");
};

TEST_F(EvidenceTest, FactoryDisk_Attach_ShowsTheDiskOfTheRawImageAndWritesNothing) {
    const std::string before = OutputOf("md5sum '" + Path("") + "'*");
    const Disk raw = Attach(Path("raw.img"));
    for (const ImageAccess access : {ImageAccess::Read, ImageAccess::Overlay}) {
        const Disk disk = Attach(image, access);
        EXPECT_EQ(disk.size, raw.size);
        EXPECT_EQ(disk.signature, raw.signature);
        ASSERT_EQ(disk.partitions.size(), 4u);
        // In the last segment.
        EXPECT_EQ(disk.partitions[2].volume->label.value, "Data");
        EXPECT_EQ(disk.partitions[0].volume->store->Find("sources/Qelhdrcv.ini"), FileKind::File);
    }
    EXPECT_EQ(OutputOf("md5sum '" + Path("") + "'*"), before);
}

TEST_F(EvidenceTest, FactoryDisk_AttachForWriting_IsRefused) {
    EXPECT_EQ(Complaint(image, ImageAccess::Write),
              image + ": an E01 image of evidence, which is never changed; try --dry-run");
}

TEST_F(EvidenceTest, SegmentMissingOrCutOff_Attach_IsRefused) {
    const std::string message = image + ": an E01 image of which a segment is missing or damaged";
    OutputOf("mv '" + Path("disk.E02") + "' '" + Path("kept") + "'");
    EXPECT_EQ(Complaint(image), message);
    OutputOf("mv '" + Path("kept") + "' '" + Path("disk.E02") + "' && truncate -s 300000 '" + image + "'");
    EXPECT_EQ(Complaint(image), message);
}

TEST_F(EvidenceTest, AnotherName_Attach_IsRefusedWithTheNameItNeeds) {
    OutputOf("mv '" + image + "' '" + Path("disk.img") + "'");
    EXPECT_EQ(
        Complaint(Path("disk.img")),
        Path("disk.img") + ": an E01 image whose name does not end as that of a first segment does, in .E01");
}

}  // namespace
}  // namespace machine

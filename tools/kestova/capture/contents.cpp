#include "tools/kestova/capture/contents.h"

#include <algorithm>

#include "tools/kestova/common/text.h"

namespace {

class Contents {
  public:
    std::vector<std::string> Lines(const machine::Pc& pc);

  private:
    void Volume(const std::string& where, const machine::Volume& volume);
    void List(const std::string& words, const std::vector<std::string>& values);

    std::vector<std::string> lines_;
    std::vector<std::string> labels_;
    std::vector<std::string> files_;
};

void Contents::List(const std::string& words, const std::vector<std::string>& values) {
    if (!values.empty()) lines_.push_back(words + ": " + Joined(values, ", "));
}

void Contents::Volume(const std::string& where, const machine::Volume& volume) {
    if (volume.label.value && !volume.label.value->empty()) labels_.push_back(*volume.label.value);
    for (const machine::FileTree::Entry& entry : volume.files.Entries()) {
        if (!entry.content.empty())
            files_.push_back(entry.path + " of " + where + " (" + std::to_string(entry.content.size()) +
                             " bytes)");
    }
}

std::vector<std::string> Contents::Lines(const machine::Pc& pc) {
    std::vector<std::string> devices;
    std::vector<std::string> ids;
    for (const machine::Disk& disk : pc.disks) {
        const std::string number = "disk " + std::to_string(disk.number);
        if (disk.wmi && disk.wmi->pnpDeviceId) devices.push_back(*disk.wmi->pnpDeviceId);
        if (disk.style != machine::PartitionStyle::Unknown) ids.push_back(number);
        for (const machine::Partition& partition : disk.partitions) {
            if (partition.volume)
                Volume("partition " + std::to_string(partition.number) + " of " + number, *partition.volume);
        }
    }
    for (const machine::Volume& volume : pc.volumes)
        Volume("drive " + volume.letters + ":", volume);
    for (const machine::FileTree::Entry& entry : pc.host.files.Entries())
        files_.push_back(entry.path + " beside the program (" + std::to_string(entry.content.size()) +
                         " bytes)");
    lines_.push_back("the paths " + pc.host.path + " and " + pc.system.windowsDirectory);
    List("ids of devices, which can hold serial numbers", devices);
    List("signature or GUIDs of", ids);
    List("labels", labels_);
    List("contents of files", files_);
    for (const auto& [key, values] : pc.registry)
        lines_.push_back(std::to_string(values.size()) + " values of the registry key " + key);
    if (pc.encryptableVolumes)
        lines_.push_back("ids of " + std::to_string(pc.encryptableVolumes->size()) + " encryptable volumes");
    lines_.push_back("of other files only whether those exist that the library looks for");
    return lines_;
}

}  // namespace

std::vector<std::string> ContentsOf(const machine::Pc& pc) {
    return Contents().Lines(pc);
}

#include "machine/api/wmi/class.h"

#include <algorithm>

#include "base/text_case.h"
#include "machine/api/wmi/disks.h"
#include "machine/api/wmi/encryption.h"

namespace machine {

WmiValue TextOrAbsent(const std::optional<std::string>& text) {
    return text ? WmiValue(*text) : WmiValue();
}

const WmiValue* FindProperty(const WmiProperties& properties, std::string_view name) {
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [&](const auto& property) { return SameName(property.first, name); });
    return found != properties.end() ? &found->second : nullptr;
}

WmiRepository::WmiRepository() {
    for (WmiClass& definition : DiskClasses())
        Add(std::move(definition));
    Add(EncryptionClass());
}

bool WmiRepository::HasNamespace(const Pc& pc, std::string_view space) const {
    return std::any_of(classes_.begin(), classes_.end(), [&](const WmiClass& known) {
        return SameName(known.space, space) && (known.isOffered == nullptr || known.isOffered(pc));
    });
}

const WmiClass* WmiRepository::FindClass(const Pc& pc, std::string_view space, std::string_view name) const {
    const bool isAbsent = std::any_of(pc.absentWmiClasses.begin(), pc.absentWmiClasses.end(),
                                      [&](const std::string& absent) { return SameName(absent, name); });
    if (isAbsent) return nullptr;
    const auto found = std::find_if(classes_.begin(), classes_.end(), [&](const WmiClass& known) {
        return SameName(known.space, space) && SameName(known.name, name);
    });
    return found != classes_.end() ? &*found : nullptr;
}

std::vector<WmiProperties> InstancesOf(const Pc& pc, const WmiClass& definition) {
    std::vector<WmiProperties> instances;
    for (const std::vector<WmiValue>& row : definition.rows(pc)) {
        WmiProperties& instance = instances.emplace_back();
        for (size_t column = 0; column < definition.properties.size(); ++column)
            instance.emplace_back(definition.properties[column], row[column]);
    }
    return instances;
}

}  // namespace machine

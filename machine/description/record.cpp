#include "machine/description/record.h"

namespace machine::description {

void ExpectKeys(const std::vector<Key>& keys, bool onImage, const Node& node) {
    node.ExpectObject();
    std::vector<std::string> known;
    for (const Key& key : keys) {
        const bool supplied = onImage && key.suppliedByImage;
        if (!supplied) known.emplace_back(key.name);
        if (supplied && node.Has(key.name)) node.Key(key.name).Report("not beside an image, which tells it");
    }
    node.ExpectKeys(known);
    for (const Key& key : keys) {
        const bool supplied = onImage && key.suppliedByImage;
        if (key.presence == Presence::Required && !supplied && !node.Has(key.name))
            node.Report("the key \"" + std::string(key.name) + "\" is missing");
    }
}

}  // namespace machine::description

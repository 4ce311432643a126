#include "machine/media/table/region.h"

namespace machine {

bool IsWithin(const Region& inner, const Region& outer) {
    return inner.offset >= outer.offset && inner.offset - outer.offset <= outer.size &&
           inner.size <= outer.size - (inner.offset - outer.offset);
}

}  // namespace machine

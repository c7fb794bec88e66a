#include "platform/gpu/Resources.hpp"

#include "platform/gpu/Regions.hpp"

#include <utility>

namespace gpu {

void Resource::setLabel(std::string label) {
    _label = std::move(label);
    labelDidChange();
}

bool Texture::replaceRegion(const Region& region, std::span<const std::byte> bytes, std::size_t bytesPerRow) {
    const std::size_t rowBytes = region.size.width * bytesPerPixel(pixelFormat());
    if (storageMode() == StorageMode::Private || !isInside(region, size()) ||
        !holdsRows(bytes.size(), region.size.height, bytesPerRow, rowBytes)) {
        return false;
    }
    return writeRegion(region, bytes, bytesPerRow);
}

std::shared_ptr<Function> Library::newFunction(const std::string& name, FunctionType type) {
    return makeFunction(name, type);
}

}  // namespace gpu

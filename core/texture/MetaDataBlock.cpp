#include "MetaDataBlock.h"

#include <algorithm>

namespace {

/// A copy of the block's payload, or null if it has none.
unsigned char* copyPayload(const MetaDataBlock& block) {
    if (block.data == nullptr) return nullptr;
    unsigned char* copy = new unsigned char[block.dataSize];
    std::copy_n(block.data, block.dataSize, copy);
    return copy;
}

}  // namespace

MetaDataBlock::MetaDataBlock() : fourCC(0), key(0), dataSize(0), data(nullptr) {}

MetaDataBlock::MetaDataBlock(const MetaDataBlock& other)
    : fourCC(other.fourCC), key(other.key), dataSize(other.dataSize), data(copyPayload(other)) {}

MetaDataBlock::~MetaDataBlock() {
    delete[] data;
    data = nullptr;
}

MetaDataBlock& MetaDataBlock::operator=(const MetaDataBlock& other) {
    if (this == &other) return *this;
    unsigned char* copy = copyPayload(other);
    delete[] data;
    fourCC = other.fourCC;
    key = other.key;
    dataSize = other.dataSize;
    data = copy;
    return *this;
}

static_assert(sizeof(MetaDataBlock) == 24);

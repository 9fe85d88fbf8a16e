#pragma once

#include "moktex_export.h"

/// One piece of metadata: an owner's tag, a key of the owner's choice and a payload of bytes.
///
/// A block owns its payload. An object belongs to one thread at a time.
struct MOKTEX_API MetaDataBlock {
    /// The owner's tag, four characters with the first in the lowest byte.
    unsigned int fourCC;
    /// The owner's key.
    unsigned int key;
    /// Bytes of payload.
    unsigned int dataSize;
    /// `dataSize` bytes allocated with `new unsigned char[]`, or null. Freed by the destructor and by assignment.
    unsigned char* data;

    /// All zeros, without a payload.
    MetaDataBlock();
    /// A deep copy; a block without a payload stays without one. Raises `std::bad_alloc`.
    MetaDataBlock(const MetaDataBlock& other);
    ~MetaDataBlock();
    /// Replaces the payload by a deep copy of the other's. Raises `std::bad_alloc`, with this block unchanged.
    MetaDataBlock& operator=(const MetaDataBlock& other);
};

#pragma once

#include "moktex_export.h"

/// A metadata block: a FourCC that names its owner, a key that the owner chooses, and a payload of bytes, which the block owns.
///
/// An object belongs to one thread at a time.
struct MOKTEX_API MetaDataBlock {
    /// The owner's FourCC, with the first character in the lowest byte.
    unsigned int fourCC;
    /// The owner's key.
    unsigned int key;
    /// Bytes of payload.
    unsigned int dataSize;
    /// `dataSize` bytes allocated with `new unsigned char[]`, or null. The destructor and assignment free them.
    unsigned char* data;

    /// All zeros, without a payload.
    MetaDataBlock();
    /// A deep copy; the copy of a null payload is null. Raises `std::bad_alloc`.
    MetaDataBlock(const MetaDataBlock& other);
    ~MetaDataBlock();
    /// Replaces the payload by a deep copy of the other's. Raises `std::bad_alloc`, with this block unchanged.
    MetaDataBlock& operator=(const MetaDataBlock& other);
};

#pragma once

#include "EMOKTError.h"
#include "moktex_export.h"

// Exported here too: the instantiations declared below are as visible as their element types are at that point.
struct MOKTEX_API MetaDataBlock;
template <class K, class V>
class MOKTEX_API CMOKTMap;

/// Growable array of the exported interface.
///
/// All `capacity` elements are constructed at any time, so an element at or beyond `size` is a live object. The library exports
/// the instantiations for `unsigned int`, `MetaDataBlock` and `CMOKTMap<unsigned int, MetaDataBlock>`; there are no others.
///
/// Allocation raises `std::bad_alloc` and leaves the elements unchanged, except in Remove(); the capacity may have grown. An
/// object belongs to one thread at a time. References to elements are valid until the array grows, is assigned to or is
/// destroyed; Swap() transfers them.
template <class T>
class MOKTEX_API CMOKTArray {
public:
    /// An array of size 0 and capacity GetDefaultSize().
    CMOKTArray();
    /// A deep copy with the size and the capacity of `other`.
    CMOKTArray(const CMOKTArray& other);
    virtual ~CMOKTArray();
    /// Assigns a deep copy of `other`'s elements, its size and its capacity.
    CMOKTArray& operator=(const CMOKTArray& other);

    /// Removes the element at `index` and moves the later ones down.
    /// An index out of range drops the last element and succeeds. `std::bad_alloc` from the copy of an element leaves the size
    /// unchanged, with some of the later elements moved down.
    /// @return eMOKTFail if the array is empty.
    virtual EMOKTError Remove(unsigned int index);
    /// Removes the last element, whose storage keeps its value until it is overwritten.
    /// @return eMOKTFail if the array is empty.
    virtual EMOKTError RemoveLast();

    /// The element at `index`, which must be below GetCapacity(): there is no check.
    T& operator[](unsigned int index);
    const T& operator[](unsigned int index) const;

    /// Grows by one element, whose value is the one that its storage holds.
    /// @return the index of the new element.
    unsigned int Append();
    /// Grows by one element and assigns `value` to it. `value` may be an element of this array.
    /// @return the index of the new element.
    unsigned int Append(const T& value);

    /// Number of elements in use.
    unsigned int GetSize() const;
    /// Number of elements allocated.
    unsigned int GetCapacity() const;
    /// Capacity of a new array: 16.
    static unsigned int GetDefaultSize();
    /// Reserves at least `newCapacity` elements; growth at least doubles the capacity. The size does not change.
    EMOKTError SetCapacity(unsigned int newCapacity);

    /// Exchanges the contents with `other`; never fails.
    void Swap(CMOKTArray& other) noexcept;

private:
    unsigned int size;
    unsigned int capacity;
    T* data;
};

extern template class CMOKTArray<unsigned int>;
extern template class CMOKTArray<MetaDataBlock>;
extern template class CMOKTArray<CMOKTMap<unsigned int, MetaDataBlock>>;

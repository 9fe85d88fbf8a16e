#pragma once

#include <type_traits>

#include "CMOKTArray.h"

/// Insertion-ordered map of the exported interface: two parallel arrays and a count, searched in order.
///
/// The library exports the instantiations `CMOKTMap<unsigned int, MetaDataBlock>` (by key) and
/// `CMOKTMap<unsigned int, CMOKTMap<unsigned int, MetaDataBlock>>` (by FourCC); there are no others.
///
/// Allocation raises `std::bad_alloc` and leaves the entries unchanged. An object belongs to one thread at a time.
template <class K, class V>
class MOKTEX_API CMOKTMap {
public:
    CMOKTMap();
    /// A deep copy.
    CMOKTMap(const CMOKTMap& other);
    ~CMOKTMap();
    CMOKTMap& operator=(const CMOKTMap& other);

    /// The value of `key`; a key that is not found is appended to the arrays with a default value.
    /// After Remove() or Clear() the arrays are longer than the map: a new key is then appended after the stale entries and is
    /// found again only while its index is below GetSize(). The reference is valid until the next key is inserted or removed, and
    /// until the map is assigned to or destroyed.
    V& operator[](K key);

    /// The map's own count, which may be smaller than that of its arrays.
    unsigned int GetSize() const;
    /// Index of the first entry equal to `key`, or GetSize() if there is none.
    unsigned int GetIndexOf(K key) const;
    /// The value at `index`, which must be below GetSize(): there is no check. The map owns it; the address is valid as long as a
    /// reference from operator[].
    const V* GetDataAtIndex(unsigned int index) const;

    /// Whether GetIndexOf() finds `key`.
    bool Exists(K key) const requires(!std::is_same_v<V, CMOKTMap<K, MetaDataBlock>>);
    /// Lowers the count by one and overwrites the entry of `key` with the one *before* the old last one: Remove(A) of [A, B, C]
    /// leaves [B, B]; only the last entry is removed alone. An absent key lowers the count as well.
    /// @return eMOKTFail, with nothing changed, if the *value* of `key` equals GetSize() or the map is empty.
    EMOKTError Remove(K key) requires(!std::is_same_v<V, CMOKTMap<K, MetaDataBlock>>);
    /// Sets the count to 0; the arrays keep their entries.
    void Clear();

    /// Exchanges the contents with `other`; never fails.
    void Swap(CMOKTMap& other) noexcept;

private:
    CMOKTArray<K> keys;
    CMOKTArray<V> values;
    unsigned int size;
};

extern template class CMOKTMap<unsigned int, MetaDataBlock>;
extern template class CMOKTMap<unsigned int, CMOKTMap<unsigned int, MetaDataBlock>>;

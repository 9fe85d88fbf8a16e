#include "CMOKTArray.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "CMOKTMap.h"
#include "MetaDataBlock.h"

namespace {

constexpr unsigned int defaultCapacity = 16;

/// Allocates `capacity` constructed elements and copies the first `count` from `source`.
template <class T>
std::unique_ptr<T[]> makeElements(unsigned int capacity, const T* source, unsigned int count) {
    std::unique_ptr<T[]> store(new T[capacity]());
    std::copy_n(source, count, store.get());
    return store;
}

}  // namespace

template <class T>
CMOKTArray<T>::CMOKTArray() : size(0), capacity(defaultCapacity), data(new T[defaultCapacity]()) {}

template <class T>
CMOKTArray<T>::CMOKTArray(const CMOKTArray& other)
    : size(other.size), capacity(other.capacity), data(makeElements(other.capacity, other.data, other.size).release()) {}

template <class T>
CMOKTArray<T>::~CMOKTArray() {
    delete[] data;
}

template <class T>
CMOKTArray<T>& CMOKTArray<T>::operator=(const CMOKTArray& other) {
    if (this != &other) {
        CMOKTArray copy(other);
        Swap(copy);
    }
    return *this;
}

template <class T>
EMOKTError CMOKTArray<T>::Remove(unsigned int index) {
    if (size == 0) return eMOKTFail;
    if (index == size - 1) return RemoveLast();
    // Kept (array-remove-out-of-range): an index out of range drops the last element and succeeds; hosts that remove the index
    // that a failed search returned rely on the success.
    for (unsigned int i = index; i < size - 1; ++i)
        data[i] = data[i + 1];
    --size;
    return eMOKTSuccess;
}

template <class T>
EMOKTError CMOKTArray<T>::RemoveLast() {
    if (size == 0) return eMOKTFail;
    --size;
    return eMOKTSuccess;
}

template <class T>
T& CMOKTArray<T>::operator[](unsigned int index) {
    return data[index];
}

template <class T>
const T& CMOKTArray<T>::operator[](unsigned int index) const {
    return data[index];
}

template <class T>
unsigned int CMOKTArray<T>::Append() {
    SetCapacity(size + 1);
    return size++;
}

template <class T>
unsigned int CMOKTArray<T>::Append(const T& value) {
    if (size == capacity) {
        const T copy(value);  // growth frees the elements, one of which `value` may be
        SetCapacity(size + 1);
        data[size] = copy;
    } else {
        data[size] = value;
    }
    return size++;
}

template <class T>
unsigned int CMOKTArray<T>::GetSize() const {
    return size;
}

template <class T>
unsigned int CMOKTArray<T>::GetCapacity() const {
    return capacity;
}

template <class T>
unsigned int CMOKTArray<T>::GetDefaultSize() {
    return defaultCapacity;
}

template <class T>
EMOKTError CMOKTArray<T>::SetCapacity(unsigned int newCapacity) {
    if (newCapacity <= capacity) return eMOKTSuccess;
    const unsigned int grown = std::max(newCapacity, capacity * 2);
    T* store = makeElements(grown, data, size).release();
    delete[] data;
    data = store;
    capacity = grown;
    return eMOKTSuccess;
}

template <class T>
void CMOKTArray<T>::Swap(CMOKTArray& other) noexcept {
    std::swap(size, other.size);
    std::swap(capacity, other.capacity);
    std::swap(data, other.data);
}

template class CMOKTArray<unsigned int>;
template class CMOKTArray<MetaDataBlock>;
template class CMOKTArray<CMOKTMap<unsigned int, MetaDataBlock>>;

static_assert(sizeof(CMOKTArray<unsigned int>) == 24);

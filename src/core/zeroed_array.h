#pragma once
// An array the size of a whole image (a mark per byte, a bit per byte), all
// zero at first, that costs only the pages written: the system hands out
// untouched pages already cleared, so a map of 16 MiB that a walk marks here
// and there is neither cleared first nor faulted in whole.
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace quillon {

namespace detail {
struct ZeroedMemory {
    void* data = nullptr;
    bool mapped = false;  // else from calloc
};
[[nodiscard]] ZeroedMemory AllocateZeroed(std::size_t bytes);  // throws std::bad_alloc
void FreeZeroed(ZeroedMemory memory, std::size_t bytes);
}  // namespace detail

template <class T>
class ZeroedArray {
    static_assert(std::is_trivial_v<T>, "all-zero bytes must be a value of T");

public:
    explicit ZeroedArray(std::size_t size) : size_(size), memory_(detail::AllocateZeroed(size * sizeof(T))) {}
    ~ZeroedArray() { detail::FreeZeroed(memory_, size_ * sizeof(T)); }
    ZeroedArray(const ZeroedArray&) = delete;
    ZeroedArray& operator=(const ZeroedArray&) = delete;

    [[nodiscard]] T& operator[](std::size_t at) { return data()[at]; }
    [[nodiscard]] const T& operator[](std::size_t at) const { return data()[at]; }
    [[nodiscard]] T* data() { return static_cast<T*>(memory_.data); }
    [[nodiscard]] const T* data() const { return static_cast<const T*>(memory_.data); }
    [[nodiscard]] std::size_t size() const { return size_; }

private:
    std::size_t size_;
    detail::ZeroedMemory memory_;
};

using ZeroedBytes = ZeroedArray<std::uint8_t>;

}  // namespace quillon

// ZeroedArray.h - an array of zeros that costs memory only where it is used, and never throws (internal).
#ifndef QEADRS_DIC_ZEROEDARRAY_H
#define QEADRS_DIC_ZEROEDARRAY_H

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <type_traits>

// For plain integers. calloc takes large arrays as fresh pages, which come to be when they are written.
template <typename T>
class CZeroedArray {
    static_assert(std::is_integral_v<T>);

  public:
    // Replaces the elements; without memory for them there are none. Returns whether there are nSize of them.
    bool Make(size_t nSize) {
        m_pFirst.reset(static_cast<T*>(std::calloc(nSize, sizeof(T))));
        m_nSize = m_pFirst == nullptr ? 0 : nSize;
        return m_nSize == nSize;
    }
    void Clear() {
        m_pFirst.reset();
        m_nSize = 0;
    }
    size_t Size() const { return m_nSize; }
    T const* Data() const { return m_pFirst.get(); }
    T& operator[](size_t n) { return m_pFirst.get()[n]; }
    T operator[](size_t n) const { return m_pFirst.get()[n]; }

  private:
    struct CFree {
        void operator()(T* p) const { std::free(p); }
    };
    std::unique_ptr<T, CFree> m_pFirst;
    size_t m_nSize = 0;
};

#endif

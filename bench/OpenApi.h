// OpenApi.h - the C interface while it is measured: its dictionary open, its blocks readable.
#ifndef QEADRS_BENCH_OPENAPI_H
#define QEADRS_BENCH_OPENAPI_H

#include "api/Pstexec.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>

// The process-wide dictionary of the C interface, open as long as the object lives.
class COpenApi {
  public:
    COpenApi() {
        if (PstAdrOpen() != 0) throw std::runtime_error("PstAdrOpen failed");
    }
    ~COpenApi() { PstAdrClose(); }
    COpenApi(COpenApi const&) = delete;
    COpenApi& operator=(COpenApi const&) = delete;
};

// A locked block.
class CView {
  public:
    explicit CView(HGLOBAL hMem) : m_hMem(hMem), m_p(static_cast<char const*>(GlobalLock(hMem))) {}
    ~CView() {
        GlobalUnlock(m_hMem);
        GlobalFree(m_hMem);
    }
    CView(CView const&) = delete;
    CView& operator=(CView const&) = delete;

    size_t Size() const { return GlobalSize(m_hMem); }
    size_t Count() const { return ReadInteger<uint16_t>(0); }
    char const* Pool() const { return m_p + ReadInteger<uint32_t>(8); }
    size_t PoolSize() const { return Size() - ReadInteger<uint32_t>(8); }

  private:
    template <typename T>
    T ReadInteger(size_t nOffset) const {
        T n;
        std::memcpy(&n, m_p + nOffset, sizeof n);
        return n;
    }

    HGLOBAL m_hMem;
    char const* m_p;
};

#endif

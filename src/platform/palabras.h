#pragma once
// Eight bytes at a time: the tests the text routines make on a 64-bit word of bytes, for runs of
// plain ASCII (almost all of a contacts file) that need no byte-by-byte work. Private to the
// libraries (not installed).
#include <cstdint>
#include <cstring>

namespace kvr::palabras {

constexpr std::uint64_t Unos = 0x0101010101010101ULL;   // 0x01 in every byte
constexpr std::uint64_t Altos = 0x8080808080808080ULL;  // the high bit of every byte

// The eight bytes at `p`, in memory order, whatever their alignment.
inline std::uint64_t Palabra(const void *p)
{
    std::uint64_t w;
    std::memcpy(&w, p, sizeof w);
    return w;
}

// Whether a byte of `w` is below `n` (1 to 0x80): b - n borrows, and leaves its high bit set
// where b itself has none, only for such a byte (the first one; bytes above it may follow).
constexpr bool HayMenorQue(std::uint64_t w, unsigned n)
{
    return ((w - n * Unos) & ~w & Altos) != 0;
}

// Whether a byte of `w` is not plain ASCII or is NUL.
constexpr bool HayAltoOCero(std::uint64_t w)
{
    return (w & Altos) != 0 || HayMenorQue(w, 1);
}

static_assert(HayMenorQue(0x2020202020201F20ULL, 0x20) && !HayMenorQue(0x7F7F202020202020ULL, 0x20));
static_assert(HayAltoOCero(0x4141414141004141ULL) && HayAltoOCero(0x41414141C3414141ULL)
              && !HayAltoOCero(0x7A7A414120217E01ULL));

} // namespace kvr::palabras

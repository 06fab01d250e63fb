// SPDX-License-Identifier: AGPL-3.0-or-later
#pragma once

#include <bit>
#include <cstdint>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// Four 32-bit or two 64-bit values side by side, on the compiler's own vector types (GCC 12, Clang 14 or later, on
// any machine): + - * / & | ^ and comparisons work lane by lane and round as they do on single values. Node 1 of a
// pair has the first lane, node 2 the second. Comparisons give masks: all bits set where they hold.

// The sample loop is compiled for AVX2 as well, and the loader takes what the processor has: the same operations on the
// same four lanes, so the same bits, in a fifth fewer instructions. That is GCC's way on glibc (clang's calls the two
// forms by names that other files don't know); everything else, sanitizers' builds among it, has the plain form alone.
#if defined(__x86_64__) && defined(__GLIBC__) && ! defined(__clang__) &&                           \
    ! defined(__SANITIZE_ADDRESS__) && ! defined(__SANITIZE_THREAD__)
#define VELKOR_SAMPLE_LOOP __attribute__ ((flatten, target_clones ("avx2", "default")))
#else
#define VELKOR_SAMPLE_LOOP
#endif

using Floats = float __attribute__ ((vector_size (16)));
using Ints = std::int32_t __attribute__ ((vector_size (16)));
using Doubles = double __attribute__ ((vector_size (16)));

inline Floats splat (float x) noexcept
{
    return Floats { x, x, x, x };
}

inline Ints splat (std::int32_t x) noexcept
{
    return Ints { x, x, x, x };
}

/** Four values from memory, at any address. */
inline Floats load (const float* from) noexcept
{
    Floats x;
    __builtin_memcpy (&x, from, sizeof x);
    return x;
}

/** Two values from memory into the first two lanes; zeros in the others. */
inline Floats loadPair (const float* from) noexcept
{
    double both;
    __builtin_memcpy (&both, from, sizeof both);
    return std::bit_cast<Floats> (Doubles { both, 0.0 });
}

inline void store (float* to, Floats x) noexcept
{
    __builtin_memcpy (to, &x, sizeof x);
}

/** Stores the first two lanes. */
inline void storePair (float* to, Floats x) noexcept
{
    const double both = std::bit_cast<Doubles> (x)[0];
    __builtin_memcpy (to, &both, sizeof both);
}

/** Stores the last two lanes. */
inline void storeUpperPair (float* to, Floats x) noexcept
{
    const double both = std::bit_cast<Doubles> (x)[1];
    __builtin_memcpy (to, &both, sizeof both);
}

/** The last two lanes in both halves. */
inline Floats upperPair (Floats x) noexcept
{
    return __builtin_shufflevector (x, x, 2, 3, 2, 3);
}

inline Ints upperPair (Ints x) noexcept
{
    return __builtin_shufflevector (x, x, 2, 3, 2, 3);
}

/** The first two lanes of a, then those of b. */
inline Floats pairs (Floats a, Floats b) noexcept
{
    return __builtin_shufflevector (a, b, 0, 1, 4, 5);
}

/** a0 b0 a1 b1. */
inline Floats interleaveLow (Floats a, Floats b) noexcept
{
    return __builtin_shufflevector (a, b, 0, 4, 1, 5);
}

/** a2 b2 a3 b3. */
inline Floats interleaveHigh (Floats a, Floats b) noexcept
{
    return __builtin_shufflevector (a, b, 2, 6, 3, 7);
}

/** a0 a2 b0 b2: the first values of the pairs in a and b. */
inline Floats firstOfPairs (Floats a, Floats b) noexcept
{
    return __builtin_shufflevector (a, b, 0, 2, 4, 6);
}

/** a1 a3 b1 b3: the second values of the pairs in a and b. */
inline Floats secondOfPairs (Floats a, Floats b) noexcept
{
    return __builtin_shufflevector (a, b, 1, 3, 5, 7);
}

inline Ints bitsOf (Floats x) noexcept
{
    return std::bit_cast<Ints> (x);
}

/** x where the mask is set, 0 elsewhere. */
inline Floats where (Ints mask, Floats x) noexcept
{
    return std::bit_cast<Floats> (mask & bitsOf (x));
}

/** x where the mask is set, y elsewhere. */
inline Floats select (Ints mask, Floats x, Floats y) noexcept
{
    return std::bit_cast<Floats> ((mask & bitsOf (x)) | (~mask & bitsOf (y)));
}

inline Ints select (Ints mask, Ints x, Ints y) noexcept
{
    return (mask & x) | (~mask & y);
}

/** x with its sign flipped where the mask has its top bit. */
inline Floats flipSign (Floats x, Ints signs) noexcept
{
    return std::bit_cast<Floats> (bitsOf (x) ^ signs);
}

inline Floats absolute (Floats x) noexcept
{
    return std::bit_cast<Floats> (bitsOf (x) & splat (std::int32_t { 0x7fffffff }));
}

/** Lane by lane a > b ? a : b, so b where either is no number. */
inline Floats larger (Floats a, Floats b) noexcept
{
#if defined(__SSE2__)
    return _mm_max_ps (a, b);
#else
    return select (a > b, a, b);
#endif
}

/** Lane by lane a < b ? a : b, so b where either is no number. */
inline Floats smaller (Floats a, Floats b) noexcept
{
#if defined(__SSE2__)
    return _mm_min_ps (a, b);
#else
    return select (a < b, a, b);
#endif
}

/** Toward zero; what is no number or too far out gives an unspecified one. */
inline Ints truncated (Floats x) noexcept
{
#if defined(__SSE2__)
    return std::bit_cast<Ints> (_mm_cvttps_epi32 (x));
#else
    return __builtin_convertvector(x, Ints);
#endif
}

inline Floats toFloats (Ints x) noexcept
{
    return __builtin_convertvector(x, Floats);
}

/** The first two lanes, exactly. */
inline Doubles toDoubles (Floats x) noexcept
{
#if defined(__SSE2__)
    return _mm_cvtps_pd (x);
#else
    return Doubles { static_cast<double> (x[0]), static_cast<double> (x[1]) };
#endif
}

/** Rounded, in the first two lanes; zeros in the others. */
inline Floats toFloats (Doubles x) noexcept
{
#if defined(__SSE2__)
    return _mm_cvtpd_ps (x);
#else
    return Floats { static_cast<float> (x[0]), static_cast<float> (x[1]), 0.0f, 0.0f };
#endif
}

/** The top bit of each lane, lane 0 lowest. */
inline int topBits (Ints x) noexcept
{
#if defined(__SSE2__)
    return _mm_movemask_ps (std::bit_cast<Floats> (x));
#else
    return (x[0] < 0) | (x[1] < 0) << 1 | (x[2] < 0) << 2 | (x[3] < 0) << 3;
#endif
}

inline bool any (Ints mask) noexcept
{
    return topBits (mask) != 0;
}

inline bool all (Ints mask) noexcept
{
    return topBits (mask) == 15;
}

/** Mask of the lanes that hold neither an infinity nor a NaN. */
inline Ints isFinite (Floats x) noexcept
{
    const Ints exponent = splat (std::int32_t { 0x7f800000 });
    return (bitsOf (x) & exponent) != exponent;
}

/** x, and 0 for what is not finite. */
inline Floats finiteOrZero (Floats x) noexcept
{
    return where (isFinite (x), x);
}

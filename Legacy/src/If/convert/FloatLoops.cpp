#include "convert/FloatLoops.h"

#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__)
#define HAS_WIDE_FLOATS 1
#include <immintrin.h>
#endif

namespace Legacy::If::Detail {

namespace {

/// From the number `i` on, which is where a wide loop ended.
template<typename Number>
void CopyRest(unsigned char* to, unsigned char const* from, std::size_t count, std::size_t i) noexcept
{
    for (; i < count; ++i) {
        Number value;
        std::memcpy(&value, from + i * sizeof(value), sizeof(value));
        value = Swapped(value);
        std::memcpy(to + i * sizeof(value), &value, sizeof(value));
    }
}

bool CutRest(std::uint32_t* to, float const* from, std::size_t count, std::size_t i) noexcept
{
    std::uint32_t changed = 0;
    for (; i < count; ++i) {
        auto const value = ConvertTo<std::uint32_t>(from[i]);
        changed |= to[i] ^ value;
        to[i] = value;
    }
    return changed != 0;
}

template<typename Number>
void CopyPlain(unsigned char* to, unsigned char const* from, std::size_t count) noexcept
{
    CopyRest<Number>(to, from, count, 0);
}

bool CutPlain(std::uint32_t* to, float const* from, std::size_t count) noexcept { return CutRest(to, from, count, 0); }

#ifdef HAS_WIDE_FLOATS

/// What #LowBits says below, for the processors that have neither rounding nor a shuffle of bytes: a number below 2 to
/// the 23 rounds when that is added, the others are whole.
inline __m128i LowBits(__m128 value) noexcept
{
    __m128 const sign = _mm_set1_ps(-0.0F);
    __m128 const magic = _mm_set1_ps(0x1p23F);
    __m128 const scaled = _mm_mul_ps(value, _mm_set1_ps(0x1p-32F));
    __m128 const size = _mm_andnot_ps(sign, scaled);
    __m128 const rounds = _mm_cmplt_ps(size, magic);
    __m128 const rounded = _mm_or_ps(_mm_sub_ps(_mm_add_ps(size, magic), magic), _mm_and_ps(sign, scaled));
    __m128 const whole = _mm_or_ps(_mm_and_ps(rounds, rounded), _mm_andnot_ps(rounds, scaled));
    __m128 const rest = _mm_sub_ps(value, _mm_mul_ps(whole, _mm_set1_ps(0x1p32F)));
    return _mm_and_si128(_mm_cvttps_epi32(rest), _mm_castps_si128(_mm_cmpord_ps(rest, rest)));
}

bool CutSse(std::uint32_t* to, float const* from, std::size_t count) noexcept
{
    __m128i same = _mm_set1_epi32(-1);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        auto* const place = reinterpret_cast<__m128i*>(to + i);
        __m128i const value = LowBits(_mm_loadu_ps(from + i));
        same = _mm_and_si128(same, _mm_cmpeq_epi32(_mm_loadu_si128(place), value));
        _mm_storeu_si128(place, value);
    }
    bool const rest = CutRest(to, from, count, i);
    return rest || _mm_movemask_epi8(same) != 0xFFFF;
}

void CopyFloatsSse(unsigned char* to, unsigned char const* from, std::size_t count) noexcept
{
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        __m128i const bits = LowBits(_mm_loadu_ps(reinterpret_cast<float const*>(from) + i));
        // Of the swapped number: its higher half is the lower one with its two bytes exchanged, and the other way
        // round.
        __m128i const exchanged = _mm_or_si128(_mm_slli_epi16(bits, 8), _mm_srli_epi16(bits, 8));
        __m128 const high = _mm_cvtepi32_ps(_mm_and_si128(exchanged, _mm_set1_epi32(0xFFFF)));
        __m128 const low = _mm_cvtepi32_ps(_mm_srli_epi32(exchanged, 16));
        __m128 const value = _mm_add_ps(_mm_mul_ps(high, _mm_set1_ps(0x1p16F)), low);
        _mm_storeu_ps(reinterpret_cast<float*>(to) + i, value);
    }
    CopyRest<float>(to, from, count, i);
}

constexpr int k_toNearest = _MM_FROUND_TO_NEAREST_INT | _MM_FROUND_NO_EXC;
constexpr int k_toZero = _MM_FROUND_TO_ZERO | _MM_FROUND_NO_EXC;
constexpr int k_down = _MM_FROUND_TO_NEG_INF | _MM_FROUND_NO_EXC;

/// The lowest 32 bits of eight numbers cut to integers. Less the nearest multiple of 2 to the 32, which leaves those
/// bits alone, a number fits 32 bits, but for half of that, which the processor gives as the very same bits. All steps
/// are exact. What is out of the range of 64 bits is a multiple itself and gives 0; the rest that a NaN and an infinity
/// leave is no number, and is made 0.
[[gnu::target("avx2"), gnu::always_inline]] inline __m256i LowBits(__m256 value) noexcept
{
    __m256 const whole = _mm256_round_ps(_mm256_mul_ps(value, _mm256_set1_ps(0x1p-32F)), k_toNearest);
    __m256 const rest = _mm256_sub_ps(value, _mm256_mul_ps(whole, _mm256_set1_ps(0x1p32F)));
    __m256 const isNumber = _mm256_cmp_ps(rest, rest, _CMP_ORD_Q);
    return _mm256_and_si256(_mm256_cvttps_epi32(rest), _mm256_castps_si256(isNumber));
}

[[gnu::target("avx2")]] bool CutWide(std::uint32_t* to, float const* from, std::size_t count) noexcept
{
    __m256i changed = _mm256_setzero_si256();
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        auto* const place = reinterpret_cast<__m256i*>(to + i);
        __m256i const value = LowBits(_mm256_loadu_ps(from + i));
        changed = _mm256_or_si256(changed, _mm256_xor_si256(_mm256_loadu_si256(place), value));
        _mm256_storeu_si256(place, value);
    }
    bool const rest = CutRest(to, from, count, i);
    return rest || _mm256_testz_si256(changed, changed) == 0;
}

[[gnu::target("avx2")]] void CopyFloatsWide(unsigned char* to, unsigned char const* from, std::size_t count) noexcept
{
    __m256i const swap = _mm256_setr_epi8(3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12, 3, 2, 1, 0, 7, 6, 5, 4,
                                          11, 10, 9, 8, 15, 14, 13, 12);
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        __m256i const bits = LowBits(_mm256_loadu_ps(reinterpret_cast<float const*>(from) + i));
        __m256i const swapped = _mm256_shuffle_epi8(bits, swap);
        // By halves, since there is no conversion of unsigned ones; the sum alone is rounded.
        __m256 const high = _mm256_cvtepi32_ps(_mm256_srli_epi32(swapped, 16));
        __m256 const low = _mm256_cvtepi32_ps(_mm256_and_si256(swapped, _mm256_set1_epi32(0xFFFF)));
        __m256 const value = _mm256_add_ps(_mm256_mul_ps(high, _mm256_set1_ps(0x1p16F)), low);
        _mm256_storeu_ps(reinterpret_cast<float*>(to) + i, value);
    }
    CopyRest<float>(to, from, count, i);
}

[[gnu::target("avx2")]] void CopyDoublesWide(unsigned char* to, unsigned char const* from, std::size_t count) noexcept
{
    // Out of the lower four bytes of each number, swapped.
    __m256i const swap = _mm256_setr_epi8(3, 2, 1, 0, -1, -1, -1, -1, 11, 10, 9, 8, -1, -1, -1, -1, 3, 2, 1, 0, -1, -1,
                                          -1, -1, 11, 10, 9, 8, -1, -1, -1, -1);
    // Numbers of which the lower 32 bits are those of an integer, once it is added, or put there.
    __m256d const signedBase = _mm256_set1_pd(0x1.8p52);
    __m256d const lowBase = _mm256_set1_pd(0x1p52);
    __m256d const highBase = _mm256_set1_pd(0x1p84);
    std::size_t i = 0;
    for (; i + 4 <= count; i += 4) {
        __m256d const value = _mm256_loadu_pd(reinterpret_cast<double const*>(from) + i);
        __m256d const fits = _mm256_and_pd(_mm256_cmp_pd(value, _mm256_set1_pd(-0x1p63), _CMP_GE_OQ),
                                           _mm256_cmp_pd(value, _mm256_set1_pd(0x1p64), _CMP_LT_OQ));
        // The integer's halves, the higher one with the sign.
        __m256d const whole = _mm256_round_pd(value, k_toZero);
        __m256d const high = _mm256_round_pd(_mm256_mul_pd(whole, _mm256_set1_pd(0x1p-32)), k_down);
        __m256d const low = _mm256_sub_pd(whole, _mm256_mul_pd(high, _mm256_set1_pd(0x1p32)));
        // Swapped, each is in the other's place; the sum of both alone is rounded.
        __m256i const newHigh = _mm256_shuffle_epi8(_mm256_castpd_si256(_mm256_add_pd(low, lowBase)), swap);
        __m256i const newLow = _mm256_shuffle_epi8(_mm256_castpd_si256(_mm256_add_pd(high, signedBase)), swap);
        __m256d const highPart =
            _mm256_sub_pd(_mm256_or_pd(_mm256_castsi256_pd(newHigh), highBase), _mm256_set1_pd(0x1p84 + 0x1p52));
        __m256d const result = _mm256_add_pd(highPart, _mm256_or_pd(_mm256_castsi256_pd(newLow), lowBase));
        // All others are 0x8000000000000000, whose swapped bytes are 128.
        _mm256_storeu_pd(reinterpret_cast<double*>(to) + i, _mm256_blendv_pd(_mm256_set1_pd(128), result, fits));
    }
    CopyRest<double>(to, from, count, i);
}

/// There is an instruction for each step.
[[gnu::target("avx512f,avx512bw,avx512dq")]] void CopyDoublesWidest(unsigned char* to, unsigned char const* from,
                                                                    std::size_t count) noexcept
{
    __m512i const swap = _mm512_set4_epi32(0x08090A0B, 0x0C0D0E0F, 0x00010203, 0x04050607);
    std::size_t i = 0;
    for (; i + 8 <= count; i += 8) {
        __m512d const value = _mm512_loadu_pd(from + i * sizeof(double));
        __mmask8 const isHigh = _mm512_cmp_pd_mask(value, _mm512_set1_pd(0x1p63), _CMP_GE_OQ) &
                                _mm512_cmp_pd_mask(value, _mm512_set1_pd(0x1p64), _CMP_LT_OQ);
        __m512i const whole = _mm512_mask_cvttpd_epu64(_mm512_cvttpd_epi64(value), isHigh, value);
        _mm512_storeu_pd(to + i * sizeof(double), _mm512_cvtepu64_pd(_mm512_shuffle_epi8(whole, swap)));
    }
    CopyRest<double>(to, from, count, i);
}

#endif

constexpr FloatLoops k_loops[] = {
    {&CopyPlain<float>, &CopyPlain<double>, &CutPlain},
#ifdef HAS_WIDE_FLOATS
    {&CopyFloatsSse, &CopyPlain<double>, &CutSse}, // which every such processor has
    {&CopyFloatsWide, &CopyDoublesWide, &CutWide},
    {&CopyFloatsWide, &CopyDoublesWidest, &CutWide},
#endif
};

} // namespace

std::span<FloatLoops const> AllFloatLoops() noexcept
{
    std::size_t count = 1;
#ifdef HAS_WIDE_FLOATS
    count = 2;
    if (__builtin_cpu_supports("avx2"))
        count = __builtin_cpu_supports("avx512bw") && __builtin_cpu_supports("avx512dq") ? 4 : 3;
#endif
    return std::span(k_loops).first(count);
}

FloatLoops const& WidestFloatLoops() noexcept
{
    static FloatLoops const& widest = AllFloatLoops().back();
    return widest;
}

} // namespace Legacy::If::Detail

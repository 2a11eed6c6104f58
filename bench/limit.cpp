/// \file
/// What memory allows: loops that do next to nothing, in several forms, of which the table takes the best.
#include "frames.h"

#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace bench {

#if defined(__x86_64__)

namespace {

/// How a loop stores, and whether it asks for lines ahead.
enum class Form { Ordinary, Ahead, Streaming, StreamingAhead };

constexpr bool IsAhead(Form form)
{
    return form == Form::Ahead || form == Form::StreamingAhead;
}

constexpr bool IsStreaming(Form form)
{
    return form == Form::Streaming || form == Form::StreamingAhead;
}

constexpr std::size_t kAheadBytes = 1024;

/// Asks for the lines of both inputs that come later.
inline void LookAhead(const std::uint8_t* a, const std::uint8_t* b)
{
    _mm_prefetch(reinterpret_cast<const char*>(a) + kAheadBytes, _MM_HINT_T0);
    if (a != b) _mm_prefetch(reinterpret_cast<const char*>(b) + kAheadBytes, _MM_HINT_T0);
}

/// Whom a loop reads and where it writes.
enum class Rows { Two, One, InTurn, InPlace };

using Row = void (*)(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t bytes);

template <Form form, bool two>
void Row128(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; i += 16) {
        if (IsAhead(form) && i % 64 == 0) LookAhead(a + i, b + i);
        __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i));
        if (two) v = _mm_adds_epu8(v, _mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i)));
        if (IsStreaming(form))
            _mm_stream_si128(reinterpret_cast<__m128i*>(out + i), v);
        else
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), v);
    }
}

template <Form form, bool two>
__attribute__((target("avx2"))) void Row256(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out,
                                            std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; i += 32) {
        if (IsAhead(form) && i % 64 == 0) LookAhead(a + i, b + i);
        __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(a + i));
        if (two) v = _mm256_adds_epu8(v, _mm256_loadu_si256(reinterpret_cast<const __m256i*>(b + i)));
        if (IsStreaming(form))
            _mm256_stream_si256(reinterpret_cast<__m256i*>(out + i), v);
        else
            _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), v);
    }
}

template <Form form, bool two>
__attribute__((target("avx512f,avx512bw"))) void Row512(const std::uint8_t* a, const std::uint8_t* b,
                                                        std::uint8_t* out, std::size_t bytes)
{
    for (std::size_t i = 0; i < bytes; i += 64) {
        if (IsAhead(form)) LookAhead(a + i, b + i);
        __m512i v = _mm512_loadu_si512(a + i);
        if (two) v = _mm512_adds_epu8(v, _mm512_loadu_si512(b + i));
        if (IsStreaming(form))
            _mm512_stream_si512(reinterpret_cast<__m512i*>(out + i), v);
        else
            _mm512_storeu_si512(out + i, v);
    }
}

template <Rows rows>
void AddLoop(const char* operation, const std::string& who, Row row, std::size_t rowBytes)
{
    Add(operation, who, [row, rowBytes](const Frame& frame) {
        const bool wide = rowBytes > kWidth * 4;
        const std::uint8_t* back = (wide ? frame.back16 : frame.back)->Pixels();
        const std::uint8_t* front = (wide ? frame.front16 : frame.front)->Pixels();
        std::uint8_t* out =
            rows == Rows::InPlace ? frame.back->Pixels() : (wide ? frame.out16 : frame.out)->Pixels();
        for (std::size_t y = 0; y < kHeight; ++y) {
            const std::size_t at = y * rowBytes;
            const std::uint8_t* const a = rows == Rows::InTurn && y % 2 != 0 ? front : back;
            row(a + at, rows == Rows::One || rows == Rows::InTurn ? a + at : front + at, out + at, rowBytes);
        }
        _mm_sfence();
    });
}

template <Form form, Rows rows>
void AddForm(const char* operation, const std::string& name, std::size_t rowBytes)
{
    constexpr bool two = rows == Rows::Two || rows == Rows::InPlace;
    AddLoop<rows>(operation, "128 bits" + name, Row128<form, two>, rowBytes);
    if (__builtin_cpu_supports("avx2"))
        AddLoop<rows>(operation, "256 bits" + name, Row256<form, two>, rowBytes);
    if (__builtin_cpu_supports("avx512bw"))
        AddLoop<rows>(operation, "512 bits" + name, Row512<form, two>, rowBytes);
}

template <Rows rows>
void AddForms(const char* operation, std::size_t rowBytes)
{
    AddForm<Form::Ordinary, rows>(operation, "", rowBytes);
    AddForm<Form::Ahead, rows>(operation, ", ahead", rowBytes);
    AddForm<Form::Streaming, rows>(operation, ", streaming", rowBytes);
    AddForm<Form::StreamingAhead, rows>(operation, ", streaming ahead", rowBytes);
}

void AddLimits()
{
    AddForms<Rows::Two>(kLimitTwo, kWidth * 4);
    AddForms<Rows::InPlace>(kLimitInPlace, kWidth * 4);
    AddForms<Rows::One>(kLimitOne, kWidth * 4);
    AddForms<Rows::One>(kLimitOneVideo, kWidth * 2);
    AddForms<Rows::One>(kLimitOne16, kWidth * 8);
    AddForms<Rows::InTurn>(kLimitInTurnVideo, kWidth * 2);
    AddForms<Rows::InTurn>(kLimitInTurn, kWidth * 4);
    AddForms<Rows::InTurn>(kLimitInTurn16, kWidth * 8);
    AddForms<Rows::Two>(kLimitTwo16, kWidth * 8);
    Add("copy", "memcpy",
        [](const Frame& frame) { std::memcpy(frame.out->Pixels(), frame.back->Pixels(), kPixels * 4); });
}

#else

void AddLimits()
{
    Add("copy", "memcpy",
        [](const Frame& frame) { std::memcpy(frame.out->Pixels(), frame.back->Pixels(), kPixels * 4); });
}

#endif

const Source s_source(AddLimits);

} // namespace
} // namespace bench

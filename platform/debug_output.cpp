// Debug text, on its way to a sink that the host may replace.

#include <atomic>
#include <cstddef>
#include <cstdio>

#include "velquad/platform.h"

namespace {

constexpr char32_t kReplacement = 0xFFFD;

constinit std::atomic<DebugOutputSink> replacedSink = nullptr;

bool isUnicodeCharacter(char32_t character) {
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character <= 0x10FFFF && !isSurrogate;
}

// Appends the UTF-8 form (RFC 3629) of a character. Returns the end.
char* appendUtf8(char* end, char32_t character) {
    const auto append = [&end](char32_t bits) {
        *end++ = static_cast<char>(static_cast<unsigned char>(bits));
    };
    if (character < 0x80) {
        append(character);
        return end;
    }
    if (character < 0x800) {
        append(0xC0 | (character >> 6));
    } else {
        if (character < 0x10000) {
            append(0xE0 | (character >> 12));
        } else {
            append(0xF0 | (character >> 18));
            append(0x80 | ((character >> 12) & 0x3F));
        }
        append(0x80 | ((character >> 6) & 0x3F));
    }
    append(0x80 | (character & 0x3F));
    return end;
}

// One text comes out in one piece, whatever other threads write. No memory is allocated.
void writeToStandardError(const wchar_t* text) {
    constexpr std::size_t kLongestCharacter = 4;
    char buffer[512];
    char* end = buffer;
    flockfile(stderr);
    for (; *text != L'\0'; ++text) {
        const auto character = static_cast<char32_t>(*text);
        end = appendUtf8(end, isUnicodeCharacter(character) ? character : kReplacement);
        if (static_cast<std::size_t>(end - buffer) > sizeof(buffer) - kLongestCharacter) {
            std::fwrite(buffer, 1, static_cast<std::size_t>(end - buffer), stderr);
            end = buffer;
        }
    }
    std::fwrite(buffer, 1, static_cast<std::size_t>(end - buffer), stderr);
    funlockfile(stderr);
}

}  // namespace

extern "C" void OutputDebugStringW(const wchar_t* text) {
    if (text == nullptr) return;
    const DebugOutputSink sink = replacedSink.load(std::memory_order_acquire);
    (sink != nullptr ? sink : writeToStandardError)(text);
}

extern "C" DebugOutputSink SetDebugOutputSink(DebugOutputSink sink) {
    return replacedSink.exchange(sink, std::memory_order_acq_rel);
}

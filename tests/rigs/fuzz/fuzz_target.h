#pragma once

#include <QByteArray>
#include <QString>

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>

namespace netvane::fuzz {

/// Tries one input; each target defines it.
void tryInput(FuzzedDataProvider& input);

/// A property that holds for every input. libFuzzer keeps the input that breaks it.
inline void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", what);
        std::abort();
    }
}

/// Up to `most` bytes of the input.
inline QByteArray takeBytes(FuzzedDataProvider& input, size_t most)
{
    return QByteArray::fromStdString(input.ConsumeRandomLengthString(most));
}

inline QByteArray takeRest(FuzzedDataProvider& input)
{
    return QByteArray::fromStdString(input.ConsumeRemainingBytesAsString());
}

inline std::span<const std::byte> asBytes(const QByteArray& bytes)
{
    return std::as_bytes(std::span(bytes.constData(), size_t(bytes.size())));
}

/// Text that can be drawn in one line: no control and no half of a pair.
inline void requireLine(const QString& text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        require(text[i].category() != QChar::Other_Control, "no control character is drawn");
        if (text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate())
            ++i;
        else
            require(!text[i].isSurrogate(), "the text is whole");
    }
}

} // namespace netvane::fuzz

/// libFuzzer's entry. This header is included once in each target.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzedDataProvider input(data, size);
    netvane::fuzz::tryInput(input);
    return 0;
}

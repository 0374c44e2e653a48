// Deflating and inflating, by zlib.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/zlib_stream.h>

#include <hearth/runtime/checked.h>
#include <hearth/runtime/text_format.h>

#include <algorithm>
#include <array>
#include <limits>

#include <zlib.h>

namespace ht {

namespace {

constexpr std::size_t kBufferSize = 64 * 1024;
constexpr int kMaxWindowBits = 15;
constexpr int kMemoryLevel = 8;

int WindowBits(TZFormat format)
{
    switch (format) {
    case zfGzip:
        return kMaxWindowBits + 16;
    case zfRaw:
        return -kMaxWindowBits;
    default:
        return kMaxWindowBits;
    }
}

int LevelOf(TZCompressionLevel level)
{
    constexpr int kLevels[] = {Z_NO_COMPRESSION, Z_BEST_SPEED, Z_DEFAULT_COMPRESSION, Z_BEST_COMPRESSION};
    return kLevels[level];
}

void* Allocate(void*, uInt count, uInt size)
{
    try {
        return memory::Allocate(std::size_t{count} * size);
    } catch (const EOutOfMemory&) {
        return Z_NULL;
    }
}

void Free(void*, void* block)
{
    memory::Free(block);
}

void RequireReady(int result)
{
    if (result == Z_MEM_ERROR)
        throw EOutOfMemory();
    if (result != Z_OK)
        throw EStreamError(Concat({u"zlib: ", String::FromUtf8(zError(result))}));
}

/// zlib takes what it reads as not constant and only reads it.
Bytef* InputOf(const void* bytes)
{
    return static_cast<Bytef*>(const_cast<void*>(bytes));
}

}

// --- deflating

struct TZCompressionStream::TState {
    explicit TState(TZCompressionLevel level, TZFormat format)
    {
        Z.zalloc = Allocate;
        Z.zfree = Free;
        Z.next_out = Buffer.data();
        Z.avail_out = kBufferSize;
        RequireReady(deflateInit2(
            &Z, LevelOf(level), Z_DEFLATED, WindowBits(format), kMemoryLevel, Z_DEFAULT_STRATEGY));
    }
    TState(const TState&) = delete;
    TState& operator=(const TState&) = delete;
    ~TState() { deflateEnd(&Z); }

    z_stream Z{};
    std::array<std::uint8_t, kBufferSize> Buffer;
};

TZCompressionStream::TZCompressionStream(TStream& target, TZCompressionLevel level, TZFormat format)
    : FState(std::make_unique<TState>(level, format))
    , FTarget(target)
{
}

TZCompressionStream::~TZCompressionStream()
{
    if (FIsBroken)
        return;
    try {
        Finish();
    } catch (...) {
        // Who wants to know has called Finish.
    }
}

std::int32_t TZCompressionStream::Write(const void* buffer, std::int32_t count)
{
    if (count < 0)
        throw ERangeError();
    if (FIsFinished)
        throw EStreamError(u"The compressed data are finished"_s);
    Run(buffer, count, Z_NO_FLUSH);
    FPosition += count;
    return count;
}

std::int64_t TZCompressionStream::Seek(std::int64_t offset, TSeekOrigin origin)
{
    if (SeekTarget(offset, origin, FPosition, FPosition) != FPosition)
        throw EStreamError(u"A stream that compresses cannot move"_s);
    return FPosition;
}

void TZCompressionStream::Finish()
{
    if (FIsFinished)
        return;
    Run(nullptr, 0, Z_FINISH);
    FIsFinished = true;
}

/// Output gathers until the buffer is full, or until all of it is wanted.
void TZCompressionStream::Run(const void* bytes, std::int32_t count, int flush)
{
    if (FIsBroken)
        throw EStreamError(u"The compressed data are damaged"_s);
    z_stream& z = FState->Z;
    z.next_in = InputOf(bytes);
    z.avail_in = static_cast<uInt>(count);
    int result = Z_OK;
    while (z.avail_in > 0 || (flush == Z_FINISH && result != Z_STREAM_END)) {
        result = deflate(&z, flush);
        if (z.avail_out == 0 || result == Z_STREAM_END)
            FlushBuffer();
    }
}

void TZCompressionStream::FlushBuffer()
{
    z_stream& z = FState->Z;
    const auto count = static_cast<std::int64_t>(kBufferSize - z.avail_out);
    z.next_out = FState->Buffer.data();
    z.avail_out = kBufferSize;
    FIsBroken = true; // unless the target takes all
    FTarget.WriteBuffer(FState->Buffer.data(), count);
    FIsBroken = false;
}

// --- inflating

struct TZDecompressionStream::TState {
    explicit TState(TZFormat format)
    {
        Z.zalloc = Allocate;
        Z.zfree = Free;
        RequireReady(inflateInit2(&Z, WindowBits(format)));
    }
    TState(const TState&) = delete;
    TState& operator=(const TState&) = delete;
    ~TState() { inflateEnd(&Z); }

    z_stream Z{};
    std::array<std::uint8_t, kBufferSize> Buffer;
};

TZDecompressionStream::TZDecompressionStream(TStream& source, TZFormat format, std::int32_t maxRatio)
    : FState(std::make_unique<TState>(format))
    , FSource(source)
    , FFormat(format)
    , FMaxRatio(maxRatio)
    , FStart(source.Position())
{
}

TZDecompressionStream::~TZDecompressionStream() = default;

/// Reads more behind what is waiting; false at the end of the source.
bool TZDecompressionStream::TakeMore()
{
    z_stream& z = FState->Z;
    std::uint8_t* const buffer = FState->Buffer.data();
    std::copy_n(z.next_in, z.avail_in, buffer);
    z.next_in = buffer;
    const std::int32_t count =
        FSource.Read(buffer + z.avail_in, static_cast<std::int32_t>(kBufferSize - z.avail_in));
    if (count <= 0)
        return false;
    FTaken += count;
    z.avail_in += static_cast<uInt>(count);
    return true;
}

/// What is no member is the business of whoever wrote it there.
bool TZDecompressionStream::HasNextMember()
{
    const z_stream& z = FState->Z;
    while (FFormat == zfGzip && z.avail_in < 2) {
        if (!TakeMore())
            return false;
    }
    return FFormat == zfGzip && z.next_in[0] == 0x1F && z.next_in[1] == 0x8B;
}

/// What was taken counts, and not what is still waiting in the buffer.
void TZDecompressionStream::CheckRatio() const
{
    const std::int64_t used = FTaken - FState->Z.avail_in;
    if (FMaxRatio > 0 && FPosition - kFreeBytes > used * FMaxRatio)
        throw EStreamError(Format(u"The compressed data grow more than the limit of %d times", {FMaxRatio}));
}

std::int32_t TZDecompressionStream::Read(void* buffer, std::int32_t count)
{
    if (count < 0)
        throw ERangeError();
    z_stream& z = FState->Z;
    z.next_out = static_cast<Bytef*>(buffer);
    z.avail_out = static_cast<uInt>(count);
    while (z.avail_out > 0 && !FIsAtEnd)
        InflateSome();
    return count - static_cast<std::int32_t>(z.avail_out);
}

void TZDecompressionStream::InflateSome()
{
    z_stream& z = FState->Z;
    if (z.avail_in == 0 && !TakeMore())
        throw EStreamError(u"The compressed data end too early"_s);
    const uInt room = z.avail_out;
    const int result = inflate(&z, Z_NO_FLUSH);
    FPosition += room - z.avail_out;
    CheckRatio();
    if (result == Z_STREAM_END) {
        FIsAtEnd = !HasNextMember();
        if (!FIsAtEnd)
            RequireReady(inflateReset(&z));
    } else if (result != Z_OK && result != Z_BUF_ERROR) {
        throw EStreamError(
            Concat({u"The compressed data are damaged: ", String::FromUtf8(z.msg ? z.msg : zError(result))}));
    }
}

std::int64_t TZDecompressionStream::Seek(std::int64_t offset, TSeekOrigin origin)
{
    if (origin == soEnd)
        throw EStreamError(u"The size of compressed data is not known"_s);
    const std::int64_t target = SeekTarget(offset, origin, FPosition, 0);
    if (target < FPosition)
        Start();
    std::array<std::uint8_t, 4096> skipped;
    while (FPosition < target && !FIsAtEnd) {
        const std::int64_t rest = std::min<std::int64_t>(target - FPosition, skipped.size());
        Read(skipped.data(), static_cast<std::int32_t>(rest));
    }
    return FPosition;
}

void TZDecompressionStream::Start()
{
    FSource.SetPosition(FStart);
    FState->Z.avail_in = 0;
    RequireReady(inflateReset(&FState->Z));
    FTaken = 0;
    FPosition = 0;
    FIsAtEnd = false;
}

}

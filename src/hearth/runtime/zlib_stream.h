// Streams that deflate what is written to them, and inflate what is read from them.
// SPDX-License-Identifier: MIT
#pragma once

#include <hearth/runtime/streams.h>

#include <memory>

namespace ht {

/// What stands around deflated data: two bytes and an Adler-32, a gzip header and a CRC-32, or nothing.
enum TZFormat : std::uint8_t { zfZlib, zfGzip, zfRaw };

enum TZCompressionLevel : std::uint8_t { zcNone, zcFastest, zcDefault, zcMax };

/// Deflates what is written and writes it to another stream, which must outlive it and is not owned. Call
/// Finish behind the last write: the destructor does so too, but has to swallow errors.
class HT_API TZCompressionStream : public TStream {
public:
    static constexpr TClassInfo kClassInfo{u"TZCompressionStream", &TStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    explicit TZCompressionStream(
        TStream& target, TZCompressionLevel level = zcDefault, TZFormat format = zfZlib);
    TZCompressionStream(const TZCompressionStream&) = delete;
    TZCompressionStream& operator=(const TZCompressionStream&) = delete;
    ~TZCompressionStream() override;

    /// Throws EStreamError behind Finish, EWriteError when the target takes less than all. What the target
    /// has lost cannot be made good: every later call throws EStreamError.
    std::int32_t Write(const void* buffer, std::int32_t count) override;
    /// Tells the position, which is the number of bytes written; throws EStreamError for any other move.
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;
    /// Writes what is left and the end mark. Calling it again does nothing. Throws as Write does.
    void Finish();

private:
    struct TState;

    void Run(const void* bytes, std::int32_t count, int flush);
    void FlushBuffer();

    std::unique_ptr<TState> FState;
    TStream& FTarget;
    std::int64_t FPosition = 0;
    bool FIsFinished = false;
    bool FIsBroken = false;
};

/// Inflates what it reads from another stream, from that one's position on; the other stream must outlive it
/// and is not owned. Reading may take more from it than the deflated data have. Several gzip members, one
/// behind the other, are read as one.
class HT_API TZDecompressionStream : public TStream {
public:
    static constexpr TClassInfo kClassInfo{u"TZDecompressionStream", &TStream::kClassInfo};
    const TClassInfo& ClassInfo() const override { return kClassInfo; }

    /// So many bytes come out whatever the ratio is.
    static constexpr std::int64_t kFreeBytes = 1 << 20;

    /// ORDER InflateRatio of THtLimits.
    static constexpr std::int32_t kDefaultMaxRatio = 200;

    /// `maxRatio` bounds how many bytes come out for one that goes in; 0 is no bound.
    explicit TZDecompressionStream(
        TStream& source, TZFormat format = zfZlib, std::int32_t maxRatio = kDefaultMaxRatio);
    TZDecompressionStream(const TZDecompressionStream&) = delete;
    TZDecompressionStream& operator=(const TZDecompressionStream&) = delete;
    ~TZDecompressionStream() override;

    /// Less than asked for at the end alone. Throws EStreamError for data that are no deflated data, that end
    /// too early, or that pass the ratio.
    std::int32_t Read(void* buffer, std::int32_t count) override;
    /// Moves forward by reading, and to any place in front by starting over, which moves the source back.
    /// Throws EStreamError for a move that counts from the end, which is not known.
    std::int64_t Seek(std::int64_t offset, TSeekOrigin origin) override;

private:
    struct TState;

    void Start();
    bool TakeMore();
    void InflateSome();
    bool HasNextMember();
    void CheckRatio() const;

    std::unique_ptr<TState> FState;
    TStream& FSource;
    TZFormat FFormat;
    std::int32_t FMaxRatio;
    std::int64_t FStart; // of the deflated data in the source
    std::int64_t FTaken = 0; // bytes taken from the source
    std::int64_t FPosition = 0;
    bool FIsAtEnd = false;
};

}

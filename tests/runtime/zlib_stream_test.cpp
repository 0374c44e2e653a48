// Deflating and inflating streams: what goes in comes out, and damaged data end in an error.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/zlib_stream.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>

namespace ht {

namespace {

std::string Deflated(std::string_view text, TZFormat format = zfZlib, TZCompressionLevel level = zcDefault)
{
    TBytesStream target;
    TZCompressionStream stream(target, level, format);
    stream.WriteBuffer(text.substr(0, text.size() / 3));
    stream.WriteBuffer(text.substr(text.size() / 3));
    EXPECT_EQ(stream.Position(), static_cast<std::int64_t>(text.size()));
    stream.Finish();
    stream.Finish();
    return {reinterpret_cast<const char*>(target.Memory()), static_cast<std::size_t>(target.Size())};
}

TBytesStream StreamOf(std::string_view bytes)
{
    TBytesStream stream;
    stream.WriteBuffer(bytes);
    stream.SetPosition(0);
    return stream;
}

std::string Inflated(std::string_view bytes, TZFormat format = zfZlib,
    std::int32_t maxRatio = TZDecompressionStream::kDefaultMaxRatio)
{
    TBytesStream source = StreamOf(bytes);
    return TZDecompressionStream(source, format, maxRatio).ReadRest();
}

std::string Text(std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i)
        text += std::to_string(i * i);
    return text.substr(0, size);
}

TEST(zlib_stream, gives_back_what_went_in)
{
    for (const TZFormat format : {zfZlib, zfGzip, zfRaw}) {
        for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{300'000}}) {
            const std::string text = Text(size);
            EXPECT_EQ(Inflated(Deflated(text, format), format), text) << size;
        }
    }
    const std::string text = Text(100'000);
    EXPECT_GT(Deflated(text, zfZlib, zcNone).size(), text.size());
    EXPECT_LT(Deflated(text, zfZlib, zcMax).size(), text.size() / 2);
}

TEST(zlib_stream, gzip_members_follow_one_another)
{
    const std::string one = Text(300'000);
    const std::string both = Deflated(one, zfGzip) + Deflated({}, zfGzip) + Deflated("two", zfGzip);
    EXPECT_EQ(Inflated(both, zfGzip), one + "two");
    EXPECT_EQ(Inflated(both + std::string(512, '\0'), zfGzip), one + "two"); // as on tapes
    EXPECT_THROW(Inflated(both.substr(0, both.size() - 1), zfGzip), EStreamError);
    EXPECT_EQ(Inflated(Deflated("one") + Deflated("two")), "one");
    // A member that begins with the last byte of what is read at once.
    class TDrip : public TBytesStream {
    public:
        std::int32_t Read(void* buffer, std::int32_t count) override
        {
            return TBytesStream::Read(buffer, std::min(count, 1));
        }
    } drip;
    drip.WriteBuffer(Deflated("a", zfGzip) + Deflated("b", zfGzip));
    drip.SetPosition(0);
    TZDecompressionStream stream(drip, zfGzip);
    EXPECT_EQ(stream.ReadRest(), "ab");
    stream.SetPosition(1);
    EXPECT_EQ(stream.ReadRest(), "b");
}

TEST(zlib_stream, moves_by_reading)
{
    const std::string text = Text(200'000);
    TBytesStream source = StreamOf("head" + Deflated(text));
    source.SetPosition(4);
    TZDecompressionStream stream(source);
    char c = 0;
    for (const std::int64_t place : {150'000, 7, 199'999}) {
        EXPECT_EQ(stream.Seek(place, soBeginning), place);
        stream.ReadBuffer(&c, 1);
        EXPECT_EQ(c, text[static_cast<std::size_t>(place)]);
    }
    EXPECT_EQ(stream.Seek(300'000, soBeginning), 200'000);
    EXPECT_THROW(stream.Seek(0, soEnd), EStreamError);
    EXPECT_THROW(stream.Seek(-1, soBeginning), EStreamError);
}

TEST(zlib_stream, damaged_data_end_in_an_error)
{
    const std::string whole = Deflated(Text(5000));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_THROW(Inflated(whole.substr(0, size)), EStreamError) << size;
    std::string damaged = whole;
    damaged[whole.size() / 2] = static_cast<char>(damaged[whole.size() / 2] ^ 0x55);
    EXPECT_THROW(Inflated(damaged), EStreamError);
    EXPECT_THROW(Inflated("no data"), EStreamError);
    EXPECT_THROW(Inflated(whole, zfGzip), EStreamError);
}

TEST(zlib_stream, growth_is_bounded_unless_told)
{
    const std::string blanks(8U << 20U, ' ');
    const std::string small = Deflated(blanks);
    EXPECT_EQ(Inflated(small, zfZlib, 0).size(), blanks.size());
    EXPECT_THROW(Inflated(small), EStreamError);
    // Little data may grow as they like.
    EXPECT_EQ(Inflated(Deflated(blanks.substr(0, 500'000)), zfZlib, 2).size(), 500'000U);
}

TEST(zlib_stream, a_failing_target_is_told)
{
    class TFullOnce : public TStream {
    public:
        std::int32_t Write(const void*, std::int32_t count) override { return Calls++ == 0 ? 0 : count; }
        int Calls = 0;
    } target;
    {
        TZCompressionStream stream(target, zcNone);
        EXPECT_THROW(stream.WriteBuffer(Text(200'000)), EWriteError);
        EXPECT_THROW(stream.WriteBuffer("x"), EStreamError);
        EXPECT_THROW(stream.Finish(), EStreamError);
    }
    EXPECT_EQ(target.Calls, 1); // nothing goes behind what is lost
    class TThrowing : public TStream {
        std::int32_t Write(const void*, std::int32_t) override { throw std::bad_alloc(); }
    } throwing;
    TZCompressionStream(throwing).WriteBuffer("x"); // the destructor keeps it
}

}

}

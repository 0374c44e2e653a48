// Streams: ends, positions behind the end, sizes that lie, files that are not there.
// SPDX-License-Identifier: MIT
#include <hearth/runtime/streams.h>

#include "messages.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <unistd.h>

namespace ht {
namespace {

/// Says that it holds far more than it gives.
class LyingStream : public TMemoryStream {
public:
    std::int64_t Size() override { return std::int64_t{1} << 60; }
};

TEST(streams, positions_behind_the_end_read_nothing_and_write_after_zeros)
{
    TMemoryStream stream;
    stream.WriteBuffer("abc");
    char byte = 'x';
    EXPECT_EQ(stream.Seek(2, soEnd), 5);
    EXPECT_EQ(stream.Read(&byte, 1), 0);
    stream.WriteBuffer("d");
    EXPECT_EQ(stream.Size(), 6);
    stream.SetPosition(0);
    EXPECT_EQ(stream.ReadRest(), std::string("abc\0\0d", 6));
    EXPECT_THROW(stream.Seek(-7, soEnd), EStreamError);
    EXPECT_EQ(stream.Position(), 6);
    EXPECT_THROW(stream.Seek(INT64_MAX, soCurrent), EIntOverflow);
    stream.SetSize(2);
    EXPECT_EQ(stream.Position(), 2);
    EXPECT_THROW(stream.Read(&byte, -1), ERangeError);
    EXPECT_THROW(stream.SetSize(-1), ERangeError);
}

TEST(streams, writes_a_part_of_itself)
{
    TMemoryStream stream;
    stream.WriteBuffer(std::string(100, 'a') + "end");
    for (int i = 0; i < 8; ++i)
        stream.WriteBuffer(stream.Memory() + 100, 3);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(stream.Memory()) + 121, 6), "endend");
}

TEST(streams, what_no_memory_can_hold_is_refused)
{
    TMemoryStream stream;
    EXPECT_EQ(MessageOf<EStreamError>([&] { stream.SetSize(std::int64_t{1} << 40); }),
        u"Out of memory while expanding memory stream");
    stream.SetPosition(INT64_MAX - 2);
    EXPECT_THROW(stream.WriteBuffer("abc"), EIntOverflow);
    LyingStream lying;
    EXPECT_EQ(MessageOf<EReadError>([&] { stream.CopyFrom(lying, 0); }), u"Stream read error");
}

TEST(streams, holds_text_in_its_code_page)
{
    TStringStream stream(u"na\xEFve \x20AC", 1252);
    EXPECT_EQ(stream.Size(), 7);
    EXPECT_EQ(stream.ReadString(3), u"na\xEF");
    EXPECT_EQ(stream.ReadString(1000000000), u"ve \x20AC");
    stream.WriteString(u"\x416");
    EXPECT_EQ(stream.DataString(), u"na\xEFve \x20AC?");
}

TEST(streams, writes_reads_and_cuts)
{
    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("hearth_file_stream_" + std::to_string(::getpid()));
    const String name = String::FromUtf8(path.string());
    {
        TFileStream file(name, fmCreate);
        file.WriteBuffer("0123456789");
        file.SetSize(5);
        EXPECT_EQ(file.Position(), 5);
    }
    {
        TFileStream file(name, fmOpenReadWrite);
        EXPECT_EQ(file.Seek(-2, soEnd), 3);
        file.WriteBuffer("x");
        TMemoryStream copy;
        EXPECT_EQ(copy.CopyFrom(file, 0), 5);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(copy.Memory()), 5), "012x4");
        EXPECT_THROW(file.Seek(-1, soBeginning), EStreamError);
        EXPECT_THROW(file.SetSize(-1), ERangeError);
    }
    EXPECT_THROW(TFileStream(name, fmOpenWrite).ReadRest(), EReadError); // which is not the end of the file
    TFileStream readOnly(name, fmOpenRead);
    EXPECT_EQ(MessageOf<EWriteError>([&] { readOnly.WriteBuffer("x"); }), u"Stream write error");
    std::filesystem::remove(path);
    EXPECT_EQ(MessageOf<EFOpenError>([&] { TFileStream(name, fmOpenRead); }),
        Concat({u"Cannot open file \"", name, u"\". No such file or directory"}));
    EXPECT_EQ(MessageOf<EFCreateError>([&] { TFileStream(name + u"/x", fmCreate); }),
        Concat({u"Cannot create file \"", name, u"/x\". No such file or directory"}));
    EXPECT_THROW(TFileStream(u"."_s, fmOpenRead), EFOpenError);
    EXPECT_THROW(TFileStream(u"a\0b"_s, fmOpenRead), EFOpenError);
}

}
}

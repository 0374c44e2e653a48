// Files by their byte order marks, and bytes in all orders.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/bytes.h>
#include <hearth/foundation/files.h>
#include <hearth/runtime/streams.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>

namespace ht {
namespace {

/// The name of a file that is removed at the end of the scope.
class TemporaryFile {
public:
    TemporaryFile()
        : FName(String::FromUtf8(testing::TempDir() + "hearth-" + std::to_string(getpid()) + ".txt"))
    {
    }
    ~TemporaryFile() { std::remove(FName.ToUtf8().c_str()); }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const String& Name() const { return FName; }

private:
    String FName;
};

TEST(files, the_mark_tells_the_encoding)
{
    struct Row {
        std::string_view bytes;
        std::u16string_view text;
    };
    const Row rows[] = {{"\xEF\xBB\xBF\xC3\xA9", u"é"}, {{"\xFF\xFE\xE9\0", 4}, u"é"},
        {{"\xFE\xFF\0\xE9", 4}, u"é"}, {"\xE9\x80", u"é€"}, {"\xFF\xFE", u""}, {"\xEF\xBB", u"ï»"},
        {"", u""}};
    const TemporaryFile file;
    for (const Row& row : rows) {
        StrtoFileR(file.Name(), row.bytes);
        EXPECT_EQ(FileToStr(file.Name()), row.text);
        EXPECT_EQ(FileToStrA(file.Name()), row.bytes);
    }
}

TEST(files, text_comes_back)
{
    const TemporaryFile file;
    StrtoFileA(file.Name(), std::string(100'000, 'x'));
    for (const std::u16string_view text : {u"\u00efé\u4e00\r\n", u"", u"\ufeff"}) {
        StrtoFile(file.Name(), text);
        EXPECT_EQ(FileToStr(file.Name()), text);
    }
    EXPECT_EQ(FileToStrR(file.Name()), "\xEF\xBB\xBF\xEF\xBB\xBF");
    EXPECT_THROW(FileToStr(file.Name() + u".missing"), EFOpenError);
    EXPECT_THROW(StrtoFile(file.Name() + u"/x", u""), EFCreateError);
}

TEST(bytes, orders_and_fills)
{
    EXPECT_EQ(SwapWord(0x1234), 0x3412);
    EXPECT_EQ(SwapSmallInt(0x00FF), -256);
    EXPECT_EQ(SwapCardinal(0x12345678), 0x78563412U);
    EXPECT_EQ(CompCardinal(0, 0xFFFFFFFF), -1);
    EXPECT_EQ(CompCardinal(2, 1) + CompCardinal(1, 1), 1);
    TBytes bytes(10);
    HtFillLong(bytes.data() + 1, 2, 0x04030201);
    HtFillLong(bytes.data(), -1, 0x09090909);
    EXPECT_EQ(bytes, (TBytes{0, 1, 2, 3, 4, 1, 2, 3, 4, 0}));
    EXPECT_EQ(HtUTF8EncodetoBytes(u"é"), (TBytes{0xC3, 0xA9}));
    EXPECT_EQ(HtUTF8EncodePtr(u"abc", 2) + HtUTF8EncodePtr(nullptr, -1), "ab");
}

}
}

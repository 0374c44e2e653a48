// Files by their byte order marks.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/files.h>
#include <hearth/runtime/encoding.h>
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

TEST(files, without_a_mark_the_code_page_of_the_system_counts)
{
    const TemporaryFile file;
    StrtoFileR(file.Name(), "\xE9");
    const std::uint32_t before = SystemCodePage();
    SetSystemCodePage(1251);
    EXPECT_EQ(FileToStr(file.Name()), u"й");
    SetSystemCodePage(before);
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

}
}

// Archives: made, read, changed, and broken at every byte.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/cached_file_stream.h>
#include <hearth/foundation/files.h>
#include <hearth/foundation/zip_archive.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace ht {

namespace {

namespace fs = std::filesystem;

/// A folder that goes with the test.
class Folder {
public:
    Folder()
    {
        std::string name = (fs::temp_directory_path() / "zip_test_XXXXXX").string();
        FPath = mkdtemp(name.data());
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() { fs::remove_all(FPath); }
    std::string Of(const std::string& name) const { return (FPath / name).string(); }
    String NameOf(const std::string& name) const { return String::FromUtf8(Of(name)); }

private:
    fs::path FPath;
};

std::string Saved(THtZIP& archive)
{
    TBytesStream stream;
    archive.Save(stream);
    return {reinterpret_cast<const char*>(stream.Memory()), static_cast<std::size_t>(stream.Size())};
}

TBytesStream StreamOf(std::string_view bytes)
{
    TBytesStream stream;
    stream.WriteBuffer(bytes);
    return stream;
}

std::string Digits(std::size_t size)
{
    std::string text;
    for (std::size_t i = 0; text.size() < size; ++i)
        text += std::to_string(i * i);
    return text.substr(0, size);
}

std::string Sample()
{
    THtZIP archive;
    archive.Add(u"plain.txt"_s, "plain", zmStored, EncodeDate(2020, 2, 29) + EncodeTime(12, 30, 58, 0));
    archive.Add(u"folder/größe.txt"_s, Digits(5000));
    archive.AddFolder(u"empty"_s);
    archive.SetComment(u"a comment"_s);
    return Saved(archive);
}

int RunPython(const std::string& code, const std::string& argument)
{
    return std::system(("python3 -c '" + code + "' " + argument).c_str());
}

TEST(zip_archive, gives_back_what_was_added)
{
    TBytesStream stream = StreamOf(Sample());
    THtZIP archive;
    archive.Open(stream);
    ASSERT_EQ(archive.Count(), 3);
    EXPECT_EQ(archive.Comment(), u"a comment");
    EXPECT_EQ(archive.Read(0), "plain");
    EXPECT_EQ(FormatDateTime(u"yyyy-mm-dd hh:nn:ss", archive.Entry(0).Modified), u"2020-02-29 12:30:58");
    EXPECT_EQ(archive.IndexOf(u"folder/größe.txt"), 1);
    EXPECT_EQ(archive.Entry(1).Method, zmDeflated);
    EXPECT_LT(archive.Entry(1).CompressedSize, archive.Entry(1).Size);
    EXPECT_EQ(archive.Read(1), Digits(5000));
    EXPECT_TRUE(archive.Entry(2).IsFolder());
    EXPECT_EQ(archive.IndexOf(u"Plain.txt"), -1);
    EXPECT_THROW(archive.Read(3), ERangeError);
}

TEST(zip_archive, changes_and_a_prefix)
{
    TBytesStream stream = StreamOf("#!/bin/unpack\n" + Sample());
    THtZIP archive;
    archive.Open(stream);
    archive.Delete(0);
    archive.Add(u"new"_s, "");
    TBytesStream changed = StreamOf(Saved(archive));
    THtZIP again;
    again.Open(changed);
    ASSERT_EQ(again.Count(), 3);
    EXPECT_EQ(again.Read(0), Digits(5000));
    EXPECT_EQ(again.Read(2), "");
    EXPECT_EQ(archive.Read(2), ""); // also before it was saved
}

TEST(zip_archive, files_and_text)
{
    const Folder folder;
    StrtoFile(folder.NameOf("text"), u"grün"_s);
    THtZIP archive;
    archive.AddFile(folder.NameOf("text"));
    archive.AddFile(folder.NameOf("text"), u"a/b/text"_s);
    archive.SaveToFile(folder.NameOf("made.zip"));
    THtZIP read;
    read.Open(folder.NameOf("made.zip"));
    EXPECT_EQ(read.ReadText(0), u"grün");
    EXPECT_GT(read.Entry(0).Modified, EncodeDate(2020, 1, 1));
    read.Extract(1, folder.NameOf("out"));
    EXPECT_EQ(FileToStr(folder.NameOf("out/a/b/text")), u"grün");
    read.Delete(0);
    read.SaveToFile(folder.NameOf("made.zip")); // over itself
    THtZIP again;
    again.Open(folder.NameOf("made.zip"));
    EXPECT_EQ(again.Count(), 1);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Of("")), fs::directory_iterator()), 3);
    EXPECT_THROW(archive.AddFile(folder.NameOf("missing")), EFOpenError);
}

TEST(zip_archive, other_programs_read_and_write_the_same)
{
    const Folder folder;
    StrtoFileR(folder.NameOf("ours.zip"), Sample());
    const std::string check =
        "import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); "
        "assert z.testzip() is None; "
        "assert z.namelist() == [\"plain.txt\", \"folder/gr\\xf6\\xdfe.txt\", \"empty/\"]; "
        "assert z.read(\"plain.txt\") == b\"plain\"";
    EXPECT_EQ(RunPython(check, folder.Of("ours.zip")), 0);
    // Written to a pipe it has data descriptors, and no sizes in front of the data.
    const std::string make =
        "import sys, zipfile\nclass Pipe:\n    def __init__(self, f): self.f = f\n"
        "    def write(self, b): return self.f.write(b)\n    def flush(self): pass\n"
        "z = zipfile.ZipFile(Pipe(open(sys.argv[1], \"wb\")), \"w\", zipfile.ZIP_DEFLATED)\n"
        "z.writestr(\"gr\\xf6\\xdfe\", \"x\" * 5000)\n"
        "with z.open(\"large\", \"w\", force_zip64=True) as e: e.write(b\"y\" * 70000)\nz.close()";
    ASSERT_EQ(RunPython(make, folder.Of("theirs.zip")), 0);
    THtZIP archive;
    archive.Open(folder.NameOf("theirs.zip"));
    ASSERT_EQ(archive.Count(), 2);
    EXPECT_EQ(archive.Entry(0).Name, u"größe");
    EXPECT_EQ(archive.Read(0), std::string(5000, 'x'));
    EXPECT_EQ(archive.Read(1), std::string(70000, 'y'));
}

TEST(zip_archive, more_entries_than_the_short_record_counts)
{
    constexpr std::int32_t kCount = 70'000;
    THtZIP archive;
    for (std::int32_t i = 0; i < kCount; ++i)
        archive.Add(u"x"_s, {});
    TBytesStream stream = StreamOf(Saved(archive));
    THtZIP read;
    read.Open(stream);
    EXPECT_EQ(read.Count(), kCount);
}

TEST(zip_archive, unsafe_names_are_told)
{
    for (const String& name : {u"../x"_s, u"a/../../x"_s, u"/x"_s, u"c:x"_s, u"a\\x"_s, u".."_s, u""_s}) {
        THtZIPEntry entry;
        entry.Name = name;
        EXPECT_TRUE(entry.IsUnsafe()) << name;
    }
    for (const String& name : {u"x"_s, u"a/b"_s, u"..x/y.."_s, u"a/"_s, u"."_s}) {
        THtZIPEntry entry;
        entry.Name = name;
        EXPECT_FALSE(entry.IsUnsafe()) << name;
    }
    const Folder folder;
    THtZIP archive;
    archive.Add(u"../escaped"_s, "x");
    EXPECT_THROW(archive.Extract(0, folder.NameOf("out")), EHtZIP);
    EXPECT_FALSE(fs::exists(folder.Of("escaped")));
}

/// Opens and reads everything; false where the archive is refused.
bool IsReadable(std::string_view bytes)
{
    TBytesStream stream = StreamOf(bytes);
    THtZIP archive;
    try {
        archive.Open(stream);
        for (std::int32_t i = 0; i < archive.Count(); ++i)
            archive.Read(i);
        return true;
    } catch (const Exception&) {
        return false;
    }
}

TEST(zip_archive, broken_files_are_refused)
{
    const std::string whole = Sample();
    ASSERT_TRUE(IsReadable(whole));
    const std::size_t comment = std::string_view("a comment").size();
    for (std::size_t size = 0; size + comment < whole.size(); ++size)
        EXPECT_FALSE(IsReadable(whole.substr(0, size))) << size;
    // Whatever a byte becomes, reading ends.
    for (std::size_t i = 0; i < whole.size(); ++i) {
        for (const int change : {0x01, 0x80, 0xFF}) {
            std::string broken = whole;
            broken[i] = static_cast<char>(broken[i] ^ change);
            IsReadable(broken);
        }
    }
}

std::string Replaced(std::string bytes, std::string_view old, std::string_view with, bool inLast)
{
    const std::size_t at = inLast ? bytes.rfind(old) : bytes.find(old);
    return bytes.replace(at, old.size(), with);
}

TEST(zip_archive, each_fault_has_its_words)
{
    THtZIP archive;
    archive.Add(u"name"_s, "contents", zmStored);
    const std::string whole = Saved(archive);
    const auto messageOf = [](std::string_view bytes) {
        TBytesStream stream = StreamOf(bytes);
        THtZIP read;
        try {
            read.Open(stream);
            read.Read(0);
        } catch (const EHtZIP& error) {
            return error.Message;
        }
        return String();
    };
    EXPECT_EQ(messageOf("no archive"), u"The file is no ZIP archive");
    EXPECT_EQ(
        messageOf(Replaced(whole, "contents", "Contents", false)), u"Entry \"name\" has a wrong checksum");
    EXPECT_EQ(messageOf(Replaced(whole, "PK\1\2", "PK\1\3", true)), u"The archive is damaged");
    std::string method = whole;
    method[method.rfind("PK\1\2") + 10] = 12;
    EXPECT_EQ(messageOf(method), u"Entry \"name\" is compressed by an unknown method");
    std::string encrypted = whole;
    encrypted[encrypted.rfind("PK\1\2") + 8] = 1;
    EXPECT_EQ(messageOf(encrypted), u"Entry \"name\" is encrypted");
}

TEST(zip_archive, entries_do_not_share_their_bytes)
{
    THtZIP archive;
    archive.Add(u"a"_s, Digits(100));
    archive.Add(u"b"_s, Digits(100));
    std::string whole = Saved(archive);
    const std::size_t second = whole.rfind("PK\1\2");
    whole.replace(second + 42, 4, std::string(4, '\0')); // both begin at 0
    EXPECT_FALSE(IsReadable(whole));
}

TEST(zip_archive, data_that_grow_too_much_are_refused)
{
    THtZIP archive;
    archive.Add(u"blanks"_s, std::string(8U << 20U, ' '));
    TBytesStream stream = StreamOf(Saved(archive));
    THtZIP read;
    read.Open(stream);
    EXPECT_THROW(read.Read(0), EHtZIP);
    read.Limits.InflateRatio = 0;
    EXPECT_EQ(read.Read(0).size(), 8U << 20U);
}

TEST(cached_file_stream, reads_a_file_in_place)
{
    const Folder folder;
    StrtoFileR(folder.NameOf("file"), "0123456789");
    StrtoFileR(folder.NameOf("empty"), "");
    THtCachedFileStream stream(folder.NameOf("file"));
    EXPECT_EQ(stream.Size(), 10);
    EXPECT_EQ(stream.Bytes(), "0123456789");
    stream.SetPosition(7);
    EXPECT_EQ(stream.ReadRest(), "789");
    EXPECT_THROW(stream.WriteBuffer("x"), EStreamError);
    EXPECT_THROW(stream.SetSize(1), EStreamError);
    EXPECT_EQ(THtCachedFileStream(folder.NameOf("empty")).Bytes(), "");
    EXPECT_THROW(THtCachedFileStream(folder.NameOf("missing")), EFOpenError);
    // What is cut off is not read.
    fs::resize_file(folder.Of("file"), 3);
    stream.SetPosition(0);
    EXPECT_EQ(stream.ReadRest(), "012");
}

}

}

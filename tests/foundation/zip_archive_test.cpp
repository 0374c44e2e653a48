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

TEST(zip_archive, copies_keep_what_other_programs_know)
{
    const Folder folder;
    const std::string make = "import sys, zipfile\n"
                             "z = zipfile.ZipFile(sys.argv[1], \"w\")\n"
                             "i = zipfile.ZipInfo(\"run\")\n"
                             "i.external_attr = 0o100755 << 16\n"
                             "i.extra = b\"UT\\5\\0\\1abcd\"\n"
                             "z.writestr(i, \"x\" * 500, zipfile.ZIP_LZMA)";
    ASSERT_EQ(RunPython(make, folder.Of("theirs.zip")), 0);
    THtZIP archive;
    archive.Open(folder.NameOf("theirs.zip"));
    archive.Add(u"new"_s, "new");
    archive.SaveToFile(folder.NameOf("theirs.zip"));
    const std::string check = "import sys, zipfile\n"
                              "z = zipfile.ZipFile(sys.argv[1])\n"
                              "i = z.getinfo(\"run\")\n"
                              "assert i.external_attr == 0o100755 << 16 and i.create_system == 3\n"
                              "assert i.extra == b\"UT\\5\\0\\1abcd\" and z.testzip() is None";
    EXPECT_EQ(RunPython(check, folder.Of("theirs.zip")), 0);
}

TEST(zip_archive, copies_of_encrypted_entries_take_their_password)
{
    // Its checksum stands behind the data, so the time proves the password.
    constexpr std::string_view kEncrypted = "504b0304140009000000dd635d58000000000000000000000000010000006"
                                            "5e3c080a18c0367a930de33ec74fb3abcb3b8504b0708e5e8a25c12000000"
                                            "06000000504b01021400140009000000dd635d58e5e8a25c1200000006000"
                                            "00001000000000000000000000000000000000065504b0506000000000100"
                                            "01002f000000410000000000";
    std::string bytes;
    for (std::size_t i = 0; i < kEncrypted.size(); i += 2)
        bytes += static_cast<char>(std::stoi(std::string(kEncrypted.substr(i, 2)), nullptr, 16));
    const Folder folder;
    StrtoFileR(folder.NameOf("locked.zip"), bytes);
    THtZIP archive;
    archive.Open(folder.NameOf("locked.zip"));
    archive.SaveToFile(folder.NameOf("copy.zip"));
    const std::string check = "import sys, zipfile; z = zipfile.ZipFile(sys.argv[1]); "
                              "assert z.read(\"e\", b\"pw\") == b\"secret\"";
    EXPECT_EQ(RunPython(check, folder.Of("copy.zip")), 0);
}

TEST(zip_archive, texts_come_back)
{
    THtZIP archive;
    archive.Add(u"a\x1A\x1C\x7F"_s, {}); // pictures in the old code page
    archive.SetComment(u"größe PK\5\6 and more than a record is long"_s);
    TBytesStream stream = StreamOf(Saved(archive));
    THtZIP read;
    read.Open(stream);
    EXPECT_EQ(read.Entry(0).Name, u"a\x1A\x1C\x7F");
    EXPECT_EQ(read.Comment(), archive.Comment());
    archive.SetComment(String(std::u16string(40'000, u'ö'))); // has no room, and is cut between two letters
    TBytesStream cut = StreamOf(Saved(archive));
    read.Open(cut);
    EXPECT_EQ(read.Comment(), std::u16string(32'767, u'ö'));
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

TEST(zip_archive, nothing_is_written_through_links_or_in_part)
{
    const Folder folder;
    fs::create_directories(folder.Of("out"));
    fs::create_directory_symlink(folder.Of(""), folder.Of("out/link"));
    fs::create_symlink(folder.Of("kept"), folder.Of("out/file"));
    StrtoFileR(folder.NameOf("kept"), "kept");
    THtZIP archive;
    archive.Add(u"link/escaped"_s, "x");
    archive.Add(u"file"_s, "new", zmStored);
    EXPECT_THROW(archive.Extract(0, folder.NameOf("out")), EHtZIP);
    archive.Extract(1, folder.NameOf("out"));
    EXPECT_FALSE(fs::exists(folder.Of("escaped")));
    EXPECT_EQ(FileToStrR(folder.NameOf("kept")), "kept");
    EXPECT_EQ(FileToStrR(folder.NameOf("out/file")), "new");
    std::string broken = Saved(archive);
    broken.replace(broken.find("new"), 3, "bad");
    TBytesStream stream = StreamOf(broken);
    archive.Open(stream);
    EXPECT_THROW(archive.Extract(1, folder.NameOf("out")), EHtZIP);
    EXPECT_EQ(FileToStrR(folder.NameOf("out/file")), "new");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.Of("out")), fs::directory_iterator()), 2);
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
    // What is cut off is not read, nor shown.
    THtCachedFileStream late(folder.NameOf("file"));
    fs::resize_file(folder.Of("file"), 3);
    EXPECT_THROW(late.Bytes(), EStreamError);
    stream.SetPosition(0);
    EXPECT_EQ(stream.ReadRest(), "012");
}

}

}

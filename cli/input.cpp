// Reading files, pipes and addresses, and decoding what was read.
// SPDX-License-Identifier: MIT
#include "input.h"

#include "address.h"
#include "errors.h"

#include <hearth/runtime/encoding.h>
#include <hearth/runtime/exceptions.h>

#include <CLI/CLI.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>
#include <utility>

namespace hearth_cli {

namespace {

/// No text of the library is longer.
constexpr std::size_t kMaxBytes = std::numeric_limits<std::int32_t>::max();
constexpr std::size_t kPieceBytes = std::size_t{1} << 16U;

/// An open file, closed at the end of the scope; standard input stays open.
class InputFile {
public:
    explicit InputFile(const std::string& place)
        : FName(place == "-" ? "standard input" : place)
        , FHandle(place == "-" ? STDIN_FILENO : ::open(place.c_str(), O_RDONLY | O_CLOEXEC))
    {
        if (FHandle < 0)
            throw FileError(FName, errno);
    }
    ~InputFile()
    {
        if (FHandle != STDIN_FILENO)
            ::close(FHandle);
    }
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

    std::string Read(std::size_t limit) const
    {
        std::string bytes;
        bytes.reserve(std::min(limit, ExpectedSize()));
        while (bytes.size() < limit) {
            const std::size_t size = bytes.size();
            bytes.resize(size + std::min(limit - size, kPieceBytes));
            const std::size_t count = ReadPiece(bytes.data() + size, bytes.size() - size);
            bytes.resize(size + count);
            if (count == 0)
                break;
        }
        return bytes;
    }

    [[noreturn]] void Fail(int error) const { throw FileError(FName, error); }

private:
    std::size_t ExpectedSize() const
    {
        struct stat status { };
        const bool known = ::fstat(FHandle, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0;
        return known ? static_cast<std::size_t>(status.st_size) + kPieceBytes : 0;
    }

    std::size_t ReadPiece(char* to, std::size_t size) const
    {
        for (;;) {
            const ssize_t count = ::read(FHandle, to, size);
            if (count >= 0)
                return static_cast<std::size_t>(count);
            if (errno != EINTR)
                Fail(errno);
        }
    }

    std::string FName;
    int FHandle;
};

std::uint32_t PageOfName(const std::string& name)
{
    const std::uint32_t page = ht::CodePageOfCharset(ht::String::FromUtf8(name));
    return ht::IsKnownCodePage(page) ? page : 0;
}

/// A mark of the named encoding is no part of the text; "utf-16" leaves the order of the bytes to the mark.
ht::String DecodeNamed(std::string_view bytes, const std::string& name)
{
    std::uint32_t page = PageOfName(name);
    const ht::THtByteOrderMarkMatch match = ht::DetectByteOrderMark(bytes);
    if (match.Mark == ht::bomUtf16BigEndian && ht::SameText(ht::String::FromUtf8(name), u"utf-16"))
        page = ht::kUtf16BigEndianCodePage;
    if (ht::CodePageOf(match.Mark) == page)
        bytes.remove_prefix(match.Size);
    return ht::DecodeBytes(bytes, page);
}

}

CLI::Option* Input::AddTo(CLI::App& command, const char* name)
{
    return command.add_option(name, FPlace, "The file or address to read; - or nothing for standard input")
        ->type_name("");
}

void Input::AddEncodingTo(CLI::App& command)
{
    command
        .add_option("--encoding", FEncoding,
            "Encoding of the input, such as utf-8 or koi8-r; nothing is guessed then")
        ->type_name("NAME")
        ->check([](const std::string& name) {
            return PageOfName(name) != 0 ? std::string() : "there is no encoding " + name;
        });
}

Fetched Input::Read(std::size_t limit) const
{
    if (!FPlace && ::isatty(STDIN_FILENO))
        throw HelpWanted();
    const std::string place = FPlace.value_or("-");
    if (IsAddress(place)) {
        Fetched fetched = Fetch(place);
        fetched.Bytes.resize(std::min(fetched.Bytes.size(), limit));
        return fetched;
    }
    const InputFile file(place);
    std::string bytes = file.Read(limit);
    if (bytes.size() > kMaxBytes)
        file.Fail(EFBIG);
    return {std::move(bytes), {}};
}

std::string Input::File() const
{
    struct stat status { };
    const bool isFile = FPlace && *FPlace != "-" && ::stat(FPlace->c_str(), &status) == 0;
    return isFile && S_ISREG(status.st_mode) ? *FPlace : std::string();
}

std::string Input::ReadStart(std::size_t limit) const
{
    return Read(limit).Bytes;
}

std::string Input::ReadBytes() const
{
    return ReadStart(kMaxBytes + 1);
}

ht::String Input::ReadText() const
{
    const Fetched input = Read(kMaxBytes + 1);
    if (!FEncoding.empty())
        return DecodeNamed(input.Bytes, FEncoding);
    const std::uint32_t page = PageOfName(input.Charset);
    return ht::DecodeMarkedBytes(input.Bytes, page != 0 ? page : ht::kUtf8CodePage);
}

ht::String Input::ReadLines() const
{
    const ht::String text = ReadText();
    const std::u16string_view view = text;
    const std::int32_t end = view.ends_with(u"\r\n") ? 2 : view.ends_with(u'\n') ? 1 : 0;
    return text.Substring(0, text.Length() - end);
}

ht::THtmlPageText Input::ReadPage() const
{
    const Fetched input = Read(kMaxBytes + 1);
    if (!FEncoding.empty())
        return {DecodeNamed(input.Bytes, FEncoding), true};
    return ht::THtmlParser::DecodePage(input.Bytes, ht::String::FromUtf8(input.Charset));
}

}

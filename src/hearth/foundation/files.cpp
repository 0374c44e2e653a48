// Whole files as text or bytes.
// SPDX-License-Identifier: MIT
#include <hearth/foundation/files.h>

#include <hearth/runtime/encoding.h>
#include <hearth/runtime/streams.h>

namespace ht {

String FileToStr(const String& fileName)
{
    return DecodeMarkedBytes(FileToStrR(fileName), SystemCodePage());
}

std::string FileToStrA(const String& fileName)
{
    return FileToStrR(fileName);
}

std::string FileToStrR(const String& fileName)
{
    TFileStream file(fileName, fmOpenRead | fmShareDenyWrite);
    return file.ReadRest();
}

void StrtoFile(const String& fileName, std::u16string_view text)
{
    const std::string bytes = EncodeUtf8(text);
    TFileStream file(fileName, fmCreate);
    file.WriteBuffer(ByteOrderMarkOf(kUtf8CodePage));
    file.WriteBuffer(bytes);
}

void StrtoFileA(const String& fileName, std::string_view bytes)
{
    StrtoFileR(fileName, bytes);
}

void StrtoFileR(const String& fileName, std::string_view bytes)
{
    TFileStream file(fileName, fmCreate);
    file.WriteBuffer(bytes);
}

}

// Making a file beside another one, and moving it.
// SPDX-License-Identifier: MIT
#include "file_replacement_p.h"

#include <hearth/runtime/streams.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace ht {

namespace {

[[noreturn]] void Fail(const char16_t* what, const String& name, int error)
{
    const std::string reason = std::generic_category().message(error);
    throw EFCreateError(Concat({what, u" \"", name, u"\". ", String::FromUtf8(reason)}));
}

/// Names that no other replacement of this process has, and hardly one of another.
std::string NextName()
{
    static std::atomic<unsigned> count{0};
    return ".hearth-" + std::to_string(::getpid()) + "-" + std::to_string(count++) + ".part";
}

}

TFileReplacement::TFileReplacement(const String& fileName)
    : FName(fileName)
{
    MakeBeside();
    struct stat old { };
    if (::stat(FName.ToUtf8().c_str(), &old) == 0 && S_ISREG(old.st_mode))
        ::chmod(FBeside.c_str(), old.st_mode & 07777U);
}

void TFileReplacement::MakeBeside()
{
    const std::filesystem::path folder = std::filesystem::path(FName.ToUtf8()).parent_path();
    int made = -1;
    do {
        FBeside = (folder / NextName()).string();
        made = ::open(FBeside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    } while (made < 0 && errno == EEXIST);
    if (made < 0)
        Fail(u"Cannot create file", FName, errno);
    ::close(made);
}

TFileReplacement::~TFileReplacement()
{
    if (!FBeside.empty())
        ::unlink(FBeside.c_str());
}

void TFileReplacement::TakePlace()
{
    if (std::rename(FBeside.c_str(), FName.ToUtf8().c_str()) != 0)
        Fail(u"Cannot replace file", FName, errno);
    FBeside.clear();
}

}

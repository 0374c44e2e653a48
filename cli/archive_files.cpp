// Walking folders whose files go into an archive.
// SPDX-License-Identifier: MIT
#include "archive_files.h"

#include "errors.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <utility>

namespace hearth_cli {

namespace {

namespace fs = std::filesystem;

/// What a path leads to, however it is called.
using FileId = std::pair<dev_t, ino_t>;

class Adder {
public:
    Adder(ht::THtZIP& archive, ht::THtZIPMethod method, const std::string& without)
        : FArchive(archive)
        , FMethod(method)
    {
        struct stat status { };
        if (::stat(without.c_str(), &status) == 0)
            FWithout = {status.st_dev, status.st_ino};
    }

    void Add(const fs::path& path, const std::string& name)
    {
        struct stat status { };
        if (::stat(path.c_str(), &status) != 0)
            throw FileError(path.string(), errno);
        const FileId id(status.st_dev, status.st_ino);
        if (S_ISDIR(status.st_mode))
            return AddFolder(path, name, id);
        if (!S_ISREG(status.st_mode))
            throw FileError(path.string(), "neither a file nor a folder");
        if (id == FWithout)
            return;
        CheckName(path, name);
        FArchive.AddFile(ht::String::FromUtf8(path.string()), ht::String::FromUtf8(name), FMethod);
    }

private:
    /// Links may lead back.
    static constexpr std::size_t kMaxDepth = 256;

    void AddFolder(const fs::path& path, const std::string& name, FileId id)
    {
        if (std::find(FOpen.begin(), FOpen.end(), id) != FOpen.end() || FOpen.size() >= kMaxDepth)
            throw FileError(path.string(), ELOOP);
        FOpen.push_back(id);
        const std::vector<std::string> names = NamesIn(path);
        for (const std::string& own : names)
            Add(path / own, name.empty() ? own : name + "/" + own);
        if (names.empty() && !name.empty()) {
            CheckName(path, name + "/");
            FArchive.AddFolder(ht::String::FromUtf8(name));
        }
        FOpen.pop_back();
    }

    static std::vector<std::string> NamesIn(const fs::path& path)
    {
        std::error_code error;
        std::vector<std::string> names;
        fs::directory_iterator item(path, error);
        for (; !error && item != fs::directory_iterator(); item.increment(error))
            names.push_back(item->path().filename().string());
        if (error)
            throw FileError(path.string(), error.message());
        std::sort(names.begin(), names.end());
        return names;
    }

    void CheckName(const fs::path& path, const std::string& name)
    {
        ht::THtZIPEntry entry;
        entry.Name = ht::String::FromUtf8(name);
        if (entry.IsUnsafe())
            throw InputError(path.string() + ": archives keep no such name");
        if (!FNames.insert(name).second)
            throw InputError(path.string() + ": a file before has the name " + name);
    }

    ht::THtZIP& FArchive;
    ht::THtZIPMethod FMethod;
    FileId FWithout;
    std::vector<FileId> FOpen; // the folder that is read, and those around it
    std::set<std::string> FNames;
};

/// Empty for a path that ends in no name.
std::string LastPart(const fs::path& path)
{
    const fs::path normal = path.lexically_normal();
    const std::string last = (normal.has_filename() ? normal : normal.parent_path()).filename().string();
    return last == "." || last == ".." || last == "/" ? "" : last;
}

}

void AddFiles(ht::THtZIP& archive, const std::vector<std::string>& paths, ht::THtZIPMethod method,
    const std::string& without)
{
    Adder adder(archive, method, without);
    for (const std::string& path : paths)
        adder.Add(path, LastPart(path));
}

}

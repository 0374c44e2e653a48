// hearth zip: lists an archive, gets entries out of it, or makes one.
// SPDX-License-Identifier: MIT
#include "archive_files.h"
#include "commands.h"
#include "errors.h"
#include "input.h"
#include "output.h"
#include "tree_text.h"

#include <hearth/foundation/zip_archive.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace hearth_cli {

namespace {

/// What is written to it goes to a sink.
class SinkStream final : public ht::TStream {
public:
    explicit SinkStream(const Output::Sink& sink)
        : FSink(sink)
    {
    }
    std::int32_t Write(const void* buffer, std::int32_t count) override
    {
        FSink({static_cast<const char*>(buffer), static_cast<std::size_t>(count)});
        return count;
    }

private:
    const Output::Sink& FSink;
};

/// Opens a file in place. What came through a pipe or from an address goes to `bytes`. Lifetime: `bytes`
/// outlives the use of the archive.
void Open(ht::THtZIP& archive, const Input& input, ht::TBytesStream& bytes)
{
    const std::string file = input.File();
    if (!file.empty())
        return archive.Open(ht::String::FromUtf8(file));
    bytes.WriteBuffer(input.ReadBytes());
    archive.Open(bytes);
}

// --- list

struct ListOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
};

std::string MethodOf(const ht::THtZIPEntry& entry)
{
    std::string name = std::to_string(entry.Method);
    if (entry.Method == ht::zmStored)
        name = "stored";
    else if (entry.Method == ht::zmDeflated)
        name = "deflated";
    return entry.IsEncrypted ? name + "+encrypted" : name;
}

std::string DateOf(const ht::THtZIPEntry& entry)
{
    if (entry.Modified == 0)
        return "-";
    return ht::FormatDateTime(u"yyyy-mm-dd\"T\"hh:nn:ss", entry.Modified).ToUtf8();
}

void List(const ListOptions& options)
{
    ht::TBytesStream bytes;
    ht::THtZIP archive;
    Open(archive, options.Input, bytes);
    std::string lines;
    for (std::int32_t i = 0; i < archive.Count(); ++i) {
        const ht::THtZIPEntry& entry = archive.Entry(i);
        lines += std::to_string(entry.Size) + " " + std::to_string(entry.CompressedSize) + " "
            + MethodOf(entry) + " " + DateOf(entry) + " " + Quoted(entry.Name) + "\n";
    }
    options.Output.WriteBytes(lines);
}

void AddList(CLI::App& zip)
{
    CLI::App& command = AddCommand(zip, "list",
        "Print the entries of an archive, one a line: size, compressed size, method, date and name",
        "hearth zip list examples/documents/plots.zip\n"
        "13 13 stored 2024-02-29T18:30:00 \"plots/greeting\"\n"
        "296 176 deflated 2024-02-29T18:30:00 \"plots/harvest.json\"");
    const auto options = std::make_shared<ListOptions>();
    options->Input.AddTo(command, "ARCHIVE");
    options->Output.AddTo(command);
    command.callback([options] { List(*options); });
}

// --- get

struct GetOptions {
    hearth_cli::Input Input;
    hearth_cli::Output Output;
    std::vector<std::string> Names;
    std::string Folder;
    bool AnyRatio = false;
};

/// True for the entry of that name, and for all below the folder of that name.
bool IsNamed(const ht::THtZIPEntry& entry, const std::string& name)
{
    const std::string own = entry.Name.ToUtf8();
    return own.starts_with(name)
        && (own.size() == name.size() || name.ends_with('/') || own[name.size()] == '/');
}

/// The numbers of the entries that are named, of all without a name.
std::vector<std::int32_t> Chosen(const ht::THtZIP& archive, const std::vector<std::string>& names)
{
    std::vector<std::int32_t> chosen;
    std::vector<bool> isFound(names.size());
    for (std::int32_t i = 0; i < archive.Count(); ++i) {
        bool isChosen = names.empty();
        for (std::size_t j = 0; j < names.size(); ++j) {
            if (IsNamed(archive.Entry(i), names[j]))
                isChosen = isFound[j] = true;
        }
        if (isChosen)
            chosen.push_back(i);
    }
    const auto missing = std::find(isFound.begin(), isFound.end(), false);
    if (missing != isFound.end())
        throw InputError("there is no entry " + names[static_cast<std::size_t>(missing - isFound.begin())]);
    return chosen;
}

/// Nothing is written where one name is unsafe.
void GetToFolder(ht::THtZIP& archive, const GetOptions& options)
{
    const std::vector<std::int32_t> chosen = Chosen(archive, options.Names);
    for (const std::int32_t index : chosen) {
        if (archive.Entry(index).IsUnsafe())
            throw InputError("entry " + Quoted(archive.Entry(index).Name) + " has an unsafe name");
    }
    for (const std::int32_t index : chosen)
        archive.Extract(index, ht::String::FromUtf8(options.Folder));
}

void GetOne(ht::THtZIP& archive, const GetOptions& options)
{
    if (options.Names.size() != 1)
        throw UsageError("name one entry, or a folder for all with --to");
    const std::string& name = options.Names.front();
    const std::int32_t index = archive.IndexOf(ht::String::FromUtf8(name));
    if (index < 0 || archive.Entry(index).IsFolder()) {
        Chosen(archive, options.Names);
        throw InputError(name + " is a folder, and --to names where its entries go");
    }
    // What is printed cannot be taken back, so it is proved before.
    if (!options.Output.IsFile()) {
        const Output::Sink nothing = [](std::string_view) {};
        SinkStream proof(nothing);
        archive.Read(index, proof);
    }
    options.Output.WriteBy([&](const Output::Sink& sink) {
        SinkStream stream(sink);
        archive.Read(index, stream);
    });
}

void Get(const GetOptions& options)
{
    ht::TBytesStream bytes;
    ht::THtZIP archive;
    Open(archive, options.Input, bytes);
    if (options.AnyRatio)
        archive.Limits.InflateRatio = 0;
    if (options.Folder.empty())
        GetOne(archive, options);
    else
        GetToFolder(archive, options);
}

void AddGet(CLI::App& zip)
{
    CLI::App& command = AddCommand(zip, "get", "Print an entry of an archive, or write entries to a folder",
        "hearth zip get examples/documents/plots.zip plots/greeting\n"
        "Hello, plot!");
    const auto options = std::make_shared<GetOptions>();
    options->Input.AddTo(command, "ARCHIVE")
        ->required()
        ->description("The file or address to read; - for standard input");
    command
        .add_option("NAME", options->Names,
            "The entry to print, byte for byte; with --to, entries and folders to write, all without a name")
        ->type_name("");
    CLI::Option* const folder =
        command
            .add_option("--to", options->Folder,
                "Write to this folder, which is made if it is missing"
                "\nFiles in it are replaced. Nothing is written outside of it.")
            ->type_name("FOLDER")
            ->check([](const std::string& name) {
                return name.empty() ? std::string("the folder needs a name") : std::string();
            });
    command.add_flag("--any-ratio", options->AnyRatio,
        "Also read data that grow to more than 200 times their compressed size");
    options->Output.AddTo(command)->excludes(folder);
    command.callback([options] { Get(*options); });
}

// --- make

struct MakeOptions {
    std::string Archive;
    std::vector<std::string> Files;
    bool Stored = false;
};

void Make(const MakeOptions& options)
{
    ht::THtZIP archive;
    AddFiles(archive, options.Files, options.Stored ? ht::zmStored : ht::zmDeflated, options.Archive);
    Output(options.Archive).WriteBy([&archive](const Output::Sink& sink) {
        SinkStream stream(sink);
        archive.Save(stream);
    });
}

void AddMake(CLI::App& zip)
{
    CLI::App& command = AddCommand(zip, "make",
        "Make an archive of files, and of folders with all in them in the order of their names",
        "hearth zip make - examples/pages | hearth zip get - pages/allotment.html | sed -n 2p\n"
        "<HTML lang=en>");
    const auto options = std::make_shared<MakeOptions>();
    command.add_option("ARCHIVE", options->Archive, "The file to make or replace; - for standard output")
        ->type_name("")
        ->required();
    command
        .add_option(
            "FILE", options->Files, "Files and folders, which keep the last part of their path as a name")
        ->type_name("")
        ->required();
    command.add_flag("--stored", options->Stored, "Do not compress");
    command.callback([options] { Make(*options); });
}

}

void AddZip(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "zip", "List a ZIP archive, get entries out of it, or make one",
        "hearth zip get examples/documents/plots.zip plots/greeting\n"
        "Hello, plot!");
    command.require_subcommand(1);
    AddList(command);
    AddGet(command);
    AddMake(command);
}

}

// hearth fetch: reads an address, or posts to one.
// SPDX-License-Identifier: MIT
#include "address.h"
#include "commands.h"
#include "errors.h"
#include "output.h"

#include <hearth/platform/http_client.h>

#include <CLI/CLI.hpp>

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace hearth_cli {

namespace {

struct FetchOptions {
    hearth_cli::Output Output;
    std::string Address;
    std::optional<std::string> Post;
    bool Delete = false;
    std::string Type;
    std::string User;
    std::int32_t TimeOut = 0;
    bool Insecure = false;
};

void SetUp(ht::THtInetClient& client, const FetchOptions& options)
{
    client.SecurityPolicy = options.Insecure ? ht::spCompatible : ht::spStrict;
    client.TimeOut = options.TimeOut;
    client.ContentType = ht::String::FromUtf8(options.Type);
    const std::size_t colon = options.User.find(':');
    client.User = ht::String::FromUtf8(options.User.substr(0, colon));
    if (colon != std::string::npos)
        client.Password = ht::String::FromUtf8(options.User.substr(colon + 1));
}

/// The library gives text here, not bytes.
std::string Send(const FetchOptions& options, ht::THtInetClient& client)
{
    const ht::String address = ht::String::FromUtf8(options.Address);
    const ht::String type = ht::String::FromUtf8(options.Type);
    try {
        const ht::String text =
            options.Delete ? client.Delete(address, {}, type) : client.Post(address, *options.Post, type);
        RequireSuccess(options.Address, client);
        return text.ToUtf8();
    } catch (const ht::EHtInetException& error) {
        RequireSuccess(options.Address, client); // 401 comes with the whole page
        throw FileError(options.Address, error.what());
    }
}

void Run(const FetchOptions& options)
{
    ht::THtInetClient client;
    SetUp(client, options);
    if (options.Delete || options.Post)
        return options.Output.WriteText(Send(options, client));
    options.Output.WriteBytes(Fetch(options.Address, client).Bytes);
}

}

void AddFetch(CLI::App& hearth)
{
    CLI::App& command = AddCommand(hearth, "fetch",
        "Print what an http or https address holds, byte for byte; answers to --post and --delete as text",
        "hearth fetch https://example.org/greeting\n"
        "Hello from far away");
    const auto options = std::make_shared<FetchOptions>();
    command.add_option("URL", options->Address, "The address")->type_name("")->required();
    const auto post = command.add_option("--post", options->Post, "Post this text")->type_name("TEXT");
    command.add_flag("--delete", options->Delete, "Ask the server to delete what is there")->excludes(post);
    command.add_option("--type", options->Type, "Content type of what is sent")->type_name("TYPE");
    command.add_option("--user", options->User, "User and password of basic authentication")
        ->type_name("U:P")
        ->check([](const std::string& user) {
            const std::size_t colon = user.find(':');
            const bool complete = colon != std::string::npos && colon + 1 < user.size();
            return complete ? std::string() : "the user needs a colon and a password";
        });
    command
        .add_option("--timeout", options->TimeOut,
            "Milliseconds without a byte until the server counts as dead; 30000 unless told")
        ->type_name("MS")
        ->check(CLI::Range(1, std::numeric_limits<std::int32_t>::max()));
    command.add_flag("--insecure", options->Insecure,
        "Read from any server: certificates are not checked, and where TLS fails http is tried");
    options->Output.AddTo(command);
    command.callback([options] { Run(*options); });
}

}

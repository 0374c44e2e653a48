// Playing the data files of the HTTP client.
// SPDX-License-Identifier: MIT
#include "platform/exchange.h"

#include <hearth/platform/http_client.h>
#include <hearth/platform/inet_resource_loader.h>

#include <curl/curl.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sched.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <vector>

extern char** environ;

namespace ht {
namespace {

namespace fs = std::filesystem;

struct Section {
    std::string Name;
    std::string Title; // the whole line
    std::string Text;
};

std::vector<Section> ReadSections(const std::string& file)
{
    std::vector<Section> sections;
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with('[') && line.ends_with(']'))
            sections.push_back({line.substr(1, line.find_first_of(" ]") - 1), line, {}});
        else if (!sections.empty())
            sections.back().Text += line + "\n";
    }
    return sections;
}

std::string Replaced(std::string text, const std::map<std::string, std::string>& words)
{
    for (const auto& [name, value] : words) {
        for (std::size_t at = 0; (at = text.find(name, at)) != std::string::npos; at += value.size())
            text.replace(at, name.size(), value);
    }
    return text;
}

/// The server's process; its requests are had once, at its end.
class Server {
public:
    Server(const std::string& exchange, const fs::path& folder)
    {
        std::array<int, 2> given{};
        std::array<int, 2> printed{};
        EXPECT_EQ(pipe2(given.data(), O_CLOEXEC), 0);
        EXPECT_EQ(pipe2(printed.data(), O_CLOEXEC), 0);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, given[0], STDIN_FILENO);
        posix_spawn_file_actions_adddup2(&actions, printed[1], STDOUT_FILENO);
        std::vector<std::string> words = {
            "python3", "-B", "-W", "ignore", HEARTH_TEST_FOLDER "/server.py", exchange, folder};
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        EXPECT_EQ(posix_spawnp(&FProcess, "python3", &actions, nullptr, arguments.data(), environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(given[0]);
        close(printed[1]);
        FInput = given[1];
        FOutput = printed[0];
    }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    ~Server()
    {
        close(FOutput);
        waitpid(FProcess, nullptr, 0);
    }

    std::string ReadLine() const
    {
        std::string line;
        for (char c = 0; read(FOutput, &c, 1) == 1 && c != '\n';)
            line += c;
        return line;
    }
    std::string Requests() const
    {
        close(FInput);
        std::string text;
        std::array<char, 4096> piece{};
        for (ssize_t count = 0; (count = read(FOutput, piece.data(), piece.size())) > 0;)
            text.append(piece.data(), static_cast<std::size_t>(count));
        return text;
    }

private:
    pid_t FProcess = 0;
    int FInput = -1;
    int FOutput = -1;
};

/// Another folder where the system's one with authorities is, as this process sees it.
class SystemAuthorities {
public:
    SystemAuthorities()
    {
        CURL* const handle = curl_easy_init();
        curl_easy_getinfo(handle, CURLINFO_CAPATH, &FPlace);
        curl_easy_cleanup(handle);
    }
    SystemAuthorities(const SystemAuthorities&) = delete;
    SystemAuthorities& operator=(const SystemAuthorities&) = delete;
    ~SystemAuthorities()
    {
        if (FReplaced)
            umount2(FPlace, MNT_DETACH);
    }

    /// False where that is not allowed.
    bool Replace(const std::string& folder)
    {
        FReplaced = FPlace && unshare(CLONE_NEWNS) == 0
            && mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
            && mount(folder.c_str(), FPlace, nullptr, MS_BIND, nullptr) == 0;
        return FReplaced;
    }

private:
    const char* FPlace = nullptr;
    bool FReplaced = false;
};

/// Carries out the lines of calls on a client.
class Caller {
public:
    bool IsPossible() const noexcept { return FIsPossible; }

    std::string Call(const std::string& lines)
    {
        std::istringstream all(lines);
        std::string line;
        while (std::getline(all, line)) {
            if (line == "new")
                FClient = std::make_unique<THtInetClient>();
            else if (line.find(" = ") != std::string::npos)
                Set(line.substr(0, line.find(" = ")), line.substr(line.find(" = ") + 3));
            else if (!line.empty())
                return Result(line);
        }
        return "";
    }

private:
    void Set(const std::string& name, const std::string& value)
    {
        const std::map<std::string, String*> texts = {{"User", &FClient->User},
            {"Password", &FClient->Password}, {"Referer", &FClient->Referer},
            {"ContentType", &FClient->ContentType}, {"CertificateStore", &FClient->CertificateStore},
            {"CertificatePassword", &FClient->CertificatePassword},
            {"TrustedCertificates", &FClient->TrustedCertificates}};
        if (texts.count(name) == 1)
            *texts.at(name) = String::FromUtf8(value);
        else if (name == "TimeOut")
            FClient->TimeOut = std::stoi(value);
        else if (name == "HttpBody")
            FClient->Limits.HttpBody = std::stoi(value);
        else if (name == "HttpRedirects")
            FClient->Limits.HttpRedirects = std::stoi(value);
        else if (name == "SecurityPolicy")
            FClient->SecurityPolicy = value == "spStrict" ? spStrict : spCompatible;
        else if (name == "Allow")
            FLoader.Allow(String::FromUtf8(value));
        else if (name == "BaseAddress")
            FBaseAddress = String::FromUtf8(value);
        else if (name == "OnRedirect") // asks for another address with the same client
            FClient->OnRedirect = [this, value](const String&) { return Run(value).empty(); };
        else if (name == "SystemAuthorities")
            FIsPossible = FAuthorities.Replace(value);
        else if (name == "Proxy")
            setenv("http_proxy", value.c_str(), 1); // the system's setting, for this process
        else
            ADD_FAILURE() << "no field " << name;
    }

    std::string Result(const std::string& line)
    {
        try {
            return Run(line);
        } catch (const Exception& error) {
            return String(error.ClassName()).ToUtf8() + ": " + error.what();
        }
    }

    std::string Run(const std::string& line)
    {
        std::istringstream words(line);
        std::string verb;
        std::string address;
        std::string body;
        std::string type;
        std::getline(words, verb, ' ');
        std::getline(words, address, '|');
        std::getline(words, body, '|');
        std::getline(words, type);
        return verb == "Load" ? Load(address)
                              : Ask(verb, String::FromUtf8(address), body, String::FromUtf8(type));
    }

    std::string Ask(
        const std::string& verb, const String& address, const std::string& body, const String& type)
    {
        String text;
        if (verb == "GetBytes")
            text = TextOf(FClient->GetBytes(address));
        else if (verb == "Get")
            text = FClient->Get(address);
        else if (verb == "Post")
            text = FClient->Post(address, body, type);
        else
            text = FClient->Delete(address, body, type);
        return std::to_string(FClient->ResponseCode) + " " + FClient->ResponseContentType.ToUtf8() + "\n"
            + text.ToUtf8();
    }

    std::string Load(const std::string& address)
    {
        THtResource resource;
        const String absolute = FLoader.Resolve(FBaseAddress, String::FromUtf8(address));
        const bool found = FLoader.Load(absolute, resource);
        return (found ? "found " : "missed ") + resource.Address.ToUtf8() + " "
            + resource.ContentType.ToUtf8() + "\n" + TextOf(resource.Bytes).ToUtf8();
    }

    static String TextOf(const TBytes& bytes)
    {
        return String::FromLatin1({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    }

    std::unique_ptr<THtInetClient> FClient = std::make_unique<THtInetClient>();
    THtInetResourceLoader FLoader;
    String FBaseAddress;
    SystemAuthorities FAuthorities;
    bool FIsPossible = true;
};

/// A folder that is removed at the end of the scope.
class TemporaryFolder {
public:
    TemporaryFolder()
        : FPath(fs::temp_directory_path() / ("hearth-exchange-" + std::to_string(getpid())))
    {
        fs::create_directory(FPath);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { fs::remove_all(FPath); }

    const fs::path& Path() const { return FPath; }

private:
    fs::path FPath;
};

/// The servers are on this machine, whatever its proxy is.
class WithoutProxy : public testing::Environment {
public:
    void SetUp() override
    {
        for (const char* name :
            {"http_proxy", "https_proxy", "HTTPS_PROXY", "all_proxy", "ALL_PROXY", "no_proxy"})
            unsetenv(name);
    }
};
const testing::Environment* const kWithoutProxy = testing::AddGlobalTestEnvironment(new WithoutProxy);

/// The expected text, or the actual one where the first is only its beginning.
std::string Judged(const std::string& expected, const std::string& actual)
{
    constexpr std::string_view kRest = "...\n";
    if (!expected.ends_with(kRest))
        return expected;
    const std::string start = expected.substr(0, expected.size() - kRest.size());
    return actual.starts_with(start) ? actual : expected;
}

}

Played PlayExchange(const std::string& file)
{
    unsetenv("http_proxy"); // that of the exchange before
    const std::vector<Section> sections = ReadSections(file);
    const TemporaryFolder folder;
    const Server server(file, folder.Path());
    std::istringstream ports(server.ReadLine());
    std::string plain;
    std::string secure;
    ports >> plain >> secure;
    const std::map<std::string, std::string> words = {{"%HTTP%", "127.0.0.1:" + plain},
        {"%HTTPS%", "127.0.0.1:" + secure}, {"%HTTPPORT%", plain}, {"%HTTPSPORT%", secure},
        {"%AGENT%", "User-Agent: Mozilla/5.0\nConnection: keep-alive"}, {"%DIR%", folder.Path()}};

    Played played;
    std::string requests;
    std::string result;
    Caller caller;
    for (const Section& section : sections) {
        const std::string text = Replaced(section.Text, words);
        if (section.Name == "call") {
            result = caller.Call(text) + "\n";
        } else if (section.Name == "request") {
            requests += section.Title + "\n" + text;
        } else if (section.Name == "result") {
            played.Expected += Judged(text, result);
            played.Actual += result;
        }
    }
    played.Expected += requests;
    played.Actual += server.Requests();
    played.IsPossible = caller.IsPossible();
    return played;
}

}

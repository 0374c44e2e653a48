// Addresses and header values that must not reach a server, and clients on threads.
// SPDX-License-Identifier: MIT
#include <hearth/platform/htinet.h>

#include <hearth/platform/address_p.h>
#include <hearth/platform/http_headers_p.h>

#include "platform/local_server.h"
#include "runtime/messages.h"

#include <gtest/gtest.h>

#include <csignal>
#include <thread>

namespace ht {
namespace {

TEST(addresses, are_encoded_or_refused)
{
    struct Row {
        std::u16string_view address;
        std::string_view expected; // the address that is asked for, or the failure
    };
    const Row rows[] = {{u"HTTP://A.example", "http://a.example/"},
        {u"http://a:80/b?c d#e", "http://a/b?c+d"}, {u"https://a:443/", "https://a/"},
        {u"http://a:443/x", "http://a:443/x"}, {u"http://a/b c/\u00e9", "http://a/b%20c/%c3%a9"},
        {u"http://a/x/../y", "http://a/y"}, {u"http://[::1]:8080/", "http://[::1]:8080/"},
        {{u"http://a/\0b", 11}, "12005"}, {u"http://a/\r\nX: y", "12005"}, {u"http://u:p@a/", "12005"},
        {u"http://u@a/", "12005"}, {u"http://", "12005"}, {u"", "12005"}, {u"http://a:0/", "12005"},
        {u"http://a:65536/", "12005"}, {u"http://a b/", "12005"}, {u"x", "12005"},
        {u"file:///etc/passwd", "12006"}, {u"gopher://a/", "12006"}, {u"javascript:x", "12005"}};
    for (const Row& row : rows) {
        std::string actual;
        try {
            actual = detail::CrackAddress(row.address).Text();
        } catch (const EHtInetException& error) {
            actual = std::to_string(error.Failure);
        }
        EXPECT_EQ(actual, row.expected) << String(row.address);
    }
}

TEST(http_headers, break_no_lines)
{
    const std::u16string_view values[] = {u"a\r\nX: y", u"a\nb", u"\r", {u"a\0b", 3}, u"\x7F"};
    for (const std::u16string_view value : values)
        EXPECT_THROW(detail::HeaderLine("Referer", value), EHtInetException) << String(value);
    EXPECT_EQ(detail::AuthorizationLine(u"us\r\ner", u"p\u00e4ss"), "Authorization: Basic dXMNCmVyOnDDpHNz");
    EXPECT_EQ(
        detail::AuthorizationLine({}, std::u16string(100, u'x')).find_first_of("\r\n"), std::string::npos);
}

TEST(resource_loader, charset_is_what_stands_behind_its_name)
{
    const std::pair<std::u16string_view, std::u16string_view> rows[] = {
        {u"text/html; charset=UTF-8; x=y", u"utf-8"}, {u"text/html;CHARSET= KOI8-R ", u"koi8-r"},
        {u"text/html", u""}, {u"charset=", u""}, {u"", u""}};
    for (const auto& [type, charset] : rows)
        EXPECT_EQ(CharsetOfContentType(type), charset) << String(type);
}

TEST(http_client, long_addresses_give_no_bytes)
{
    THtInetClient client;
    const String start = u"http://127.0.0.1:1/"_s;
    EXPECT_TRUE(client.GetBytes(start + String(std::size_t{4097} - start.size(), u'x')).IsEmpty());
    EXPECT_TRUE(client.LastURL.IsEmpty());
    EXPECT_THROW(client.GetBytes(start + String(std::size_t{4096} - start.size(), u'x')), EHtInetException);
}

TEST(http_client, is_usable_after_failures)
{
    THtInetClient client;
    client.SecurityPolicy = spStrict;
    const String refused = u"http://127.0.0.1:1/"_s;
    EXPECT_THROW(client.Get(u""_s), EHtInetException);
    for (int round = 0; round < 2; ++round) {
        const String message = MessageOf<EHtInetException>([&] { client.Get(refused); });
        EXPECT_TRUE(message.View().starts_with(u"System error 12157: ")) << message;
    }
    client.Referer = u"a\r\nb"_s;
    EXPECT_EQ(
        MessageOf<EHtInetException>([&] { client.Get(refused); }), u"Referer holds a control character");
    TList certificates;
    client.GetClientCertificates(certificates);
    EXPECT_EQ(certificates.Count(), 0);
}

TEST(inet_resource_loader, allows_what_lies_below)
{
    const String base = u"https://a.example/pages/index.html"_s;
    THtInetResourceLoader loader;
    EXPECT_FALSE(loader.Allows(u"https://a.example/"));
    loader.Allow(u"https://A.example/pages"_s);
    EXPECT_THROW(loader.Allow(u"file:///"_s), EHtInetException);
    const std::pair<std::u16string_view, bool> rows[] = {{u"style.css", true}, {u"../pages", true},
        {u"/pages?x", true}, {u"https://a.example:443/pages/x", true}, {u"/pagesx", false}, {u"../x", false},
        {u"/pages/../x", false}, {u"/pages/%2e%2E/x", false}, {u"/pages/..%2Fx", false},
        {u"/pages/..\\x", false}, {u"/pages/..;/x", false}, {u"/pages/.;a=b/x", false},
        {u"/pages/..%3B/x", false}, {u"/pages/%252e%252e/x", false}, {u"/pages/%25252Fx", false},
        {u"/pages/a;b/..c;d?/..;/%2e", true}, {u"/pages/%25x", true}, {u"//b.example/pages/", false},
        {u"http://a.example/pages/", false}, {u"https://a.example:8443/pages/", false},
        {u"https://a.example@b.example/pages/", false}, {u"file:///pages/", false},
        {u"data:text/css,x", false}, {u"javascript:x", false}};
    for (const auto& [address, allowed] : rows)
        EXPECT_EQ(loader.Allows(loader.Resolve(base, address)), allowed) << String(address);
}

/// Answers with the path that is asked for.
void Echo(int connection)
{
    const std::string request = LocalServer::ReadHead(connection);
    const std::string path = request.substr(4, request.find(' ', 4) - 4);
    EXPECT_TRUE(LocalServer::Write(connection, "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + path));
}

TEST(http_client, clients_of_two_threads_do_not_meet)
{
    constexpr int kRounds = 20;
    const LocalServer server(2 * kRounds, Echo);
    const String start = String::FromUtf8("http://" + server.Host() + "/");
    const auto work = [&start](const String& name) {
        THtInetClient client;
        for (int round = 0; round < kRounds; ++round) {
            const String path = name + String::FromUtf8(std::to_string(round));
            EXPECT_EQ(client.Get(start + path), u"/" + path);
        }
    };
    std::thread first(work, u"first"_s);
    std::thread second(work, u"second"_s);
    first.join();
    second.join();
}

TEST(http_client, broken_pipes_concern_the_program_again_behind_a_call)
{
    const auto isBlocked = [] {
        sigset_t set;
        return pthread_sigmask(SIG_BLOCK, nullptr, &set) == 0 && sigismember(&set, SIGPIPE) == 1;
    };
    const LocalServer server(1, Echo);
    THtInetClient client;
    client.SecurityPolicy = spStrict;
    EXPECT_EQ(client.Get(String::FromUtf8("http://" + server.Host() + "/a")), u"/a");
    EXPECT_FALSE(isBlocked());
    EXPECT_THROW(client.Get(u"http://127.0.0.1:1/"_s), EHtInetException);
    EXPECT_FALSE(isBlocked());
}

}
}

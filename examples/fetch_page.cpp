// Reads a page from an address and prints its text.
// SPDX-License-Identifier: MIT
#include <hearth/hearth.h>

#include <iostream>
#include <string_view>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: fetch_page ADDRESS\n";
        return 2;
    }
    ht::THtInetClient client;
    client.SecurityPolicy = ht::spStrict;
    client.TimeOut = 10'000;
    try {
        const ht::TBytes bytes = client.GetBytes(ht::String::FromUtf8(argv[1]));
        if (client.ResponseCode != 200) {
            std::cerr << "the server answers with status " << client.ResponseCode << '\n';
            return 1;
        }
        const std::string_view view(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        const ht::THtmlPageText text =
            ht::THtmlParser::DecodePage(view, ht::CharsetOfContentType(client.ResponseContentType));
        ht::THtmlNode page;
        page.Parse(text.Text, text.IsDecoded);
        std::cout << page.GetInnerText().ToUtf8() << '\n';
    } catch (const ht::EHtInetException& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

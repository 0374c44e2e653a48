// Reads a page from an address and prints its text.
// SPDX-License-Identifier: MIT
#include <hearth/hearth.h>

#include <iostream>

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
        const ht::String markup = client.Get(ht::String::FromUtf8(argv[1]));
        if (client.ResponseCode != 200) {
            std::cerr << "the server answers with status " << client.ResponseCode << '\n';
            return 1;
        }
        ht::THtmlNode page;
        page.Parse(markup);
        std::cout << page.GetInnerText().ToUtf8() << '\n';
    } catch (const ht::EHtInetException& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

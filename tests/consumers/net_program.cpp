// A program that reads an address and nothing else.
// SPDX-License-Identifier: MIT
#include <hearth/platform/htinet.h>

#include <iostream>

int main()
{
    ht::THtInetClient client;
    client.SecurityPolicy = ht::spStrict;
    try {
        client.Get(ht::String::FromUtf8("file:///etc/hosts"));
    } catch (const ht::EHtInetException& error) {
        std::cout << error.what() << '\n';
    }
}

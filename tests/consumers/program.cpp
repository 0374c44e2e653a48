// The program of the README, which each consumer project builds: text in, a repaired page out.
// SPDX-License-Identifier: MIT
#include <hearth/hearth.h>

#include <iostream>

int main()
{
    ht::THtmlNode page;
    page.Parse(ht::String::FromUtf8("<title>Hi</title><p>one<p>two & <b>three"));
    std::cout << page.GetOuterHTML().ToUtf8() << '\n';
}

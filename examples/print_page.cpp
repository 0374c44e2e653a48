// Reads a page in UTF-8 and prints it repaired and indented.
// SPDX-License-Identifier: MIT
#include <hearth/hearth.h>

#include <fstream>
#include <iostream>
#include <iterator>

int main(int argc, char** argv)
{
    std::ifstream file(argc == 2 ? argv[1] : "", std::ios::binary);
    if (!file) {
        std::cerr << "usage: print_page PAGE.html\n";
        return 2;
    }
    const std::string bytes(std::istreambuf_iterator<char>(file), {});

    ht::THtmlNode page;
    page.Parse(ht::String::FromUtf8(bytes));

    ht::TFastString text(4096);
    bool afterBlock = false;
    page.FastFormattedHTML(text, 0, 2, afterBlock);
    std::cout << text.GetAsString().ToUtf8() << '\n';
}

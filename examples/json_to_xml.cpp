// Reads JSON in UTF-8 and prints it as indented XML, or writes it to a second file.
// SPDX-License-Identifier: MIT
#include <hearth/hearth.h>

#include <fstream>
#include <iostream>
#include <iterator>

int main(int argc, char** argv)
{
    std::ifstream file(argc == 2 || argc == 3 ? argv[1] : "", std::ios::binary);
    if (!file) {
        std::cerr << "usage: json_to_xml DOCUMENT.json [DOCUMENT.xml]\n";
        return 2;
    }
    const std::string bytes(std::istreambuf_iterator<char>(file), {});

    try {
        const auto document = ht::THtXMLNode::CreatefromJSON(ht::String::FromUtf8(bytes));
        // Members of objects are attributes; what holds more is an element, with the member's name or, in an
        // array, named after its kind.
        document->ProcessingInstructions().Add(ht::String(u"xml version=\"1.0\""));
        if (argc == 3)
            document->SaveToFileUTF8Format(ht::String::FromUtf8(argv[2]));
        else
            std::cout << document->UTF8FormattedCode() << '\n';
    } catch (const ht::Exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}

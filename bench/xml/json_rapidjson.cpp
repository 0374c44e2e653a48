// RapidJSON under the same measurements: a document of UTF-16, read from UTF-8.
// SPDX-License-Identifier: MIT
#include "xml/json_engine.h"

#include <rapidjson/document.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <memory>
#include <vector>

namespace {

using Document = rapidjson::GenericDocument<rapidjson::UTF16<char16_t>>;
using Value = Document::ValueType;

struct Rapidjson {
    using Tree = std::unique_ptr<Document>;

    static Tree Parse(std::string_view text)
    {
        auto document = std::make_unique<Document>();
        rapidjson::MemoryStream bytes(text.data(), text.size());
        rapidjson::EncodedInputStream<rapidjson::UTF8<>, rapidjson::MemoryStream> stream(bytes);
        document->ParseStream<rapidjson::kParseDefaultFlags, rapidjson::UTF8<>>(stream);
        return document;
    }

    static void Count(const Tree& tree, bench::TreeCounts& counts)
    {
        std::vector<const Value*> open{tree.get()};
        while (!open.empty()) {
            const Value& value = *open.back();
            open.pop_back();
            ++counts.Nodes;
            counts.Units += value.IsString() ? value.GetStringLength() : 0U;
            if (value.IsArray()) {
                for (const Value& item : value.GetArray())
                    open.push_back(&item);
            } else if (value.IsObject()) {
                for (const auto& member : value.GetObject()) {
                    counts.Units += member.name.GetStringLength();
                    open.push_back(&member.value);
                }
            }
        }
    }

    static std::size_t Print(const Tree& tree)
    {
        using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF16<char16_t>>;
        Buffer buffer;
        rapidjson::Writer<Buffer, rapidjson::UTF16<char16_t>, rapidjson::UTF16<char16_t>> writer(buffer);
        tree->Accept(writer);
        return buffer.GetSize() / sizeof(char16_t);
    }
    static std::size_t PrintUtf8(const Tree& tree)
    {
        rapidjson::StringBuffer buffer;
        rapidjson::Writer<rapidjson::StringBuffer, rapidjson::UTF16<char16_t>, rapidjson::UTF8<>> writer(
            buffer);
        tree->Accept(writer);
        return buffer.GetSize();
    }
    static std::string Joined(const bench::Corpus& corpus, std::size_t size)
    {
        return bench::JoinJson(corpus, size);
    }
    static void Destroy(Tree& tree) { tree.reset(); }
};

}

int main(int argc, char** argv)
{
    return bench::RunJsonBench<Rapidjson>(argc, argv);
}

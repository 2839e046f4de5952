// SPDX-License-Identifier: MIT
#include "benchmarks/presets/BareDocument.h"

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <cstdio>
#include <cstdlib>

namespace vantle::bench {

struct BareDocument::Tree
{
    rapidjson::Document json;
};

BareDocument::BareDocument(std::string_view text) : m_tree(new Tree)
{
    constexpr unsigned kFlags = rapidjson::kParseIterativeFlag | rapidjson::kParseFullPrecisionFlag |
                                rapidjson::kParseValidateEncodingFlag;
    m_tree->json.Parse<kFlags>(text.data(), text.size());
    if (m_tree->json.HasParseError()) {
        std::fputs("the baseline can't read the benchmark's document\n", stderr);
        std::abort();
    }
}

BareDocument::~BareDocument()
{
    delete m_tree;
}

std::size_t BareDocument::write() const
{
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    m_tree->json.Accept(writer);
    return buffer.GetSize();
}

} // namespace vantle::bench

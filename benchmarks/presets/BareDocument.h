// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

/// What the JSON library alone needs for the same work: the baseline that the preset code is held to.
namespace vantle::bench {

class BareDocument
{
public:
    /// Parses as the product does: iteratively, with full precision and a check of the encoding.
    explicit BareDocument(std::string_view text);
    ~BareDocument();
    BareDocument(const BareDocument &) = delete;
    BareDocument &operator=(const BareDocument &) = delete;

    /// Writes the same values with the bare writer; the size of the text.
    [[nodiscard]] std::size_t write() const;

private:
    struct Tree;
    Tree *m_tree;
};

} // namespace vantle::bench

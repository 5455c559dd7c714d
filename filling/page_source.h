#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrune {

// One piece of a page's source: a tag, or text between tags.
struct SourcePiece {
    enum class Kind : std::uint8_t { text, tag, end_tag };
    Kind kind = Kind::text;
    std::string name;      // of a tag, in lower case
    std::string_view text; // the text as it stands in the source, or what a tag holds behind its name
};

// Walks the source of a page piece by piece. What is not shown as text is left out: comments, declarations,
// and the content of scripts, style sheets, templates, lists, text areas, buttons and embedded documents.
class PageSource {
public:
    // The source outlives the reader and its pieces.
    explicit PageSource(std::string_view source) : source_(source) {}

    // False at the end. Source that breaks off in the middle of a tag ends before it.
    bool next(SourcePiece& piece);

private:
    bool read_tag(SourcePiece& piece);
    void skip_declaration();
    void skip_content(std::string_view name);

    std::string_view source_;
    std::size_t at_ = 0;
};

// Value of an attribute of a tag, with its character references decoded; "" when the tag has none of that
// name (in lower case). Of several the first counts.
[[nodiscard]] std::string tag_attribute(std::string_view behind_name, std::string_view attribute);

// Appends text of a page's source as it is read: character references as the characters they stand for, a
// no-break space as a blank, and any run of white space as one blank, none at the start.
void append_shown_text(std::string& out, std::string_view source);

} // namespace kestrune

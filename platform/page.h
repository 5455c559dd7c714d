#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Names one loaded document (a page's top document or the document of a frame) for as long as it is loaded; a
// reload makes a new one. Opaque; empty names none.
using DocumentId = std::string;

// One element of one image of a document, as the page side knows it. Never reused for another element.
struct ElementRef {
    DocumentId document;
    std::uint32_t element = 0;
};

struct PageLink {
    ElementRef ref;
    std::string innertext; // the engine's innerText, UTF-8
};

// A document as it stood when the image was taken. All text is UTF-8.
struct PageDocument {
    DocumentId id;
    std::string url;
    // Where "<form " occurs in documentElement.innerHTML, letter case ignored: the text from there through the
    // next ">", one entry for each, in order; the search goes on after that ">" and ends at a hit without one.
    // Scripts and comments count like any other text.
    std::vector<std::string> form_tags;
    std::vector<PageLink> links;      // document.links, in order; only when asked for
    std::vector<PageDocument> frames; // document.frames, in order, of any origin; a frame that gave no answer in
                                      // time has an empty id and nothing else
};

// What of a page an image is to hold besides what is always there. Each costs the page time.
struct PageParts {
    bool links = false;
    friend bool operator==(const PageParts&, const PageParts&) = default;
};

// One change to a page, noted while its image is processed and sent back when the procedure ends.
struct PageEdit {
    enum class Kind : std::uint8_t { click };
    Kind kind = Kind::click;
    ElementRef ref;
};

} // namespace kestrune

#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrune {

// Names one loaded document (a page's top document or the document of a frame) for as long as it is loaded; a
// reload makes a new one. Opaque; empty names none.
using DocumentId = std::string;

// One element of a document, as the page side knows it: the same element has the same number in every image
// of the document, and no other element ever gets it.
struct ElementRef {
    DocumentId document;
    std::uint32_t element = 0;
};

struct PageLink {
    ElementRef ref;
    std::string innertext; // the engine's innerText, UTF-8
};

struct PageOption {
    ElementRef ref;
    std::string text; // as shown
    std::string value;
    bool selected = false;
};

// One element of a form.
struct PageElement {
    ElementRef ref;
    // As the engine reports it ("text", "select-one", "textarea", "submit" ...); types that only say what
    // kind of text is wanted (email, url, tel, number, search, dates) read "text".
    std::string type;
    std::string name;
    std::string value; // a text area's line ends read CR LF, as they are posted
    std::string src;   // as written in the page; of image buttons
    // Full address that this button sends its form to in place of the form's action; "" when it has none of
    // its own.
    std::string form_action;
    bool checked = false;
    bool locked = false;             // read-only, or disabled by itself or by a fieldset: nobody types there
    std::vector<PageOption> options; // of lists
    // What a person sees as the element's label, found without regard to table rows, and how: the first of
    // these that gives any text (blanks trimmed and runs of white space as one blank). Comes with the labels.
    //   "label"            the texts of <label for> and of a label around it, without those of controls in it
    //   "aria-labelledby"  the texts of the elements it names
    //   "aria-label"
    //   "text"             the text before it in the same block, from the control before it on: of blocks the
    //                      nearest, of lines parted by breaks all, or the nearest where all are too long
    //   "term"             the definition term before the definition that it stands in
    //   "cell"             the cell before its own in a grid made of blocks
    //   "placeholder"
    //   "title"
    // The unit that it is counted in (KB, bytes ...) belongs to its label when it stands right behind it. A
    // term or a cell goes to one field of several, and to the lists before it; text above several fields,
    // none of which has text of its own, heads them together and is the label of none. Check boxes and option
    // buttons have no label of the kinds "text", "term" and "cell", and hidden fields and push buttons none
    // at all.
    std::string label;
    std::string label_from; // one of the above, "" without a label
};

struct PageForm {
    ElementRef ref;
    std::string id;
    // As written in the page, not resolved; "" without one. "[object]" when the form holds an input named
    // "action", which hides the attribute from page code; `action_input` is then that input's value.
    std::string action;
    std::string action_input;
    std::vector<PageElement> elements; // form.elements, in order
};

// What of a page an image is to hold besides what is always there. Each costs the page time.
struct PageParts {
    bool links = false;
    bool forms = false;
    bool labels = false; // with the forms: the page's source, and each element's label
    friend bool operator==(const PageParts&, const PageParts&) = default;
};

// A document as it stood when the image was taken. All text is UTF-8.
struct PageDocument {
    DocumentId id;
    std::string url;
    // Whose page it is, as browsers tell it: "http://site:81", or "null" for one that belongs to nobody else
    // (data: addresses, sandboxed frames). Blank and written frames have that of the page that made them,
    // which their address does not tell. "" where nothing is known but the address.
    std::string origin;
    PageParts parts; // what this image holds besides
    // Where "<form " occurs in documentElement.innerHTML, letter case ignored: the text from there through
    // the next ">", one entry for each, in order; the search goes on after that ">" and ends at a hit without
    // one. Scripts and comments count like any other text.
    std::vector<std::string> form_tags;
    std::vector<PageLink> links; // document.links, in order; only when asked for
    std::vector<PageForm> forms; // document.forms, in order; only when asked for
    // document.activeElement when that is a field (an INPUT, a TEXTAREA or a SELECT), in a form or not; its
    // ref's element is 0 otherwise. Comes with the forms.
    PageElement active_element;
    // documentElement.innerHTML, an open shadow root as a <template shadowroot> at the start of its host;
    // only with the labels.
    std::string source;
    std::vector<PageElement> inputs;  // every INPUT of the document, in document order; comes with the forms
    std::vector<PageDocument> frames; // document.frames, in order, of any origin; a frame that gave no answer
                                      // in time has an empty id and nothing else
};

// One change to a page, noted while its image is processed and sent back when the procedure ends. After a
// write the page side tells the page (input and change events).
struct PageEdit {
    enum class Kind : std::uint8_t {
        click,  // of a link or a button
        value,  // the element's value becomes `text`
        check,  // the radio button or check box becomes checked
        select, // the option becomes selected; ref is the option's
        focus,  // the element gets the focus, as if the user had gone there
    };
    Kind kind = Kind::click;
    ElementRef ref;
    std::string text = {};
};

} // namespace kestrune

#include "filling/page_source.h"

#include "platform/text.h"

#include <algorithm>
#include <array>
#include <utility>

namespace kestrune {
namespace {

constexpr std::array<std::string_view, 13> unread{"script",  "style",  "template", "noscript", "noframes",
                                                  "noembed", "iframe", "select",   "datalist", "textarea",
                                                  "button",  "title",  "svg"};

struct Reference {
    std::string_view written;
    std::string_view shown;
};
constexpr std::array<Reference, 6> references{
    {{"&nbsp;", " "}, {"&gt;", ">"}, {"&lt;", "<"}, {"&amp;", "&"}, {"&quot;", "\""}, {"&#160;", " "}}};

constexpr std::string_view no_break_space = "\xC2\xA0";

bool is_blank(char letter) {
    return letter == ' ' || letter == '\t' || letter == '\n' || letter == '\r' || letter == '\f';
}

bool is_letter(char letter) { return (letter >= 'a' && letter <= 'z') || (letter >= 'A' && letter <= 'Z'); }

const Reference* reference_at(std::string_view text) {
    const auto* const found =
        std::find_if(references.begin(), references.end(), [text](const Reference& reference) {
            return text.substr(0, reference.written.size()) == reference.written;
        });
    return found == references.end() ? nullptr : found;
}

std::string decoded(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size();) {
        const Reference* const reference = text[at] == '&' ? reference_at(text.substr(at)) : nullptr;
        if (reference == nullptr) {
            out += text[at++];
            continue;
        }
        out += reference->shown;
        at += reference->written.size();
    }
    return out;
}

void append_blank(std::string& out) {
    if (!out.empty() && out.back() != ' ')
        out += ' ';
}

std::size_t skip_blanks(std::string_view text, std::size_t at) {
    while (at < text.size() && (is_blank(text[at]) || text[at] == '/'))
        ++at;
    return at;
}

// The attribute value that starts at `at`; steps `at` behind it.
std::string_view read_value(std::string_view text, std::size_t& at) {
    if (at < text.size() && (text[at] == '"' || text[at] == '\'')) {
        const std::size_t end = std::min(text.find(text[at], at + 1), text.size());
        const std::string_view value = text.substr(at + 1, end - at - 1);
        at = std::min(end + 1, text.size());
        return value;
    }
    const std::size_t start = at;
    while (at < text.size() && !is_blank(text[at]))
        ++at;
    return text.substr(start, at - start);
}

} // namespace

bool PageSource::next(SourcePiece& piece) {
    while (at_ < source_.size()) {
        if (source_[at_] == '<') {
            const char sign = at_ + 1 < source_.size() ? source_[at_ + 1] : ' ';
            if (is_letter(sign) || sign == '/')
                return read_tag(piece);
            if (sign == '!' || sign == '?') {
                skip_declaration();
                continue;
            }
        }
        const std::size_t end = std::min(source_.find('<', at_ + 1), source_.size());
        piece.kind = SourcePiece::Kind::text;
        piece.name.clear();
        piece.text = source_.substr(at_, end - at_);
        at_ = end;
        return true;
    }
    return false;
}

bool PageSource::read_tag(SourcePiece& piece) {
    std::size_t at = at_ + 1;
    piece.kind = source_[at] == '/' ? SourcePiece::Kind::end_tag : SourcePiece::Kind::tag;
    if (piece.kind == SourcePiece::Kind::end_tag)
        ++at;
    const std::size_t name = at;
    while (at < source_.size() && !is_blank(source_[at]) && source_[at] != '>' && source_[at] != '/')
        ++at;
    piece.name = lower_case(source_.substr(name, at - name));
    const std::size_t behind_name = at;
    char quote = '\0';
    char before = ' ';
    for (; at < source_.size() && (quote != '\0' || source_[at] != '>'); ++at) {
        const char sign = source_[at];
        if (quote != '\0')
            quote = sign == quote ? '\0' : quote;
        else if ((sign == '"' || sign == '\'') && before == '=')
            quote = sign;
        before = is_blank(sign) ? before : sign;
    }
    if (at == source_.size()) {
        at_ = at;
        return false;
    }
    piece.text = source_.substr(behind_name, at - behind_name);
    at_ = at + 1;
    // What a shadow root holds is written as a template, but shown where it stands.
    const bool shadow = piece.name == "template" && piece.text.find("shadowroot") != std::string_view::npos;
    if (piece.kind == SourcePiece::Kind::tag && !shadow)
        skip_content(piece.name);
    return true;
}

void PageSource::skip_declaration() {
    const bool comment = source_.substr(at_, 4) == "<!--";
    const std::string_view end = comment ? "-->" : ">";
    const std::size_t found = source_.find(end, at_ + 2);
    at_ = found == std::string_view::npos ? source_.size() : found + end.size();
}

void PageSource::skip_content(std::string_view name) {
    if (std::find(unread.begin(), unread.end(), name) == unread.end())
        return;
    at_ = std::min(find_ignoring_ascii_case(source_, "</" + std::string(name), at_), source_.size());
}

std::string tag_attribute(std::string_view behind_name, std::string_view attribute) {
    for (std::size_t at = skip_blanks(behind_name, 0); at < behind_name.size();
         at = skip_blanks(behind_name, at)) {
        const std::size_t start = at;
        while (at < behind_name.size() && !is_blank(behind_name[at]) && behind_name[at] != '/' &&
               (behind_name[at] != '=' || at == start))
            ++at;
        const std::string_view name = behind_name.substr(start, at - start);
        std::size_t equals = at;
        while (equals < behind_name.size() && is_blank(behind_name[equals]))
            ++equals;
        std::string_view value;
        if (equals < behind_name.size() && behind_name[equals] == '=') {
            at = equals + 1;
            while (at < behind_name.size() && is_blank(behind_name[at]))
                ++at;
            value = read_value(behind_name, at);
        }
        if (equal_ignoring_case(name, attribute))
            return decoded(value);
    }
    return {};
}

void append_shown_text(std::string& out, std::string_view source) {
    for (std::size_t at = 0; at < source.size();) {
        if (is_blank(source[at])) {
            append_blank(out);
            ++at;
        } else if (source.substr(at, no_break_space.size()) == no_break_space) {
            append_blank(out);
            at += no_break_space.size();
        } else if (const Reference* const reference =
                       source[at] == '&' ? reference_at(source.substr(at)) : nullptr) {
            if (reference->shown == " ")
                append_blank(out);
            else
                out += reference->shown;
            at += reference->written.size();
        } else {
            out += source[at++];
        }
    }
}

} // namespace kestrune

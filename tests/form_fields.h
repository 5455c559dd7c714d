#pragma once

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrune {

struct WrittenField {
    std::string type; // of an INPUT, in lower case; "textarea" or "select" or "select-multiple"
    std::string name;
    std::vector<std::string> options; // texts
    std::size_t form = 0;             // from 1; 0: in none
    bool locked = false;              // read-only or disabled
};

// The fields as they are written in a page's file, push buttons left out. A reader of practice pages, not of
// the web: enough to tell whether the data beside a page speaks of the fields that are in it.
class WrittenFields {
public:
    explicit WrittenFields(std::string html) : text_(std::move(html)) { read(); }
    WrittenFields(const WrittenFields&) = delete;
    WrittenFields& operator=(const WrittenFields&) = delete;
    WrittenFields(WrittenFields&&) = delete;
    WrittenFields& operator=(WrittenFields&&) = delete;
    ~WrittenFields() = default;

    [[nodiscard]] const std::string& html() const { return text_; }
    [[nodiscard]] const std::vector<WrittenField>& fields() const { return fields_; }
    [[nodiscard]] std::size_t forms() const { return forms_; }

private:
    struct Tag {
        std::string name; // in lower case, with the "/" of an end tag
        std::vector<std::pair<std::string, std::string>> attributes;

        [[nodiscard]] const std::string* attribute(std::string_view wanted) const {
            const auto found =
                std::ranges::find_if(attributes, [&](const auto& one) { return one.first == wanted; });
            return found == attributes.end() ? nullptr : &found->second;
        }
    };

    static std::string lower(std::string_view text) {
        std::string result{text};
        std::ranges::transform(result, result.begin(), [](unsigned char letter) {
            return static_cast<char>(letter < 0x80 ? std::tolower(letter) : letter);
        });
        return result;
    }
    static bool blank(char letter) {
        return std::string_view(" \t\r\n").find(letter) != std::string_view::npos;
    }

    static std::string readable(std::string_view text) {
        std::string result{text};
        for (const auto& [entity, sign] : {std::pair{"&amp;", "&"}, {"&lt;", "<"}, {"&gt;", ">"}}) {
            for (std::size_t at = 0; (at = result.find(entity, at)) != std::string::npos; ++at)
                result.replace(at, std::string_view(entity).size(), sign);
        }
        while (!result.empty() && blank(result.back()))
            result.pop_back();
        result.erase(0, std::min(result.find_first_not_of(" \t\r\n"), result.size()));
        return result;
    }

    void skip_to(std::string_view end) {
        const auto found = lower(html_.substr(at_)).find(end);
        at_ = found == std::string::npos ? html_.size() : at_ + found;
    }

    std::string word(std::string_view ends) {
        const std::size_t first = at_;
        while (at_ < html_.size() && !blank(html_[at_]) && ends.find(html_[at_]) == std::string_view::npos)
            ++at_;
        return std::string(html_.substr(first, at_ - first));
    }
    void skip_blanks() {
        while (at_ < html_.size() && blank(html_[at_]))
            ++at_;
    }

    std::string value() {
        skip_blanks();
        if (at_ < html_.size() && (html_[at_] == '"' || html_[at_] == '\'')) {
            const auto end = html_.find(html_[at_], at_ + 1);
            const std::string text{html_.substr(at_ + 1, end - at_ - 1)};
            at_ = end + 1;
            return readable(text);
        }
        return readable(word(">"));
    }

    Tag tag() {
        ++at_; // "<"
        Tag result{lower(word(">")), {}};
        for (;;) {
            skip_blanks();
            if (at_ >= html_.size() || html_[at_] == '>')
                break;
            std::string name = lower(word("=>"));
            skip_blanks();
            std::string text;
            if (at_ < html_.size() && html_[at_] == '=') {
                ++at_;
                text = value();
            }
            result.attributes.emplace_back(std::move(name), std::move(text));
        }
        ++at_;
        return result;
    }

    void read() {
        while ((at_ = html_.find('<', at_)) != std::string_view::npos) {
            if (html_.substr(at_).starts_with("<!--"))
                skip_to("-->");
            else
                take(tag());
            at_ = std::min(at_, html_.size());
        }
    }

    void take(const Tag& tag) {
        if (tag.name == "script" || tag.name == "style")
            skip_to("</" + tag.name);
        else if (tag.name == "form")
            form_ = ++forms_;
        else if (tag.name == "/form")
            form_ = 0;
        else if (tag.name == "option" && !fields_.empty())
            fields_.back().options.push_back(readable(html_.substr(at_, html_.find('<', at_) - at_)));
        else
            take_field(tag);
    }

    void take_field(const Tag& tag) {
        const std::string* const name = tag.attribute("name");
        WrittenField field{tag.name, name == nullptr ? "" : *name, {}, form_};
        field.locked = tag.attribute("readonly") != nullptr || tag.attribute("disabled") != nullptr;
        if (tag.name == "input") {
            const std::string* const type = tag.attribute("type");
            field.type = type == nullptr ? "text" : lower(*type);
            for (const std::string_view button : {"submit", "reset", "button", "image"}) {
                if (field.type == button)
                    return;
            }
        } else if (tag.name == "textarea") {
            skip_to("</textarea");
        } else if (tag.name != "select") {
            return;
        } else if (tag.attribute("multiple") != nullptr) {
            field.type = "select-multiple";
        }
        fields_.push_back(std::move(field));
    }

    const std::string text_;
    const std::string_view html_{text_};
    std::size_t at_ = 0;
    std::size_t form_ = 0; // 0 outside of forms
    std::size_t forms_ = 0;
    std::vector<WrittenField> fields_;
};

} // namespace kestrune
